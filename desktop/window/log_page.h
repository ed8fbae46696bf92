// SPDX-License-Identifier: MIT
// What the daemon has written, to look through and to show to others.
#pragma once

#include "desktop/window/page.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <optional>

namespace desktop {

/// The end of a log.
struct LogText
{
    enum class Outcome
    {
        Read,
        Same, ///< as when it was read last
        Missing,
        Forbidden,
    };

    Outcome outcome = Outcome::Missing;
    QString stamp; ///< differs whenever the file has changed
    QString text;
    bool isCut = false; ///< more stands before it
};

/// Reads at most what a window can hold, unless the file is as @p stamp says.
LogText readLog(const QString &path, const QString &stamp);

/// The lines in which every word of @p filter stands, whatever its letters' case.
QString matchingLines(const QString &text, const QString &filter);

class LogPage : public Page
{
    Q_OBJECT

public:
    explicit LogPage(Controller &controller, QWidget *parent = nullptr);

    QString title() const override;
    void refresh() override;
    void setOnScreen(bool isOnScreen) override;

private:
    void findLogs();
    void read();
    void take(const QString &path, const LogText &log);
    void showText();
    void copyReport();

    QComboBox *m_which;
    QLineEdit *m_filter;
    QCheckBox *m_follow;
    QLabel *m_notice;
    QPlainTextEdit *m_view;
    QPushButton *m_copy;
    QTimer m_reading;
    QString m_path;
    LogText m_log;
    bool m_isReading = false;
};

} // namespace desktop
