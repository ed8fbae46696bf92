// SPDX-License-Identifier: MIT
// The assistant for the first connection.
#pragma once

#include "desktop/assistant/draft.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>

namespace desktop {

class AssistantPage;
class Controller;

class Assistant : public QDialog
{
    Q_OBJECT

public:
    explicit Assistant(Controller &controller, QWidget *parent = nullptr);

    /// Comes before everything else with this page.
    void showStep(AssistantStep step);
    /// Takes what another program of ours has begun.
    void takeDraft(const Draft &draft) { m_draft = draft; }

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void turnTo(AssistantStep step);
    void showButtons();
    AssistantPage *page() const;

    Draft m_draft;
    AssistantStep m_step = AssistantStep::Permission;
    QLabel *m_title;
    QLabel *m_place;
    QStackedWidget *m_pages;
    QPushButton *m_back;
    QPushButton *m_skip;
    QPushButton *m_next;
    AssistantPage *m_shown = nullptr;
};

} // namespace desktop
