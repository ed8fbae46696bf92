// SPDX-License-Identifier: MIT
// The command line and the environment of pppd and its helpers.
#include "connection/pppd_command.h"

#include <QTest>

namespace {

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

class PppdCommandTest : public QObject
{
    Q_OBJECT

private slots:
    void thePeerFollowsCall();
    void theUsersArgumentsFollowInOrder();
    void emptyArgumentsStayButAKeyWithoutValueHasNone();
    void theFoldersEndUpInTheEnvironment_data();
    void theFoldersEndUpInTheEnvironment();
};

void PppdCommandTest::thePeerFollowsCall()
{
    QCOMPARE(
        pppdArguments(QStringLiteral("norvix"), {}), words("debug linkname norvix call norvix"));
    QCOMPARE(pppdArguments(QStringLiteral("norvix_unicorn"), {}),
        words("debug linkname norvix call norvix_unicorn"));
}

void PppdCommandTest::theUsersArgumentsFollowInOrder()
{
    const QStringList extra = {QStringLiteral("mtu"), QStringLiteral("1400"),
        QStringLiteral("two words"), QStringLiteral("mtu"), QStringLiteral("$HOME;*")};
    QCOMPARE(pppdArguments(QStringLiteral("norvix"), extra),
        words("debug linkname norvix call norvix") + extra);
}

void PppdCommandTest::emptyArgumentsStayButAKeyWithoutValueHasNone()
{
    QCOMPARE(pppdArguments(QStringLiteral("norvix"), {QString()}),
        words("debug linkname norvix call norvix"));
    const QStringList usual = words("debug linkname norvix call norvix");
    const QString a = QStringLiteral("a");
    const QString none;
    for (const QStringList &extra :
        {QStringList{a, none, a}, {none, none}, {none, a}, {a, none}, {none, none, none}}) {
        QCOMPARE(pppdArguments(QStringLiteral("norvix"), extra), usual + extra);
    }
}

void PppdCommandTest::theFoldersEndUpInTheEnvironment_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<bool>("is32bit");
    QTest::addColumn<QStringList>("after");
    const auto row = [](const char *name, const char *before, bool is32bit, const char *after) {
        QTest::newRow(name) << words(before) << is32bit << words(after);
    };
    row("both paths, 64 bit", "LD_LIBRARY_PATH=/lib HOME=/root PATH=/bin", false,
        "LD_LIBRARY_PATH=/lib:/opt/norvix/lib64 HOME=/root PATH=/bin:/opt/norvix/bin");
    row("both paths, 32 bit", "PATH=/bin LD_LIBRARY_PATH=/lib", true,
        "PATH=/bin:/opt/norvix/bin LD_LIBRARY_PATH=/lib:/opt/norvix/lib");
    // What is added has no name, so no child sees it.
    row("no library path, 64 bit", "PATH=/bin HOME=/root", false,
        "PATH=/bin:/opt/norvix/bin HOME=/root /opt/norvix/lib64");
    row("no library path, 32 bit", "PATH=/bin", true, "PATH=/bin:/opt/norvix/bin /opt/norvix/lib");
    row("no path", "LD_LIBRARY_PATH=/lib", false,
        "LD_LIBRARY_PATH=/lib:/opt/norvix/lib64 /opt/norvix/bin");
    row("nothing", "", false, "/opt/norvix/lib64 /opt/norvix/bin");
    row("nothing, 32 bit", "", true, "/opt/norvix/lib /opt/norvix/bin");
    row("empty values", "LD_LIBRARY_PATH= PATH=", false,
        "LD_LIBRARY_PATH=:/opt/norvix/lib64 PATH=:/opt/norvix/bin");
    row("names that only look alike", "MYPATH=/x Path=/y PATHS=/z LD_LIBRARY_PATHS=/u", false,
        "MYPATH=/x Path=/y PATHS=/z LD_LIBRARY_PATHS=/u /opt/norvix/lib64 /opt/norvix/bin");
    row("every entry of the kind", "PATH=/a PATH=/b", false,
        "PATH=/a:/opt/norvix/bin PATH=/b:/opt/norvix/bin /opt/norvix/lib64");
}

void PppdCommandTest::theFoldersEndUpInTheEnvironment()
{
    QFETCH(QStringList, before);
    QFETCH(bool, is32bit);
    QFETCH(QStringList, after);
    QCOMPARE(childEnvironment(before, is32bit), after);
}

QTEST_APPLESS_MAIN(PppdCommandTest)
#include "pppd_command_test.moc"
