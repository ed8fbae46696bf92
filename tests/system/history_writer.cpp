// SPDX-License-Identifier: MIT
// Writes a fixed history and tells of each entry once it is there, so that a test can kill it
// anywhere.
#include "keeper/history/history.h"

#include <QByteArray>
#include <cstdio>
#include <unistd.h>

int main(int argc, char **argv)
{
    if (argc < 2) {
        return 2;
    }
    keeper::History history(QString::fromLocal8Bit(argv[1]));
    const auto tell = [](const char *what, int number) {
        const QByteArray line = QByteArray(what) + ' ' + QByteArray::number(number) + '\n';
        return write(STDOUT_FILENO, line.constData(), size_t(line.size())) == line.size();
    };
    const keeper::LinkIdentity link{QStringLiteral("boot"), 5};
    const QDate day(2026, 11, 21);
    constexpr qint64 start = 1'795'200'000;
    bool isTold = tell(qPrintable(history.condition()), 0);
    history.beginSession(start, link, QStringLiteral("ppp0"), QStringLiteral("10.64.0.100"));
    for (int minute = 1; minute <= 4; ++minute) {
        keeper::LineQuality line;
        line.carrier = true;
        history.noteLine(start + minute * 60, line);
        history.book(start + minute * 60, day, link, {{quint64(minute) * 1000, 0}, 60});
        isTold = tell("booked", minute) && isTold;
    }
    history.endSession(start + 300, link, 60, QStringLiteral("hung-up"));
    isTold = tell("ended", 1) && isTold;
    for (int attempt = 1; attempt <= 2; ++attempt) {
        history.noteAttempt(start + 300 + attempt, QString::number(attempt));
        isTold = tell("attempted", attempt) && isTold;
    }
    std::fputs(qPrintable(history.condition()), stderr);
    return isTold ? 0 : 1;
}
