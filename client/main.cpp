// SPDX-License-Identifier: MIT
// norvixctl: the daemon's command-line client.
#include "client/command_line.h"
#include "client/help_text.h"
#include "client/say.h"
#include "client/terminal.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

namespace {

/// The words of the command line as UTF-8, whatever the locale says.
QStringList wordsOf(int argc, char *argv[])
{
    QStringList words;
    for (int position = 1; position < argc; ++position) {
        words.append(QString::fromUtf8(argv[position]));
    }
    return words;
}

int usageError(const Terminal &terminal, const QString &text)
{
    terminal.fail(BadUsage, text);
    terminal.note(Say::tr("“norvixctl --help” lists the commands and “norvixctl COMMAND --help” "
                          "the options of one."));
    return BadUsage;
}

int answerHelp(const Terminal &terminal, const ParsedLine &parsed)
{
    const Command *command = parsed.invocation.command;
    // "line --help" means the whole group, not the command that "line" alone stands for.
    const bool isGroupOnly = command == nullptr;
    const QStringList lines = isGroupOnly ? overviewHelp(terminal.width(), parsed.group)
                                          : commandHelp(*command, terminal.width());
    terminal.line(lines.join(QLatin1Char('\n')));
    return Ok;
}

int run(const QStringList &words)
{
    const ParsedLine parsed = parseCommandLine(words);
    Terminal terminal = makeTerminal(
        parsed.invocation.options.value(QStringLiteral("color"), QStringLiteral("auto")));
    if (!parsed.error.isEmpty()) {
        return usageError(terminal, parsed.error);
    }
    if (parsed.invocation.has("version")) {
        terminal.line(QStringLiteral("norvixctl " NORVIX_VERSION));
        return Ok;
    }
    if (parsed.invocation.has("help")) {
        return answerHelp(terminal, parsed);
    }
    if (parsed.invocation.command == nullptr) {
        return usageError(terminal,
            parsed.group.isEmpty() ? Say::tr("Give a command.")
                                   : Say::tr("“%1” needs a further word.").arg(parsed.group));
    }
    terminal.form = parsed.invocation.has("json") ? Form::Json
        : parsed.invocation.has("terse")          ? Form::Terse
                                                  : Form::Human;
    return parsed.invocation.command->run(parsed.invocation, terminal);
}

} // namespace

int main(int argc, char *argv[])
{
    const QStringList words = wordsOf(argc, argv);
    const QCoreApplication application(argc, argv);
    QTranslator translator;
    const QString folder = QStringLiteral(":/translations");
    // English has a file of its own for its plurals.
    if (translator.load(QLocale(), QStringLiteral("norvixctl"), QStringLiteral("_"), folder)
        || translator.load(QStringLiteral("norvixctl_en"), folder)) {
        QCoreApplication::installTranslator(&translator);
    }
    return run(words);
}
