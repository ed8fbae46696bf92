// SPDX-License-Identifier: MIT
// What the central object declares: its signals and slots by name, type, order and access.
#include "bus_tables.h"
#include "daemon/norvix_daemon.h"

#include <QMetaMethod>
#include <QTest>

namespace {

/// The object's own methods of one kind, "result name(types)" each.
QByteArrayList declared(bool (*isWanted)(const QMetaMethod &))
{
    QByteArrayList list;
    const QMetaObject &meta = Norvix_Daemon::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (isWanted(method)) {
            list.append(method.typeName() + QByteArray(" ") + method.methodSignature());
        }
    }
    return list;
}

QByteArray shown(const QByteArray &result, const char *name, const QByteArray &types)
{
    return result + ' ' + name + '(' + types + ')';
}

} // namespace

class DaemonMetaObjectTest : public QObject
{
    Q_OBJECT

private slots:
    void itNamesItsInterface();
    void itsScriptableSignalsAreTheInterfacesInOrder();
    void signalArgumentsHaveTheirNames();
    void itsPublicSlotsAreTheInterfacesMethodsInOrder();
    void itsPrivateSlotsFollow();
};

void DaemonMetaObjectTest::itNamesItsInterface()
{
    const QMetaObject &meta = Norvix_Daemon::staticMetaObject;
    const int index = meta.indexOfClassInfo("D-Bus Interface");
    QVERIFY(index >= 0);
    QCOMPARE(meta.classInfo(index).value(), "com.norvix.Daemon");
    QCOMPARE(meta.className(), "Norvix_Daemon");
}

void DaemonMetaObjectTest::itsScriptableSignalsAreTheInterfacesInOrder()
{
    QByteArrayList expected;
    for (const BusSignal &signal : daemonSignals) {
        expected.append(shown("void", signal.name, typesOf(signal.signature)));
    }
    QCOMPARE(declared([](const QMetaMethod &method) {
        return method.methodType() == QMetaMethod::Signal;
    }),
        expected);
    QCOMPARE(declared([](const QMetaMethod &method) {
        return method.methodType() == QMetaMethod::Signal
            && (method.attributes() & QMetaMethod::Scriptable) != 0;
    }),
        expected);
}

void DaemonMetaObjectTest::signalArgumentsHaveTheirNames()
{
    const QMetaObject &meta = Norvix_Daemon::staticMetaObject;
    for (const BusSignal &signal : daemonSignals) {
        const QByteArray signature = shown("", signal.name, typesOf(signal.signature)).mid(1);
        const QMetaMethod method = meta.method(meta.indexOfSignal(signature));
        QCOMPARE(method.parameterNames().join(','), QByteArray(signal.arguments));
    }
}

void DaemonMetaObjectTest::itsPublicSlotsAreTheInterfacesMethodsInOrder()
{
    QByteArrayList expected;
    for (const BusMethod &method : daemonMethods) {
        expected.append(shown(resultOf(method), method.name, typesOf(method.in)));
    }
    QCOMPARE(declared([](const QMetaMethod &method) {
        return method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Public;
    }),
        expected);
}

void DaemonMetaObjectTest::itsPrivateSlotsFollow()
{
    const QByteArrayList expected = {
        "void connectingStarted()",
        "void connectingFinished()",
        "void writeLog(QString)",
        "void deviceAdded(QString)",
        "void deviceRemoved(QString)",
        "void verifyDevice()",
        "void verifyDNS()",
        "void getTransmissionStatistics(QString)",
        "void getTransmissionStatistics()", // its default argument
        "QTime getConnectionTime()",
        "void debugConnecting(QByteArray)",
        "void compilationFinished()",
        "void compilationStarted()",
    };
    QCOMPARE(declared([](const QMetaMethod &method) {
        return method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Private;
    }),
        expected);
}

QTEST_APPLESS_MAIN(DaemonMetaObjectTest)
#include "daemon_meta_object_test.moc"
