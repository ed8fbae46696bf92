// SPDX-License-Identifier: MIT
// Has something done with an administrator's rights, and says beside it how that stands: for whom
// it waits and since when, why it came to nothing, and which command does the same.
#pragma once

#include "desktop/administrator.h"

#include <QLabel>
#include <QTimer>

class QPushButton;

namespace desktop {

class CommandBox;

class RightsPanel : public QWidget
{
    Q_OBJECT

public:
    /// Called when it was done, with what it printed; not when it came to nothing.
    using Done = std::function<void(const QByteArray &output)>;

    explicit RightsPanel(QWidget *parent = nullptr);

    void perform(Verb verb, const Done &done);
    /// Makes the person who sits here a member of the group norvix.
    void join(const Done &done);

    /// Shows a sentence of another origin in the same place, with commands to copy.
    void tell(const QString &text, const QStringList &commands = {});

    bool isBusy() const { return m_administrator.isBusy(); }
    /// Forgets what is shown; what is under way goes on.
    void clear();

signals:
    /// It begins or has ended.
    void busyChanged();

private:
    Administrator::Then answerWith(const QString &command, const Done &done);
    void begin();
    void showWaiting();

    Administrator m_administrator;
    QLabel *m_text;
    CommandBox *m_commands;
    QPushButton *m_giveUp;
    QTimer m_clock;
};

} // namespace desktop
