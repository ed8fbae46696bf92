// SPDX-License-Identifier: MIT
// Which settings clients may set over the bus, and how they see them.
#include "daemon/setup_rules.h"
#include "test_table.h"

#include <QtTest>

class TestSetupRules : public QObject
{
    Q_OBJECT

private slots:
    void goodValuesAreTakenAsTheFileHoldsThem();
    void whatIsNotGoodIsRefusedWithAReason_data();
    void whatIsNotGoodIsRefusedWithAReason();
    void aRefusalTellsWhatIsExpected();
    void oneBadValueRefusesAll();
    void clientsSeeTypesAndNotTheFilesTexts();
    void unreadableAndMissingValuesAreLeftOut();
    void argumentsAreWordsWithoutControlCharacters();
};

void TestSetupRules::goodValuesAreTakenAsTheFileHoldsThem()
{
    const CheckedSettings checked = checkedSettings({{"protocol", "PPPoE"}, {"vpi", 8},
        {"vci", 65535}, {"service", "at home"}, {"autoconnect", true}, {"connect_at_boot", false},
        {"connect_at_modem_plug", true}, {"idleness", 300}});
    QCOMPARE(checked.refusal, QString());
    const QVariantMap expected = {{"protocol", "PPPoE"}, {"vpi", "8"}, {"vci", "65535"},
        {"service", "at home"}, {"autoconnect", true}, {"connect_at_boot", false},
        {"connect_at_modem_plug", true}, {"idleness", 300}};
    QCOMPARE(checked.values, expected);
}

void TestSetupRules::whatIsNotGoodIsRefusedWithAReason_data()
{
    const auto row = table<QString, QVariant>("key", "value");
    row("unknown", "vpx", QVariant(1));
    row("empty name", "", QVariant(1));
    row("a group", "Other/vpi", QVariant(1));
    row("another case", "VPI", QVariant(1));
    row("root's", "pppd_arguments", QVariant(QStringList{"mtu", "1400"}));
    row("the modem's name", "modem", QVariant("x"));
    row("the modem's vendor", "vendor_id", QVariant(1394));
    row("the modem's product", "product_id", QVariant(51966));
    row("the modem's identifier", "udi", QVariant("/x"));
    row("protocol in lower case", "protocol", QVariant("pppoe"));
    row("protocol as number", "protocol", QVariant(1));
    row("vpi too great", "vpi", QVariant(256));
    row("vpi negative", "vpi", QVariant(-1));
    row("vpi as text", "vpi", QVariant("8"));
    row("vpi as floating point", "vpi", QVariant(8.0));
    row("vpi as flag", "vpi", QVariant(true));
    row("vci too great", "vci", QVariant(65536));
    row("service with a line feed", "service", QVariant("a\nb"));
    row("service with an escape", "service", QVariant("a\x1b[1m"));
    row("service too long", "service", QVariant(QString(101, 'x')));
    row("service as list", "service", QVariant(QStringList{"a", "b"}));
    row("flag as text", "autoconnect", QVariant("true"));
    row("flag as number", "connect_at_boot", QVariant(1));
    row("idle time negative", "idleness", QVariant(-1));
}

void TestSetupRules::whatIsNotGoodIsRefusedWithAReason()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    const CheckedSettings checked = checkedSettings({{key, value}});
    QVERIFY(checked.refusal.contains(key));
    QVERIFY(checked.values.isEmpty());
}

void TestSetupRules::aRefusalTellsWhatIsExpected()
{
    const auto refusal = [](const QString &key, const QVariant &value) {
        return checkedSettings({{key, value}}).refusal;
    };
    QCOMPARE(refusal("vpx", 1), QStringLiteral("there is no setting to be set called vpx"));
    QCOMPARE(refusal("protocol", "pppoe"), QStringLiteral("protocol: PPPoE or PPPoA"));
    QCOMPARE(refusal("service", QString(101, 'x')),
        QStringLiteral("service: a text of at most 100 characters, none of them a control "
                       "character"));
}

void TestSetupRules::oneBadValueRefusesAll()
{
    const CheckedSettings checked = checkedSettings({{"vci", 35}, {"vpi", 256}});
    QVERIFY(!checked.refusal.isEmpty());
    QVERIFY(checked.values.isEmpty());
}

void TestSetupRules::clientsSeeTypesAndNotTheFilesTexts()
{
    const QVariantMap seen = settingsForClients({{"vpi", "8"}, {"vci", "35"},
        {"connect_at_boot", "true"}, {"autoconnect", "false"}, {"idleness", "30"},
        {"protocol", "PPPoE"}, {"service", QStringList{"a", "b"}}, {"vendor_id", "1394"},
        {"modem", "CXACRU modem"}, {"udi", "/x"}, {"pppd_arguments", "mtu"}, {"other", "x"}});
    const QVariantMap expected = {{"vpi", 8}, {"vci", 35}, {"connect_at_boot", true},
        {"autoconnect", false}, {"idleness", 30}, {"protocol", "PPPoE"}, {"service", "a, b"},
        {"vendor_id", 1394}, {"modem", "CXACRU modem"}, {"udi", "/x"}};
    QCOMPARE(seen, expected);
}

void TestSetupRules::unreadableAndMissingValuesAreLeftOut()
{
    QCOMPARE(settingsForClients({{"vpi", "eight"}, {"vci", ""}, {"idleness", QVariant()}}),
        QVariantMap());
}

void TestSetupRules::argumentsAreWordsWithoutControlCharacters()
{
    QCOMPARE(refusalOfArguments({"mtu", "1400"}), QString());
    QCOMPARE(refusalOfArguments({}), QString());
    QVERIFY(!refusalOfArguments({"mtu", ""}).isEmpty());
    QVERIFY(!refusalOfArguments({"mtu\n1400"}).isEmpty());
}

QTEST_APPLESS_MAIN(TestSetupRules)
#include "setup_rules_test.moc"
