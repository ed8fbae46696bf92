// SPDX-License-Identifier: MIT
#include "desktop/window/checkup_page.h"

#include "client/say.h"

namespace desktop {

CheckupPage::CheckupPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
{
}

QString CheckupPage::title() const
{
    return Say::tr("Check-up");
}

void CheckupPage::refresh() { }

} // namespace desktop
