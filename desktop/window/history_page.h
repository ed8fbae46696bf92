// SPDX-License-Identifier: MIT
// Why it stopped, and how much went through it.
#pragma once

#include "client/keeper_state.h"
#include "desktop/bus/async_bus.h"
#include "desktop/model/history_rows.h"
#include "desktop/window/page.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTimer>

namespace desktop {

class ErrorLabel;
class Plot;

class HistoryPage : public Page
{
    Q_OBJECT

public:
    explicit HistoryPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
    void setOnScreen(bool isOnScreen) override;

protected:
    void changeEvent(QEvent *event) override;

private:
    /// What the keeper has answered.
    struct Answers
    {
        KeeperPlan plan;
        QList<KeeperSession> sessions;
        QList<KeeperAttempts> attempts;
        QList<KeeperTraffic> days;
        QList<KeeperTraffic> months;
        QList<LineSample> line;
        qint64 lineFrom = 0; ///< seconds since 1970
        qint64 lineUntil = 0;
    };

    using Take = std::function<void(const BusAnswer &)>;

    void lookAgain();
    void ask(const BusCall &call, const Take &take);
    void askForLine();
    void showMessage();
    void showPlot();
    void showTable();
    void showPlan();
    void storePlan();
    QWidget *planRow();

    QLabel *m_heading;
    QComboBox *m_choice;
    QLabel *m_message;
    QPushButton *m_help;
    Plot *m_plot;
    QTableWidget *m_table;
    QLabel *m_noSession;
    QDoubleSpinBox *m_limit;
    QSpinBox *m_billingDay;
    QPushButton *m_store;
    ErrorLabel *m_planOutcome;
    QWidget *m_planRow;
    QTimer m_looks;
    QTimer m_clock; ///< tells how long an answer is owed already
    QTimer m_lateLook;
    Answers m_answers;
    Failure m_failure; ///< of the newest round of questions
    int m_owed = 0; ///< answers
    qint64 m_askedAt = 0; ///< milliseconds since 1970
    bool m_isAnswered = false; ///< there has been a whole round of answers
    bool m_isPlanEdited = false;
    bool m_wasKeeperThere = false;
    QVector<HistoryRow> m_shownRows;
};

} // namespace desktop
