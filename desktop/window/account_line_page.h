// SPDX-License-Identifier: MIT
// The provider's values, and when to connect by itself.
#pragma once

#include "desktop/window/page.h"

namespace desktop {

class AccountLinePage : public Page
{
    Q_OBJECT

public:
    explicit AccountLinePage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
};

} // namespace desktop
