// SPDX-License-Identifier: MIT
// norvixctl: the daemon's command-line client.
#include "client/say.h"
#include "client/translation.h"
#include "ctl/command_line.h"
#include "ctl/help_text.h"
#include "ctl/screen/charset.h"
#include "ctl/screen/terminal.h"

#include <QCoreApplication>
#include <fcntl.h>
#include <unistd.h>

namespace {

QStringList wordsOf(int argc, char *argv[])
{
    QStringList words;
    for (int position = 1; position < argc; ++position) {
        words.append(fromLocale(argv[position]));
    }
    return words;
}

/// A standard stream that is closed would be the bus connection's number, and the output would go
/// there.
void holdStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            // Writing to it fails, as it would have without it.
            static_cast<void>(open("/dev/null", stream == STDERR_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
}

int usageError(const Terminal &terminal, const QString &text)
{
    terminal.fail(BadUsage, text);
    terminal.note(Say::tr("“norvixctl --help” lists the commands and “norvixctl COMMAND --help” "
                          "the options of one."));
    return BadUsage;
}

/// A word that is no command, or a value that can not be.
int refuse(const Terminal &terminal, const ParsedLine &parsed)
{
    return parsed.code == BadUsage ? usageError(terminal, parsed.error)
                                   : int(terminal.fail(parsed.code, parsed.error));
}

int answerHelp(const Terminal &terminal, const ParsedLine &parsed)
{
    const Command *command = parsed.invocation.command;
    // "line --help" means the whole group, not the command that "line" alone stands for.
    const bool isGroupOnly = command == nullptr || parsed.isWholeGroup;
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
        return refuse(terminal, parsed);
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
    holdStandardStreams();
    const QStringList words = wordsOf(argc, argv);
    const QCoreApplication application(argc, argv);
    speakUsersLanguage(QStringLiteral("norvixctl"), isLanguagePlain());
    return run(words);
}
