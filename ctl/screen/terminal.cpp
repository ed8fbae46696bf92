// SPDX-License-Identifier: MIT
#include "ctl/screen/terminal.h"

#include "client/say.h"
#include "ctl/screen/charset.h"
#include "ctl/screen/failure_text.h"
#include "ctl/screen/paragraph.h"

#include <QByteArray>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int widestParagraph = 100;
constexpr const char *plainAgain = "\x1b[0m";

winsize terminalSize()
{
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
        size.ws_col = 80;
        size.ws_row = 24;
    }
    return size;
}

/// Typographic marks as ASCII, for terminals of another character set. Data stays as it is.
QString plainMarks(QString text)
{
    return text.replace(QChar(0x201C), QLatin1Char('"'))
        .replace(QChar(0x201D), QLatin1Char('"'))
        .replace(QChar(0x201E), QLatin1Char('"'))
        .replace(QChar(0x2026), QLatin1String("..."))
        .replace(QChar(0x2013), QLatin1Char('-'));
}

const char *sequenceOf(Tone tone)
{
    switch (tone) {
    case Tone::Strong:
        return "\x1b[1m";
    case Tone::Good:
        return "\x1b[32m";
    case Tone::Doubtful:
        return "\x1b[33m";
    case Tone::Bad:
        return "\x1b[31m";
    case Tone::Faint:
        return "\x1b[2m";
    case Tone::Plain:
        break;
    }
    return "";
}

/// The only sequences that may reach the terminal in a line.
const QStringList &ownSequences()
{
    static const QStringList sequences = [] {
        QStringList all = {QLatin1String(plainAgain)};
        for (const Tone tone : {Tone::Strong, Tone::Good, Tone::Doubtful, Tone::Bad, Tone::Faint}) {
            all.append(QLatin1String(sequenceOf(tone)));
        }
        return all;
    }();
    return sequences;
}

void print(FILE *stream, const QString &text, const QStringList &sequences);

/// Whoever waits for the output must not take a cut one for the whole. As with a pipe that is
/// closed, nothing more is done.
[[noreturn]] void endWithoutOutput()
{
    const QString reason = QString::fromLocal8Bit(strerror(errno));
    print(stderr,
        QLatin1String("norvixctl: ") + Say::tr("The output can not be written: %1.").arg(reason),
        {});
    _exit(Failed);
}

/// The one way out: whatever foreign text has found its way into a line steers nothing.
void print(FILE *stream, const QString &text, const QStringList &sequences)
{
    const QByteArray bytes = toLocale(printableLines(text, sequences)) + '\n';
    const bool isWritten
        = fwrite(bytes.constData(), 1, size_t(bytes.size()), stream) == size_t(bytes.size())
        && fflush(stream) == 0;
    if (!isWritten && stream == stdout) {
        endWithoutOutput();
    }
}

} // namespace

int Terminal::width() const
{
    return std::clamp(int(terminalSize().ws_col), 20, widestParagraph);
}

int Terminal::height() const
{
    return std::max(int(terminalSize().ws_row), 4);
}

QString Terminal::toned(const QString &text, Tone tone) const
{
    if (!hasColour || tone == Tone::Plain || text.isEmpty()) {
        return text;
    }
    return QLatin1String(sequenceOf(tone)) + text + QLatin1String(plainAgain);
}

void Terminal::line(const QString &text) const
{
    print(stdout, hasGlyphs || form != Form::Human ? text : plainMarks(text),
        hasColour ? ownSequences() : QStringList());
}

void Terminal::paragraph(const QString &text, int indent) const
{
    line(wrapped(text, width(), indent).join(QLatin1Char('\n')));
}

void Terminal::note(const QString &text) const
{
    const QString lines = wrapped(text, width()).join(QLatin1Char('\n'));
    print(stderr, hasGlyphs ? lines : plainMarks(lines), {});
}

ExitCode Terminal::fail(ExitCode code, const QString &text) const
{
    note(QLatin1String("norvixctl: ") + text);
    return code;
}

ExitCode Terminal::fail(const Failure &failure) const
{
    return fail(exitCodeOf(failure), failureText(failure));
}

Terminal makeTerminal(const QString &when)
{
    const QByteArray kind = qgetenv("TERM");
    Terminal terminal;
    terminal.isTerminal = isatty(STDOUT_FILENO) == 1 && !kind.isEmpty() && kind != "dumb";
    terminal.hasColour = when == QLatin1String("always")
        || (when != QLatin1String("never") && terminal.isTerminal
            && qEnvironmentVariableIsEmpty("NO_COLOR"));
    terminal.hasGlyphs = isLocaleUtf8();
    return terminal;
}
