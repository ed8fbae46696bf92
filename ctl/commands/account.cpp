// SPDX-License-Identifier: MIT
// norvixctl account show, account set
#include "client/account_rules.h"
#include "client/daemon_bus.h"
#include "client/pppd_words.h"
#include "client/say.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/failure_text.h"
#include "ctl/screen/password_input.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

#include <unistd.h>

namespace {

struct Typed
{
    Failure failure; ///< why there is none
    QString text;
};

/// The password from whoever has it.
Typed readPassword()
{
    const auto mistyped = [](const QString &why) {
        return Typed{{FailureKind::ValueRefused, why}, QString()};
    };
    if (isatty(STDIN_FILENO) != 1) {
        return {{}, restOfInput()};
    }
    const auto first = askHidden(Say::tr("Password"));
    if (!first) {
        return mistyped(Say::tr("No password was given."));
    }
    if (passwordObjection(*first)) {
        return {{}, *first}; // refused below, before it is typed again
    }
    if (askHidden(Say::tr("Password again")) != first) {
        return mistyped(Say::tr("The two passwords differ. Nothing was changed."));
    }
    return {{}, *first};
}

/// Why the two can not be stored; none when they can.
Failure objectionTo(const QString &login, const Typed &password)
{
    if (password.failure) {
        return password.failure;
    }
    const Failure objection = passwordObjection(password.text);
    return objection ? objection : accountObjection(login, password.text);
}

/// Login and password as the provider gets them; empty when none are stored.
QStringList storedAccount(const BusReply &reply)
{
    QStringList account = reply.value.toStringList();
    for (QString &word : account) {
        word = decodedWord(word);
    }
    return account;
}

/// What the files answer afterwards; a warning when it is not what was stored.
void compareWithFiles(
    const DaemonBus &bus, const Terminal &terminal, const QString &login, const QString &password)
{
    if (storedAccount(bus.call(DaemonMethod::getLoginAndPassword))
        != QStringList{login, password}) {
        terminal.note(Say::tr("Warning: pppd's files still answer with another account, so this "
                              "one will not take effect. “sudo norvixctl doctor --fix” mends "
                              "them."));
    }
}

} // namespace

int runAccountShow(const Invocation &invocation, const Terminal &terminal)
{
    const DaemonBus bus;
    const BusReply reply = bus.call(DaemonMethod::getLoginAndPassword);
    if (!reply.ok()) {
        return terminal.fail(reply.failure);
    }
    const QStringList account = storedAccount(reply);
    const bool isSet = account.size() == 2;
    const bool isRevealed = invocation.has("reveal");
    const QJsonValue none(QJsonValue::Null);
    Report report;
    report.add(QStringLiteral("login"), isSet ? QJsonValue(account.at(0)) : none, Say::tr("Login"),
        isSet ? account.at(0) : Say::tr("none stored"));
    report.add(QStringLiteral("hasPassword"), isSet,
        isSet && !isRevealed ? Say::tr("Password") : QString(),
        Say::tr("stored (--reveal shows it)"));
    if (isRevealed) {
        report.add(QStringLiteral("password"), isSet ? QJsonValue(account.at(1)) : none,
            Say::tr("Password"), isSet ? account.at(1) : Say::tr("none stored"));
    }
    report.print(terminal);
    return Ok;
}

int runAccountSet(const Invocation &invocation, const Terminal &terminal)
{
    QString login = invocation.arguments.value(0);
    if (invocation.arguments.isEmpty()) {
        if (isatty(STDIN_FILENO) != 1) {
            return terminal.fail(
                BadUsage, Say::tr("Give the login: “norvixctl account set LOGIN”."));
        }
        login = askVisible(Say::tr("Login")).value_or(QString());
    }
    if (const Failure objection = loginObjection(login)) {
        return terminal.fail(objection);
    }
    const Typed password = readPassword();
    if (const Failure objection = objectionTo(login, password)) {
        return terminal.fail(objection);
    }

    const DaemonBus bus;
    const BusReply reply = bus.callSetup(SetupMethod::SetAccount,
        {encodedLogin(login), encodedPassword(password.text)}, DaemonBus::Start::IfNeeded);
    if (exitCodeOf(reply.failure) == Failed) {
        return terminal.fail(Failed,
            failureText(reply.failure) + QLatin1Char(' ')
                + Say::tr("“norvixctl doctor” tells which of pppd's files are missing."));
    }
    if (!reply.ok()) {
        return terminal.fail(reply.failure);
    }
    terminal.line(Say::tr("The account is stored. It counts from the next connection on."));
    compareWithFiles(bus, terminal, login, password.text);
    return Ok;
}
