// SPDX-License-Identifier: MIT
// What the daemon has written, and a report for whoever helps.
#pragma once

#include "desktop/window/page.h"

namespace desktop {

class LogPage : public Page
{
    Q_OBJECT

public:
    explicit LogPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
};

} // namespace desktop
