// SPDX-License-Identifier: MIT
#include "desktop/administrator.h"

#include "client/say.h"
#include "client/translation.h"
#include "desktop/child.h"

#include <QDateTime>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTimer>

namespace desktop {

namespace {

constexpr int dismissed = 126;
constexpr int notAuthorised = 127;
const QLatin1String joinProgram("/opt/norvix/libexec/norvix-desktop-join");
const QLatin1String mendProgram("/opt/norvix/libexec/norvix-desktop-mend");

QString lastLine(const QByteArray &text)
{
    const QList<QByteArray> lines = text.trimmed().split('\n');
    return QString::fromLocal8Bit(lines.constLast());
}

} // namespace

RightsOutcome rightsOutcomeOf(int status, const QByteArray &errors)
{
    switch (status) {
    case RightsDone:
        return RightsOutcome::Done;
    case RightsNoProgram:
        return RightsOutcome::NoProgram;
    case RightsNoGroup:
        return RightsOutcome::NoGroup;
    case dismissed:
        return RightsOutcome::Cancelled;
    case notAuthorised:
        break;
    default:
        return RightsOutcome::Failed;
    }
    if (errors.contains("No authentication agent")) {
        return RightsOutcome::NoAgent;
    }
    if (errors.contains("No such file")) {
        return RightsOutcome::NoProgram;
    }
    return errors.toLower().contains("not authorized") ? RightsOutcome::Refused
                                                       : RightsOutcome::NoPolkit;
}

QString rightsOutcomeText(RightsOutcome outcome)
{
    switch (outcome) {
    case RightsOutcome::Done:
        break;
    case RightsOutcome::NoPkexec:
        return Say::tr("The program pkexec, which asks for an administrator's password, is not "
                       "installed. This command does the same:");
    case RightsOutcome::NoPolkit:
        return Say::tr("The service that decides about administrator's rights does not answer. "
                       "This command does the same:");
    case RightsOutcome::NoAgent:
        return Say::tr("No program of this session can ask for an administrator's password. This "
                       "command does the same:");
    case RightsOutcome::Refused:
        // Of a rule that allows it to nobody polkit says the same as of a wrong password.
        return Say::tr("An administrator's rights were not given: the password was wrong, or this "
                       "system does not allow it. Nothing was changed.");
    case RightsOutcome::Cancelled:
        return Say::tr("The password was not entered. Nothing was changed.");
    case RightsOutcome::GivenUp:
        return Say::tr("Nobody waits for the password any more.");
    case RightsOutcome::NoProgram:
        return Say::tr("A program that is needed for it is not installed. This command does the "
                       "same:");
    case RightsOutcome::NoGroup:
        return Say::tr("There is no group norvix yet.");
    case RightsOutcome::Failed:
        return Say::tr("It did not succeed.");
    }
    return {};
}

bool isCommandAWayOut(RightsOutcome outcome)
{
    switch (outcome) {
    case RightsOutcome::NoPkexec:
    case RightsOutcome::NoPolkit:
    case RightsOutcome::NoAgent:
    case RightsOutcome::NoProgram:
        return true;
    case RightsOutcome::Done:
    case RightsOutcome::Refused:
    case RightsOutcome::Cancelled:
    case RightsOutcome::GivenUp:
    case RightsOutcome::NoGroup:
    case RightsOutcome::Failed:
        break;
    }
    return false;
}

Administrator::Administrator(QObject *parent)
    : QObject(parent)
{
}

Administrator::~Administrator()
{
    m_then = {};
    giveUp();
}

void Administrator::perform(Verb verb, const Then &then)
{
    QStringList words{QLatin1String(verbWord(verb))};
    if (verb == Verb::Look) {
        words.append(usersLanguage());
    }
    start(mendProgram, words, then);
}

void Administrator::join(const Then &then)
{
    start(joinProgram, {}, then);
}

void Administrator::start(const QString &program, const QStringList &words, const Then &then)
{
    giveUp();
    const QString pkexec = QStandardPaths::findExecutable(QStringLiteral("pkexec"));
    if (pkexec.isEmpty()) {
        QTimer::singleShot(0, this, [then] { then({RightsOutcome::NoPkexec, {}, {}}); });
        return;
    }
    m_then = then;
    m_since = QDateTime::currentMSecsSinceEpoch();
    m_process = new Child(this);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("SHELL")); // pkexec refuses one that /etc/shells lacks
    m_process->setProcessEnvironment(environment);
    m_process->setStandardInputFile(QProcess::nullDevice());
    connect(m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
        [this](int status, QProcess::ExitStatus end) {
            const QByteArray errors = m_process->readAllStandardError();
            const RightsOutcome outcome = end == QProcess::NormalExit
                ? rightsOutcomeOf(status, errors)
                : RightsOutcome::Failed;
            finish({outcome, m_process->readAllStandardOutput(), lastLine(errors)});
        });
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            finish({RightsOutcome::NoPkexec, {}, {}});
        }
    });
    // Its own agent would ask on a terminal that nobody looks at.
    QStringList all{QStringLiteral("--disable-internal-agent"), program};
    m_process->start(pkexec, all + words, QIODevice::ReadOnly);
}

void Administrator::giveUp()
{
    if (m_process != nullptr) {
        finish({RightsOutcome::GivenUp, {}, {}});
    }
}

void Administrator::finish(const RightsAnswer &answer)
{
    QProcess *process = m_process;
    m_process = nullptr;
    process->disconnect(this);
    // What root already runs can not be ended from here; it ends by itself.
    process->kill();
    if (process->state() == QProcess::NotRunning) {
        process->deleteLater();
    } else {
        process->setParent(nullptr);
        connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), process,
            &QObject::deleteLater);
    }
    if (const Then then = std::exchange(m_then, {})) {
        QTimer::singleShot(0, this, [then, answer] { then(answer); });
    }
}

} // namespace desktop
