// SPDX-License-Identifier: MIT
// Whether name servers answer, for servers in a network of the test's own.
#include "client/name_servers.h"
#include "private_root.h"
#include "support/files/file_descriptor.h"
#include "test_data.h"
#include "test_table.h"
#include "worker.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <arpa/inet.h>
#include <array>
#include <netinet/in.h>
#include <sys/socket.h>

namespace {

constexpr int longMs = 10000; // for what comes at once
constexpr int shortMs = 200; // for what never comes

/// The question as a name server met it: its number is 0x1234.
const QByteArray question = QByteArray::fromHex("1234010000010000000000000000020001");

QByteArray recorded(const char *name)
{
    return QByteArray::fromHex(testData(QStringLiteral("name-servers/") + QLatin1String(name)));
}

/// A name server that answers one question, or none.
class Server
{
public:
    /// An empty @p answer is none.
    Server(const char *address, const QByteArray &answer)
        : m_socket(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
        , m_worker([this, answer] { serve(answer); })
    {
        sockaddr_in place = {};
        place.sin_family = AF_INET;
        place.sin_port = htons(53);
        place.sin_addr.s_addr = inet_addr(address);
        if (bind(m_socket.get(), reinterpret_cast<sockaddr *>(&place), sizeof place) != 0) {
            qFatal("cannot be a name server at %s", address);
        }
        m_worker.start();
    }

    ~Server()
    {
        shutdown(m_socket.get(), SHUT_RDWR); // ends the wait for a question
        m_worker.wait(longMs);
    }

    QByteArray asked() const { return m_asked; }

private:
    void serve(QByteArray answer)
    {
        std::array<char, 512> packet = {};
        sockaddr_in client = {};
        socklen_t size = sizeof client;
        const ssize_t length = recvfrom(m_socket.get(), packet.data(), packet.size(), 0,
            reinterpret_cast<sockaddr *>(&client), &size);
        if (length < 2 || answer.isEmpty()) {
            return;
        }
        m_asked = QByteArray(packet.data(), int(length));
        if (answer.startsWith(question.left(2))) {
            answer.replace(0, 2, m_asked.left(2));
        }
        sendto(m_socket.get(), answer.constData(), size_t(answer.size()), 0,
            reinterpret_cast<sockaddr *>(&client), size);
    }

    FileDescriptor m_socket;
    QByteArray m_asked;
    Worker m_worker;
};

} // namespace

class NameServersTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCOMPARE(QProcess::execute(QStringLiteral("ip"),
                     QStringLiteral("link set lo up").split(QLatin1Char(' '))),
            0);
    }

    void withoutServersNobodyIsAsked() { QVERIFY(!doesNameServerAnswer({}).has_value()); }

    void anyAnswerIsOne_data()
    {
        const auto row = table<QByteArray>("answer");
        row("the servers of the root", recorded("root-servers.txt"));
        row("a refusal", recorded("refused.txt"));
    }
    void anyAnswerIsOne()
    {
        QFETCH(QByteArray, answer);
        QVERIFY(answer.startsWith(question.left(2)));
        const Server server("127.0.0.1", answer);
        QCOMPARE(doesNameServerAnswer({"127.0.0.1"}, longMs), std::optional(true));
        QCOMPARE(server.asked().mid(2), question.mid(2));
    }

    void whatIsNoAnswerToTheQuestionDoesNotCount_data()
    {
        const auto row = table<QByteArray>("answer");
        row("silence", QByteArray());
        row("the number alone", question.left(2));
        row("of another question", QByteArray::fromHex("1235") + recorded("refused.txt").mid(2));
    }
    void whatIsNoAnswerToTheQuestionDoesNotCount()
    {
        QFETCH(QByteArray, answer);
        const Server server("127.0.0.1", answer);
        QCOMPARE(doesNameServerAnswer({"127.0.0.1"}, shortMs), std::optional(false));
    }

    void whereNobodyListensIsNotWaitedFor_data()
    {
        const auto row = table<QStringList>("servers");
        row("nobody there", QStringList{"127.0.0.1", "127.0.0.2"});
        row("no route", QStringList{"192.0.2.1", "2001:db8::1"});
        row("no address", QStringList{"localhost", QString()});
    }
    void whereNobodyListensIsNotWaitedFor()
    {
        QFETCH(QStringList, servers);
        QElapsedTimer waited;
        waited.start();
        QCOMPARE(doesNameServerAnswer(servers, longMs), std::optional(false));
        QVERIFY(waited.elapsed() < longMs);
    }

    void oneThatAnswersIsEnough()
    {
        const Server silent("127.0.0.1", QByteArray());
        const Server answering("127.0.0.3", recorded("refused.txt"));
        const QStringList servers = {"localhost", "127.0.0.1", "127.0.0.2", "127.0.0.3"};
        QCOMPARE(doesNameServerAnswer(servers, longMs), std::optional(true));
    }
};

int main(int argc, char **argv)
{
    enterPrivateRoot(argv);
    QCoreApplication application(argc, argv);
    NameServersTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "name_servers_test.moc"
