// SPDX-License-Identifier: MIT
// How it stands, in one sentence, with the facts below.
#pragma once

#include "client/line_status.h"
#include "client/link_facts.h"
#include "desktop/model/connection_facts.h"
#include "desktop/model/headline.h"
#include "desktop/window/page.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

namespace desktop {

class Plot;

class ConnectionPage : public Page
{
    Q_OBJECT

public:
    explicit ConnectionPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
    void setOnScreen(bool isOnScreen) override;

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// What the system itself tells; read beside the window.
    struct SystemView
    {
        std::optional<QString> route;
        Resolver resolver;
        std::optional<bool> isNameAnswered;
        std::optional<LineStatus> lineLog;
        std::optional<bool> carrier;
        std::optional<qint64> pppdSeconds;
    };

    void show(QPushButton *button, Action action);
    void showFacts(qint64 now);
    void arrangeFacts();
    void look();
    void lookAtSystem();
    void takeSystem(const SystemView &view);
    void askKeeper();
    void askAccount();
    void tellLine();

    QLabel *m_picture;
    QLabel *m_title;
    QLabel *m_reason;
    QPushButton *m_primary;
    QPushButton *m_secondary;
    QGridLayout *m_factGrid;
    QVector<QLabel *> m_factLabels;
    QVector<QLabel *> m_factValues;
    Plot *m_plot;
    QTimer m_looks;
    Surroundings m_surroundings;
    LineSources m_line;
    std::optional<Standing> m_shownStanding;
    bool m_isLooking = false;
    int m_factColumns = 0;
    Action m_primaryAction = Action::None;
    Action m_secondaryAction = Action::None;
};

} // namespace desktop
