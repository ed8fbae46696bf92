// SPDX-License-Identifier: MIT
// What stops a connection, worst first, each with the button that mends it.
#pragma once

#include "desktop/window/page.h"

namespace desktop {

class CheckupPage : public Page
{
    Q_OBJECT

public:
    explicit CheckupPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
};

} // namespace desktop
