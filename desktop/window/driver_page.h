// SPDX-License-Identifier: MIT
// The modem, its driver, and a build of it.
#pragma once

#include "desktop/window/page.h"

namespace desktop {

class DriverPage : public Page
{
    Q_OBJECT

public:
    explicit DriverPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
};

} // namespace desktop
