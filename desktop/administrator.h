// SPDX-License-Identifier: MIT
// Has something done with an administrator's rights, by pkexec and a program of our own.
#pragma once

#include "desktop/rights/verb.h"

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <functional>
#include <optional>

namespace desktop {

enum class RightsOutcome
{
    Done,
    NoPkexec, ///< it is not installed
    NoPolkit, ///< nobody on this system decides who may
    NoAgent, ///< no program of this session asks for a password
    Refused, ///< the password was wrong, or the rules say no
    Cancelled, ///< the person closed the question
    GivenUp, ///< nobody waits for it any more
    NoProgram, ///< our own program, or what it needs, is missing
    NoGroup, ///< the group norvix does not exist
    Failed, ///< it was tried
};

/// What an end of pkexec means: its exit status, and what stands on standard error.
RightsOutcome rightsOutcomeOf(int status, const QByteArray &errors);

/// A sentence in the user's language; empty for Done.
QString rightsOutcomeText(RightsOutcome outcome);

/// Whether the same thing typed in a terminal is a way out.
bool isCommandAWayOut(RightsOutcome outcome);

struct RightsAnswer
{
    RightsOutcome outcome = RightsOutcome::Failed;
    QByteArray output;
    QString detail; ///< the last line on standard error
};

class Administrator : public QObject
{
    Q_OBJECT

public:
    using Then = std::function<void(const RightsAnswer &)>;

    explicit Administrator(QObject *parent = nullptr);
    ~Administrator() override;

    /// Has the verb done; @p then is called once, always later. Whatever is under way is given up.
    void perform(Verb verb, const Then &then);
    /// The same for joining the group norvix.
    void join(const Then &then);

    bool isBusy() const { return m_process != nullptr; }
    /// When the present one began, milliseconds since 1970.
    qint64 since() const { return m_since; }
    /// Waits no longer; the answer is GivenUp.
    void giveUp();

private:
    void start(const QString &program, const QStringList &words, const Then &then);
    void finish(const RightsAnswer &answer);

    QProcess *m_process = nullptr;
    Then m_then;
    qint64 m_since = 0;
};

} // namespace desktop
