// SPDX-License-Identifier: MIT
// A page of the assistant. What is entered into it stays until it is stored, whatever happens.
#pragma once

#include "desktop/assistant/draft.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace desktop {

class Controller;

class AssistantPage : public QWidget
{
    Q_OBJECT

public:
    AssistantPage(Controller &controller, Draft &draft, QWidget *parent = nullptr);

    /// The model has changed, or the page is shown.
    virtual void refresh() = 0;
    /// It has come before the person's eyes, or has left them.
    virtual void setOnScreen(bool /*isOnScreen*/) { }
    /// "Next" was pressed: stores what is to be stored and emits goOn() when that has succeeded.
    virtual void proceed() { emit goOn(); }
    /// Something is being stored: "Next" has to wait.
    virtual bool isStoring() const { return false; }

signals:
    void goOn();
    /// isStoring() has changed.
    void storingChanged();

protected:
    Controller &controller() { return m_controller; }
    Draft &draft() { return m_draft; }

    /// A label for running text.
    static QLabel *newText(const QString &text = {});

private:
    Controller &m_controller;
    Draft &m_draft;
};

} // namespace desktop
