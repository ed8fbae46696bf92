// SPDX-License-Identifier: MIT
// The window: a list of pages and the page itself.
#pragma once

#include "desktop/model/headline.h"

#include <QListWidget>
#include <QMainWindow>
#include <QStackedWidget>

namespace desktop {

class Assistant;
class Controller;
class Page;
struct HandOver;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(Controller &controller, QWidget *parent = nullptr);

    /// Puts a page behind the others.
    void add(Page *page);

    /// Shows the page that an action leads to.
    void open(Action action);
    /// Goes on where the program before this one was.
    void goOn(const HandOver &handOver);

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void fitList();
    Page *currentPage() const;
    void turnTo(int row);
    template <typename Wanted> void openPage();
    Assistant *assistant();

    Controller &m_controller;
    QListWidget *m_list;
    QStackedWidget *m_pages;
    Page *m_shown = nullptr;
    Assistant *m_assistant = nullptr; ///< made when it is wanted
};

} // namespace desktop
