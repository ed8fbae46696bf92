// SPDX-License-Identifier: MIT
#include "desktop/window/history_page.h"

#include "client/say.h"

namespace desktop {

HistoryPage::HistoryPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
{
}

QString HistoryPage::title() const
{
    return Say::tr("History");
}

void HistoryPage::refresh() { }

} // namespace desktop
