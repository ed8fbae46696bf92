// SPDX-License-Identifier: MIT
#include "ctl/command_table.h"

#include "ctl/commands.h"

#include <QCoreApplication>

const std::vector<Command> &commandTable()
{
    static const std::vector<Command> table = {
        {"status", "", 0, QT_TRANSLATE_NOOP("Say", "Show everything at one glance"), true, {},
            runStatus},
        {"connect", "", 0, QT_TRANSLATE_NOOP("Say", "Start a connection"), false,
            {{"wait", 'w', nullptr, nullptr,
                 QT_TRANSLATE_NOOP(
                     "Say", "follow the phases until the connection is up or has failed")},
                {"timeout", 't', "SECONDS", nullptr,
                    QT_TRANSLATE_NOOP("Say", "wait no longer than this (180 by default)")}},
            runConnect},
        {"disconnect", "", 0, QT_TRANSLATE_NOOP("Say", "End the connection"), false,
            {{"force", 'f', nullptr, nullptr,
                QT_TRANSLATE_NOOP(
                    "Say", "do not ask, although this ends every other running pppd, too")}},
            runDisconnect},
        {"monitor", "", 0, QT_TRANSLATE_NOOP("Say", "Print each signal of the daemon as one line"),
            true, {}, runMonitor},
        {"watch", "", 0, QT_TRANSLATE_NOOP("Say", "Live view with rates, totals and time"), true,
            {{"count", 'n', "NUMBER", nullptr,
                QT_TRANSLATE_NOOP("Say", "end after so many seconds with figures")}},
            runWatch},
        {"account show", "", 0, QT_TRANSLATE_NOOP("Say", "Show the account's login"), true,
            {{"reveal", 0, nullptr, nullptr, QT_TRANSLATE_NOOP("Say", "show the password, too")}},
            runAccountShow},
        {"account set", "[LOGIN]", 1,
            QT_TRANSLATE_NOOP("Say",
                "Store login and password; the password is asked for or read from standard input"),
            false, {}, runAccountSet},
        {"modem show", "", 0,
            QT_TRANSLATE_NOOP("Say", "Show the modem in use and whether it is plugged in"), true,
            {}, runModemShow},
        {"modem known", "", 0, QT_TRANSLATE_NOOP("Say", "List the modems that are supported"), true,
            {}, runModemKnown},
        {"modem plugged", "", 0,
            QT_TRANSLATE_NOOP("Say", "List the supported modems that are plugged in"), true, {},
            runModemPlugged},
        {"modem adopt", "", 0,
            QT_TRANSLATE_NOOP("Say", "Take the modem that was plugged in last into use"), false, {},
            runModemAdopt},
        {"line show", "", 0, QT_TRANSLATE_NOOP("Say", "Show VPI, VCI, protocol and service"), true,
            {}, runLineShow},
        {"line set", "", 0, QT_TRANSLATE_NOOP("Say", "Store VPI, VCI, protocol and service"), false,
            {{"vpi", 0, "NUMBER", nullptr, QT_TRANSLATE_NOOP("Say", "virtual path, 0 to 255")},
                {"vci", 0, "NUMBER", nullptr,
                    QT_TRANSLATE_NOOP("Say", "virtual channel, 0 to 65535")},
                {"protocol", 0, "PROTOCOL", "PPPoE PPPoA",
                    QT_TRANSLATE_NOOP("Say", "PPPoE or PPPoA")},
                {"service", 0, "TEXT", nullptr,
                    QT_TRANSLATE_NOOP("Say",
                        "a note for desktop clients: the service's "
                        "name")}},
            runLineSet},
        {"line providers", "", 0,
            QT_TRANSLATE_NOOP("Say", "List line parameters of common providers"), true, {},
            runLineProviders},
        {"line quality", "", 0, QT_TRANSLATE_NOOP("Say", "Show how good the line has been"), true,
            {{"days", 0, "NUMBER", nullptr,
                QT_TRANSLATE_NOOP("Say", "of so many of the last days (1 by default)")}},
            runLineQuality},
        {"keep", "[on|off]", 1,
            QT_TRANSLATE_NOOP("Say", "Show or set whether a lost connection is brought back"), true,
            {}, runKeep},
        {"history", "", 0,
            QT_TRANSLATE_NOOP("Say", "Show past connections, why they ended, and failed attempts"),
            true,
            {{"lines", 'n', "NUMBER", nullptr,
                QT_TRANSLATE_NOOP("Say", "only so many of the newest (20 by default)")}},
            runHistory},
        {"usage", "", 0, QT_TRANSLATE_NOOP("Say", "Show the traffic by day, and set its limit"),
            true,
            {{"month", 0, nullptr, nullptr, QT_TRANSLATE_NOOP("Say", "by billing month instead")},
                {"lines", 'n', "NUMBER", nullptr,
                    QT_TRANSLATE_NOOP("Say", "only so many of the newest (14 by default)")},
                {"limit", 0, "SIZE", nullptr,
                    QT_TRANSLATE_NOOP("Say",
                        "set the limit of a billing month, such as 50GB, or “off”; it only "
                        "warns")},
                {"billing-day", 0, "DAY", nullptr,
                    QT_TRANSLATE_NOOP("Say", "set the day on which a billing month begins")}},
            runUsage},
        {"autoconnect", "[on|off]", 1,
            QT_TRANSLATE_NOOP("Say", "Show or set whether connections start by themselves"), true,
            {{"boot", 0, nullptr, nullptr, QT_TRANSLATE_NOOP("Say", "only when the daemon starts")},
                {"plug", 0, nullptr, nullptr,
                    QT_TRANSLATE_NOOP("Say", "only when a modem is plugged in")}},
            runAutoconnect},
        {"idle", "[NUMBER]", 1,
            QT_TRANSLATE_NOOP("Say", "Show or store the idle time for desktop clients"), true, {},
            runIdle},
        {"driver show", "", 0, QT_TRANSLATE_NOOP("Say", "Show the modem's driver"), true, {},
            runDriverShow},
        {"driver restart", "", 0,
            QT_TRANSLATE_NOOP("Say", "Reload the driver; this ends a connection"), false, {},
            runDriverRestart},
        {"dns", "", 0, QT_TRANSLATE_NOOP("Say", "Show the resolver configuration"), true, {},
            runDns},
        {"log", "", 0, QT_TRANSLATE_NOOP("Say", "Print the daemon's log"), true,
            {{"follow", 'f', nullptr, nullptr,
                 QT_TRANSLATE_NOOP("Say", "go on printing what is added")},
                {"lines", 'n', "NUMBER", nullptr,
                    QT_TRANSLATE_NOOP("Say", "only so many of the last lines")},
                {"daily", 0, nullptr, nullptr,
                    QT_TRANSLATE_NOOP("Say", "today's connection facts instead")}},
            runLog},
        {"doctor", "", 0,
            QT_TRANSLATE_NOOP("Say", "Check all that can stop a connection and name the remedy"),
            true,
            {{"fix", 0, nullptr, nullptr,
                QT_TRANSLATE_NOOP("Say", "mend pppd's account and peer files (as root)")}},
            runDoctor},
        {"help", "[COMMAND]", 2, QT_TRANSLATE_NOOP("Say", "Explain a command"), true, {}, runHelp},
        {"completion", "bash|zsh", 1,
            QT_TRANSLATE_NOOP("Say", "Print the completion script for a shell"), false, {},
            runCompletion},
    };
    return table;
}

const std::vector<Option> &commonOptions()
{
    static const std::vector<Option> options = {
        {"color", 0, "WHEN", "auto always never",
            QT_TRANSLATE_NOOP("Say", "use colours: auto, always or never")},
        {"help", 'h', nullptr, nullptr, QT_TRANSLATE_NOOP("Say", "explain the command")},
        {"version", 0, nullptr, nullptr, QT_TRANSLATE_NOOP("Say", "print the version")},
    };
    return options;
}

const std::vector<Option> &readingOptions()
{
    static const std::vector<Option> options = {
        {"json", 0, nullptr, nullptr, QT_TRANSLATE_NOOP("Say", "print JSON")},
        {"terse", 0, nullptr, nullptr,
            QT_TRANSLATE_NOOP("Say", "print key=value lines or tab-separated rows")},
    };
    return options;
}

std::vector<Option> optionsOf(const Command &command)
{
    std::vector<Option> options = command.options;
    if (command.isReading) {
        options.insert(options.end(), readingOptions().begin(), readingOptions().end());
    }
    options.insert(options.end(), commonOptions().begin(), commonOptions().end());
    return options;
}

QStringList argumentChoices(const Command &command)
{
    QString text = QString::fromLatin1(command.arguments);
    text.remove(QLatin1Char('[')).remove(QLatin1Char(']'));
    return text.contains(QLatin1Char('|')) ? text.split(QLatin1Char('|')) : QStringList();
}
