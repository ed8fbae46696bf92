// SPDX-License-Identifier: MIT
// Calls to HAL, answered over a real connection by a made-up HAL on a thread of its own.
#include "daemon/hal_proxy.h"
#include "test_table.h"

#include <QDBusMessage>
#include <QDBusServer>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QTest>
#include <QThread>
#include <array>
#include <future>
#include <memory>

namespace {

const QString devicePath = QStringLiteral("/org/freedesktop/Hal/devices/modem");

/// Answers GetProperty by the property's name.
class MadeUpHal : public QDBusVirtualObject
{
public:
    QString introspect(const QString &) const override { return QString(); }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        const QString key = message.arguments().value(0).toString();
        if (message.member() != QLatin1String("GetProperty")) {
            return false;
        }
        if (key == QLatin1String("error")) {
            return connection.send(message.createErrorReply(
                QStringLiteral("org.freedesktop.Hal.NoSuchProperty"), QStringLiteral("4368")));
        }
        if (key == QLatin1String("number of an error")) {
            QDBusMessage reply = message.createErrorReply(
                QStringLiteral("org.freedesktop.Hal.NoSuchProperty"), QString());
            reply.setArguments({4368});
            return connection.send(reply);
        }
        return connection.send(message.createReply(answerTo(key)));
    }

private:
    static QVariantList answerTo(const QString &key)
    {
        const auto variant = [](const QVariant &value) {
            return QVariantList{QVariant::fromValue(QDBusVariant(value))};
        };
        if (key == QLatin1String("plain")) {
            return {4368};
        }
        if (key == QLatin1String("variant")) {
            return variant(4368);
        }
        if (key == QLatin1String("negative")) {
            return {-1};
        }
        if (key == QLatin1String("unsigned")) {
            return {51969U};
        }
        if (key == QLatin1String("unsigned variant")) {
            return variant(51969U);
        }
        if (key == QLatin1String("wide")) {
            return {qlonglong(4368)};
        }
        if (key == QLatin1String("narrow")) {
            return {QVariant::fromValue(short(4368))};
        }
        if (key == QLatin1String("truth")) {
            return {true};
        }
        if (key == QLatin1String("real")) {
            return {4368.0};
        }
        if (key == QLatin1String("text")) {
            return {QStringLiteral("modem")};
        }
        if (key == QLatin1String("text of digits")) {
            return {QStringLiteral("4368")};
        }
        if (key == QLatin1String("digits variant")) {
            return variant(QStringLiteral("4368"));
        }
        if (key == QLatin1String("text variant")) {
            return variant(QStringLiteral("modem"));
        }
        if (key == QLatin1String("list")) {
            return {QStringList{QStringLiteral("1")}};
        }
        return {}; // an answer without a value
    }
};

class HalThread : public QThread
{
public:
    void awaitListening() { m_listening.get_future().wait(); }
    QString address() const { return m_address; }

protected:
    void run() override
    {
        QDBusServer server(QStringLiteral("unix:tmpdir=/tmp"));
        MadeUpHal hal;
        QObject::connect(
            &server, &QDBusServer::newConnection, &hal, [&](QDBusConnection connection) {
                connection.registerVirtualObject(devicePath, &hal);
            });
        m_address = server.address();
        m_listening.set_value();
        exec();
    }

private:
    std::promise<void> m_listening;
    QString m_address;
};

} // namespace

class HalProxyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void onlyASigned32BitNumberCountsHoweverItIsWrapped_data();
    void onlyASigned32BitNumberCountsHoweverItIsWrapped();
    void anObjectThatIsNotThereGivesNothing();
    void aQuestionMayTakeFiveSeconds();
    void aPathThatIsNoneGivesNothingAndDoesNotEndTheProcess_data();
    void aPathThatIsNoneGivesNothingAndDoesNotEndTheProcess();

private:
    std::optional<int> property(const QString &path, const char *key);

    HalThread m_hal;
    QDBusConnection m_connection{QStringLiteral("none")};
};

void HalProxyTest::initTestCase()
{
    m_hal.start();
    m_hal.awaitListening();
    m_connection = QDBusConnection::connectToPeer(m_hal.address(), QStringLiteral("hal"));
    QVERIFY(m_connection.isConnected());
    QTRY_COMPARE_WITH_TIMEOUT(property(devicePath, "plain").value_or(0), 4368, 60000);
}

void HalProxyTest::cleanupTestCase()
{
    QDBusConnection::disconnectFromPeer(QStringLiteral("hal"));
    m_hal.quit();
    QVERIFY(m_hal.wait(60000));
}

std::optional<int> HalProxyTest::property(const QString &path, const char *key)
{
    return HalProxy(path, "org.freedesktop.Hal.Device", m_connection).intProperty(key);
}

void HalProxyTest::onlyASigned32BitNumberCountsHoweverItIsWrapped_data()
{
    const auto row = table<bool, int>("isNumber", "number");
    row("plain", true, 4368);
    row("variant", true, 4368);
    row("negative", true, -1);
    for (const char *other : {"unsigned", "unsigned variant", "wide", "narrow", "truth", "real",
             "text of digits", "digits variant"}) {
        row(other, false, 0);
    }
    row("text", false, 0);
    row("text variant", false, 0);
    row("list", false, 0);
    row("nothing", false, 0);
    row("error", false, 0); // though its text is a number
    row("number of an error", false, 0);
}

void HalProxyTest::onlyASigned32BitNumberCountsHoweverItIsWrapped()
{
    QFETCH(bool, isNumber);
    QFETCH(int, number);
    const std::optional<int> value = property(devicePath, QTest::currentDataTag());
    QCOMPARE(value.has_value(), isNumber);
    QCOMPARE(value.value_or(0), number);
}

void HalProxyTest::anObjectThatIsNotThereGivesNothing()
{
    QVERIFY(!property(QStringLiteral("/org/freedesktop/Hal/devices/other"), "plain"));
    QVERIFY(!property(QStringLiteral("/"), "plain"));
}

void HalProxyTest::aQuestionMayTakeFiveSeconds()
{
    QCOMPARE(HalProxy(devicePath, "org.freedesktop.Hal.Device", m_connection).timeout(), 5000);
}

void HalProxyTest::aPathThatIsNoneGivesNothingAndDoesNotEndTheProcess_data()
{
    QTest::addColumn<QString>("path");
    int number = 0;
    for (const QString &path :
        {QString(), QStringLiteral(" "), QStringLiteral("#"), QStringLiteral("..."),
            QStringLiteral("bad path"), QStringLiteral("/bad path"), QStringLiteral("//"),
            QStringLiteral("/a//b"), QStringLiteral("/a/"), QStringLiteral("a/b"),
            QStringLiteral("/a-b"), QStringLiteral("/a.b"), QStringLiteral("/a\nb"),
            QStringLiteral("/%s%n"), QStringLiteral("/../etc"), QStringLiteral("/a") + QChar(0xe9),
            QStringLiteral("/a") + QChar(0) + QStringLiteral("b"),
            QStringLiteral("/a") + QChar(0xd800), QStringLiteral("/\"'<>&"),
            QString(70000, QLatin1Char('/')), QStringLiteral("/*")}) {
        QTest::addRow("%d", ++number) << path;
    }
}

void HalProxyTest::aPathThatIsNoneGivesNothingAndDoesNotEndTheProcess()
{
    QFETCH(QString, path);
    QVERIFY(!property(path, "plain"));
    QCOMPARE(property(devicePath, "plain").value_or(0), 4368); // the connection still works
}

QTEST_GUILESS_MAIN(HalProxyTest)
#include "hal_proxy_test.moc"
