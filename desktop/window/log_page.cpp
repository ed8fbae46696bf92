// SPDX-License-Identifier: MIT
#include "desktop/window/log_page.h"

#include "client/say.h"

namespace desktop {

LogPage::LogPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
{
}

QString LogPage::title() const
{
    return Say::tr("Log");
}

void LogPage::refresh() { }

} // namespace desktop
