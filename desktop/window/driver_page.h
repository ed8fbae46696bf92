// SPDX-License-Identifier: MIT
// The modem, its driver, and a build of it.
#pragma once

#include "client/failure.h"
#include "desktop/window/page.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace desktop {

class RightsPanel;

class DriverPage : public Page
{
    Q_OBJECT

public:
    explicit DriverPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
    void setOnScreen(bool isOnScreen) override;

private:
    /// What is read beside the window.
    struct Seen
    {
        QString modem;
        QString id;
        QString firmware;
        QString driver;
        QString state;
        QString kernel;
    };
    struct Output
    {
        bool isReadable = false;
        QString text;
    };

    static Seen look();
    static Output readOutput();
    void lookAgain();
    void showSeen(const Seen &seen);
    void showOutput(const Output &output);
    void showBuild();
    void askToRestart();

    QLabel *m_modem;
    QLabel *m_id;
    QLabel *m_firmware;
    QLabel *m_driver;
    QLabel *m_state;
    QLabel *m_kernel;
    QPushButton *m_restart;
    QPushButton *m_build;
    RightsPanel *m_panel;
    QLabel *m_building;
    QProgressBar *m_progress;
    QPushButton *m_help; ///< the way out of a build that has failed
    QLabel *m_outputTitle;
    QPlainTextEdit *m_output;
    QTimer m_reading;
    qint64 m_buildingSince = 0; ///< milliseconds since 1970; 0 while nothing is built
    Failure m_restartFailure; ///< of the last wish to restart the modem
    bool m_isOnScreen = false;
    bool m_isReading = false;
    bool m_isReadingOwed = false; ///< something has happened since what is read now
};

} // namespace desktop
