// SPDX-License-Identifier: MIT
#include "ctl/screen/password_input.h"

#include "ctl/screen/charset.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr size_t mostBytes = 4096;

struct termios shownMode = {};

/// Interrupted while the echo is off: the shell must get its echo back.
extern "C" void restoreEcho(int number)
{
    tcsetattr(STDIN_FILENO, TCSANOW, &shownMode);
    signal(number, SIG_DFL);
    raise(number);
}

std::optional<QString> ask(const QString &question)
{
    const QByteArray text = toLocale(question) + ": ";
    fwrite(text.constData(), 1, size_t(text.size()), stderr);
    QByteArray line;
    for (int byte = getchar(); byte != '\n'; byte = getchar()) {
        if (byte == EOF) {
            return std::nullopt;
        }
        if (size_t(line.size()) < mostBytes) {
            line.append(char(byte));
        }
    }
    return fromLocale(line);
}

} // namespace

std::optional<QString> askVisible(const QString &question)
{
    return ask(question);
}

std::optional<QString> askHidden(const QString &question)
{
    if (tcgetattr(STDIN_FILENO, &shownMode) != 0) {
        return std::nullopt;
    }
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        signal(number, restoreEcho);
    }
    struct termios hidden = shownMode;
    hidden.c_lflag &= ~tcflag_t(ECHO);
    hidden.c_lflag |= ECHONL;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    std::optional<QString> answer = ask(question);
    tcsetattr(STDIN_FILENO, TCSANOW, &shownMode);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        signal(number, SIG_DFL);
    }
    return answer;
}

QString restOfInput()
{
    std::array<char, mostBytes> buffer = {};
    const size_t size = fread(buffer.data(), 1, buffer.size(), stdin);
    QByteArray bytes(buffer.data(), int(size));
    if (bytes.endsWith('\n')) {
        bytes.chop(1);
    }
    return fromLocale(bytes);
}
