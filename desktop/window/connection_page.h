// SPDX-License-Identifier: MIT
// How it stands, in one sentence, with the facts below.
#pragma once

#include "desktop/model/headline.h"
#include "desktop/window/page.h"

#include <QLabel>
#include <QPushButton>

namespace desktop {

class ConnectionPage : public Page
{
    Q_OBJECT

public:
    explicit ConnectionPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;

private:
    void show(QPushButton *button, Action action);

    QLabel *m_title;
    QLabel *m_reason;
    QPushButton *m_primary;
    QPushButton *m_secondary;
    Action m_primaryAction = Action::None;
    Action m_secondaryAction = Action::None;
};

} // namespace desktop
