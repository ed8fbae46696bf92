// SPDX-License-Identifier: MIT
// A page of the window.
#pragma once

#include <QWidget>

namespace desktop {

class Controller;

class Page : public QWidget
{
    Q_OBJECT

public:
    explicit Page(Controller &controller, QWidget *parent = nullptr)
        : QWidget(parent)
        , m_controller(controller)
    {
    }

    /// Its entry in the window's list.
    virtual QString title() const = 0;

    /// The model has changed while the page is shown, or the page is shown again.
    virtual void refresh() = 0;

    /// The page has come before the person's eyes, or has left them: what costs calls or reading
    /// is done only in between.
    virtual void setOnScreen(bool /*isOnScreen*/) { }

protected:
    Controller &controller() { return m_controller; }
    const Controller &controller() const { return m_controller; }

private:
    Controller &m_controller;
};

} // namespace desktop
