// SPDX-License-Identifier: MIT
// The adaptor: what it declares, forwards and relays, the latter over a real D-Bus connection.
#include "bus_tables.h"
#include "dbus/daemon_adaptor.h"
#include "fake_daemon.h"
#include "test_data.h"
#include "test_table.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServer>
#include <QFile>
#include <QMetaMethod>
#include <QTest>
#include <QXmlStreamReader>
#include <algorithm>
#include <memory>

namespace {

constexpr int enough = 60000; // ms that no call here needs

const QString objectPath = QLatin1String(Bus::daemonPath);
const QString interfaceName = QLatin1String(Bus::daemonInterface);

QByteArray description()
{
    const QMetaObject &meta = DaemonAdaptor::staticMetaObject;
    return meta.classInfo(meta.indexOfClassInfo("D-Bus Introspection")).value();
}

/// A value of the D-Bus type @p type, another one for each @p index.
QVariant valueOf(char type, int index)
{
    switch (type) {
    case 'u':
        return 4294967295U - uint(index);
    case 'd':
        return 4294967295.0 + index;
    case 'i':
        return -7 - index;
    case 'b':
        return true;
    default:
        return QString(QStringLiteral("caf%1 \"%2\"").arg(QChar(0xe9)).arg(index));
    }
}

QVariantList valuesOf(const char *signature)
{
    QVariantList values;
    for (int i = 0; signature[i] != '\0'; ++i) {
        values.append(valueOf(signature[i], i));
    }
    return values;
}

QByteArray shown(const QVariantList &values)
{
    QByteArrayList parts;
    for (const QVariant &value : values) {
        parts.append(value.toString().toUtf8());
    }
    return parts.join('|');
}

} // namespace

class DaemonAdaptorTest : public QObject
{
    Q_OBJECT

public slots:
    void received(const QDBusMessage &message) { m_received.append(message); }

private slots:
    void initTestCase();
    void init();

    void theDescriptionListsTheInterfaceInOrder();
    void theDescriptionIsTheInstalledFiles();
    void thePublishedInterfaceNeverChanges();
    void itDeclaresItsSignalsAndSlotsInAlphabeticalOrder();

    void eachMethodReachesTheSlotOfItsName_data();
    void eachMethodReachesTheSlotOfItsName();
    void aCallWithOtherTypesIsRefusedAndReachesNothing_data();
    void aCallWithOtherTypesIsRefusedAndReachesNothing();
    void withoutAddressAndWithAnEmptyOneIsTheSame();
    void eachSignalIsRelayedOnceWithItsArguments_data();
    void eachSignalIsRelayedOnceWithItsArguments();
    void otherSignalsStayInside();
    void theDescriptionIsServedWordForWord();

    void aMissingSlotAnswersTheDefault();

private:
    QDBusMessage call(const QString &method, const QVariantList &arguments,
        const QString &interface = interfaceName);

    std::unique_ptr<QDBusServer> m_server;
    QDBusConnection m_client{QStringLiteral("none")};
    FakeDaemon m_daemon;
    QList<QDBusMessage> m_received;
};

void DaemonAdaptorTest::initTestCase()
{
    new DaemonAdaptor(&m_daemon);
    bool isConnected = false;
    m_server = std::make_unique<QDBusServer>(QStringLiteral("unix:tmpdir=/tmp"));
    connect(m_server.get(), &QDBusServer::newConnection, this, [&](QDBusConnection connection) {
        isConnected
            = connection.registerObject(objectPath, &m_daemon, QDBusConnection::ExportAdaptors);
    });
    m_client = QDBusConnection::connectToPeer(m_server->address(), QStringLiteral("client"));
    QTRY_VERIFY_WITH_TIMEOUT(isConnected, enough);
    for (const BusSignal &signal : daemonSignals) {
        QVERIFY(m_client.connect(QString(), objectPath, interfaceName,
            QString::fromLatin1(signal.name), this, SLOT(received(QDBusMessage))));
    }
}

void DaemonAdaptorTest::init()
{
    m_daemon.calls.clear();
    m_received.clear();
}

QDBusMessage DaemonAdaptorTest::call(
    const QString &method, const QVariantList &arguments, const QString &interface)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QString(), objectPath, interface, method);
    message.setArguments(arguments);
    // Both ends live on this thread, so that waiting must not block it.
    const QDBusPendingCall pending = m_client.asyncCall(message, enough);
    [&] { QTRY_VERIFY_WITH_TIMEOUT(pending.isFinished(), enough); }();
    return pending.reply();
}

void DaemonAdaptorTest::theDescriptionListsTheInterfaceInOrder()
{
    QByteArrayList described;
    QXmlStreamReader xml(description());
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        const auto attribute = [&](const char *name) {
            return xml.attributes().value(QLatin1String(name)).toLatin1();
        };
        if (xml.name() == QLatin1String("arg")) {
            described.last()
                += ' ' + attribute("direction") + ' ' + attribute("type") + ' ' + attribute("name");
        } else {
            described.append(xml.name().toLatin1() + ' ' + attribute("name"));
        }
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));

    QByteArrayList expected = {"interface com.norvix.Daemon"};
    const auto withArguments
        = [](QByteArray text, const char *names, const char *types, const char *direction) {
              const QByteArrayList list = QByteArray(names).split(',');
              for (int i = 0; types[i] != '\0'; ++i) {
                  text += QByteArray(" ") + direction + ' ' + types[i] + ' ' + list.at(i);
              }
              return text;
          };
    for (const BusSignal &signal : daemonSignals) {
        expected.append(withArguments(
            QByteArray("signal ") + signal.name, signal.arguments, signal.signature, "out"));
    }
    for (const BusMethod &method : daemonMethods) {
        QByteArray text = QByteArray("method ") + method.name;
        if (*method.out != '\0') {
            text += QByteArray(" out ") + method.out + ' '; // it has no name and stands first
        }
        expected.append(withArguments(text, method.arguments, method.in, "in"));
    }
    QCOMPARE(described, expected);
}

void DaemonAdaptorTest::theDescriptionIsTheInstalledFiles()
{
    QFile file(testDataFolder() + QStringLiteral("/../../dbus/com.norvix.Daemon.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    const int begin = text.indexOf("  <interface");
    const int end = text.indexOf("</node>");
    QVERIFY(begin > 0 && end > begin);
    QCOMPARE(description(), text.mid(begin, end - begin));
}

void DaemonAdaptorTest::thePublishedInterfaceNeverChanges()
{
    // Clients depend on every name, type and place of these 26 signals and 24 methods.
    QCOMPARE(QCryptographicHash::hash(description(), QCryptographicHash::Sha256).toHex(),
        QByteArray("96e124a8567c4fa9f082ed831d0fcf8125008f4594331db93312e4e0ecd2493c"));
}

void DaemonAdaptorTest::itDeclaresItsSignalsAndSlotsInAlphabeticalOrder()
{
    const QMetaObject &meta = DaemonAdaptor::staticMetaObject;
    QCOMPARE(meta.classInfo(meta.indexOfClassInfo("D-Bus Interface")).value(), "com.norvix.Daemon");

    const auto precedes = [](const QByteArray &a, const QByteArray &b) {
        return qstricmp(a.constData(), b.constData()) < 0;
    };
    QByteArrayList expected;
    for (const BusSignal &signal : daemonSignals) {
        expected.append(QByteArray(signal.name) + '(' + typesOf(signal.signature) + ')');
    }
    std::sort(expected.begin(), expected.end(), precedes);
    QByteArrayList methods;
    for (const BusMethod &method : daemonMethods) {
        methods.append(QByteArray(method.name) + '(' + typesOf(method.in) + ')');
    }
    std::sort(methods.begin(), methods.end(), precedes);
    expected += methods;

    QByteArrayList declared;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).access(), QMetaMethod::Public);
        declared.append(meta.method(i).methodSignature());
    }
    QCOMPARE(declared, expected);
}

void DaemonAdaptorTest::eachMethodReachesTheSlotOfItsName_data()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < daemonMethods.size(); ++i) {
        QTest::addRow("%s(%s)", daemonMethods[i].name, daemonMethods[i].in) << int(i);
    }
}

void DaemonAdaptorTest::eachMethodReachesTheSlotOfItsName()
{
    QFETCH(int, index);
    const BusMethod &method = daemonMethods.at(size_t(index));
    const QVariantList arguments = valuesOf(method.in);
    const QDBusMessage reply = call(QString::fromLatin1(method.name), arguments);
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    QCOMPARE(reply.signature(), QString::fromLatin1(method.out));
    QCOMPARE(
        m_daemon.calls, QByteArrayList{QByteArray(method.name) + '(' + shown(arguments) + ')'});

    const QByteArray result = resultOf(method);
    if (result == "void") {
        QVERIFY(reply.arguments().isEmpty());
        return;
    }
    const QVariant answer = reply.arguments().constFirst();
    if (result == "bool") {
        QCOMPARE(answer, QVariant(true));
    } else if (result == "int") {
        QCOMPARE(answer, QVariant(42));
    } else if (result == "QString") {
        QCOMPARE(answer.toString(),
            QStringLiteral("%1 of <%2>")
                .arg(QLatin1String(method.name), QString::fromUtf8(shown(arguments))));
    } else {
        QCOMPARE(answer.toStringList(),
            (QStringList{QStringLiteral("login"), QStringLiteral("pass word")}));
    }
}

void DaemonAdaptorTest::aCallWithOtherTypesIsRefusedAndReachesNothing_data()
{
    const auto row = table<QString, QVariantList>("method", "arguments");
    row("number for text", "getIP", {1});
    row("text for flag", "setConnectAtBoot", {QStringLiteral("true")});
    row("number for flag", "setConnectAtModemPlug", {1});
    row("text for number", "setIdlenessTime", {QStringLiteral("1")});
    row("unsigned for number", "setIdlenessTime", {1U});
    row("one too few", "setAccountData", {QStringLiteral("login")});
    row("one too many", "establishConnection", {QStringLiteral("now")});
    row("none where one belongs", "setConnectAtBoot", {});
    row("another letter case", "establishconnection", {});
    row("no method", "writeLog", {QStringLiteral("x")});
    row("a signal", "modemUnplugged", {});
}

void DaemonAdaptorTest::aCallWithOtherTypesIsRefusedAndReachesNothing()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    const QDBusMessage reply = call(method, arguments);
    QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
    QCOMPARE(m_daemon.calls, QByteArrayList());
}

void DaemonAdaptorTest::withoutAddressAndWithAnEmptyOneIsTheSame()
{
    const QString method = QStringLiteral("getIP");
    QCOMPARE(call(method, {}).arguments(), call(method, {QString()}).arguments());
    QCOMPARE(m_daemon.calls, (QByteArrayList{"getIP()", "getIP()"}));
}

void DaemonAdaptorTest::eachSignalIsRelayedOnceWithItsArguments_data()
{
    const auto row = table<int>("index");
    for (size_t i = 0; i < daemonSignals.size(); ++i) {
        row(daemonSignals[i].name, int(i));
    }
}

void DaemonAdaptorTest::eachSignalIsRelayedOnceWithItsArguments()
{
    QFETCH(int, index);
    const BusSignal &signal = daemonSignals.at(size_t(index));
    QVariantList values = valuesOf(signal.signature);
    std::array<QGenericArgument, 3> arguments;
    for (int i = 0; i < values.size(); ++i) {
        arguments.at(size_t(i)) = QGenericArgument(values.at(i).typeName(), values[i].constData());
    }
    QVERIFY(QMetaObject::invokeMethod(
        &m_daemon, signal.name, arguments[0], arguments[1], arguments[2]));
    QTRY_VERIFY(!m_received.isEmpty());
    call(QStringLiteral("reply"), {}); // a second one would have been sent before the answer
    QCoreApplication::processEvents();

    QCOMPARE(m_received.size(), 1);
    const QDBusMessage &message = m_received.constFirst();
    QCOMPARE(message.member(), QString::fromLatin1(signal.name));
    QCOMPARE(message.interface(), interfaceName);
    QCOMPARE(message.path(), objectPath);
    QCOMPARE(message.signature(), QString::fromLatin1(signal.signature));
    QCOMPARE(message.arguments(), values);
}

void DaemonAdaptorTest::otherSignalsStayInside()
{
    m_client.connect(QString(), objectPath, QString(), QStringLiteral("notOnTheBus"), this,
        SLOT(received(QDBusMessage)));
    emit m_daemon.notOnTheBus(1);
    call(QStringLiteral("reply"), {});
    QCOMPARE(m_received.size(), 0);
}

void DaemonAdaptorTest::theDescriptionIsServedWordForWord()
{
    const QDBusMessage reply = call(
        QStringLiteral("Introspect"), {}, QStringLiteral("org.freedesktop.DBus.Introspectable"));
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    const QByteArray served = reply.arguments().constFirst().toString().toUtf8();
    QCOMPARE(served.count(description()), 1);
}

void DaemonAdaptorTest::aMissingSlotAnswersTheDefault()
{
    QObject parent; // without any slot
    auto *adaptor = new DaemonAdaptor(&parent);
    for (const BusMethod &method : daemonMethods) {
        const QByteArray warning = QByteArray("QMetaObject::invokeMethod: No such method QObject::")
            + method.name + '(' + typesOf(method.in) + ')';
        QTest::ignoreMessage(QtWarningMsg, warning.constData());
    }
    QCOMPARE(adaptor->getIP(QStringLiteral("ppp0")), QString());
    QCOMPARE(adaptor->getIP(), QString());
    QCOMPARE(adaptor->getDefaultRoute(), QString());
    adaptor->setConnectAtBoot(true);
    adaptor->setConnectAtModemPlug(true);
    adaptor->establishConnection();
    adaptor->terminateConnection();
    adaptor->restartModem();
    adaptor->setIdlenessTime(1);
    adaptor->useNewModem();
    adaptor->setAccountData(QStringLiteral("a"), QStringLiteral("b"));
    QCOMPARE(adaptor->getIsModemPlugged(), false);
    QCOMPARE(adaptor->getIsCompiling(), false);
    QCOMPARE(adaptor->getConnectAtBoot(), false);
    QCOMPARE(adaptor->getConnectAtModemPlug(), false);
    QCOMPARE(adaptor->reply(), false);
    QCOMPARE(adaptor->getVPI(), QString());
    QCOMPARE(adaptor->getVCI(), QString());
    QCOMPARE(adaptor->getProtocol(), QString());
    QCOMPARE(adaptor->getService(), QString());
    QCOMPARE(adaptor->getInterface(), QString());
    QCOMPARE(adaptor->getConnectionState(), 0);
    QCOMPARE(adaptor->getIdlenessTime(), 0);
    QCOMPARE(adaptor->getLoginAndPassword(), QStringList());
}

QTEST_GUILESS_MAIN(DaemonAdaptorTest)
#include "daemon_adaptor_test.moc"
