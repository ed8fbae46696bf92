// SPDX-License-Identifier: MIT
#include "desktop/window/driver_page.h"

#include "client/say.h"

namespace desktop {

DriverPage::DriverPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
{
}

QString DriverPage::title() const
{
    return Say::tr("Modem and driver");
}

void DriverPage::refresh() { }

} // namespace desktop
