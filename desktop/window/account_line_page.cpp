// SPDX-License-Identifier: MIT
#include "desktop/window/account_line_page.h"

#include "client/say.h"

namespace desktop {

AccountLinePage::AccountLinePage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
{
}

QString AccountLinePage::title() const
{
    return Say::tr("Account and line");
}

void AccountLinePage::refresh() { }

} // namespace desktop
