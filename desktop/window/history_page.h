// SPDX-License-Identifier: MIT
// Why it stopped, and how much went through it.
#pragma once

#include "desktop/window/page.h"

namespace desktop {

class HistoryPage : public Page
{
    Q_OBJECT

public:
    explicit HistoryPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
};

} // namespace desktop
