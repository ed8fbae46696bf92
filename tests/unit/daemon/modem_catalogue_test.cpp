// SPDX-License-Identifier: MIT
// The catalogue, pair by pair, and the search in it.
#include "daemon/modem_catalogue.h"

#include <QTest>
#include <array>

namespace {

/// One row of the catalogue, with the ids in decimal: a second source beside the hexadecimal one.
struct Row
{
    int record;
    qint32 vendorId;
    qint32 productId;
};

constexpr std::array<Row, 29> rows = {{
    {0, 4368, 36929},
    {0, 4368, 36930},
    {1, 4368, 36880},
    {1, 4368, 36879},
    {1, 4368, 36897},
    {1, 4368, 36898},
    {1, 4368, 36899},
    {1, 4368, 36900},
    {1, 4368, 36913},
    {1, 4368, 36914},
    {2, 1721, 16481},
    {3, 1155, 312},
    {4, 1394, 51966},
    {4, 1394, 51968},
    {4, 1394, 51969},
    {4, 1394, 51970},
    {4, 1394, 51974},
    {4, 1394, 51975},
    {4, 2275, 256},
    {4, 2275, 258},
    {4, 3760, 13399},
    {4, 6147, 21776},
    {4, 1653, 512},
    {4, 1414, 13066},
    {4, 1414, 13067},
    {4, 1625, 32},
    {4, 1289, 2066},
    {4, 4109, 51969},
    {4, 4109, 13122},
}};

QString nameOf(qint32 vendorId, qint32 productId)
{
    static const QList<ModemInfo> modems = modemCatalogue();
    const ModemInfo *modem = findModem(modems, vendorId, productId);
    return modem == nullptr ? QStringLiteral("none") : modem->name;
}

} // namespace

class ModemCatalogueTest : public QObject
{
    Q_OBJECT

private slots:
    void theFiveRecordsStandInOrder();
    void everyPairIsFoundInItsRecord();
    void noOtherPairOfTheIdsIsFound();
    void aDeviceHasTheNameOfItsRecord_data();
    void aDeviceHasTheNameOfItsRecord();
    void theEarlierRecordWins();
    void aNewRecordIsEmpty();
};

void ModemCatalogueTest::theFiveRecordsStandInOrder()
{
    const QList<ModemInfo> modems = modemCatalogue();
    QByteArrayList shown;
    for (const ModemInfo &modem : modems) {
        shown.append((modem.name + QLatin1Char('/') + modem.driver).toLatin1() + '/'
            + QByteArray::number(modem.ids.size()));
    }
    const QByteArrayList expected = {"Sagem F@st 800 E4/ueagle-atm/2",
        "Sagem F@st 800/ueagle-atm/8", "Thomson Speedtouch 330/speedtch/1",
        "ZTE ZXDSL 852/unicorn_usb_eth/1", "CXACRU modem/cxacru/17"};
    QCOMPARE(shown, expected);
}

void ModemCatalogueTest::everyPairIsFoundInItsRecord()
{
    const QList<ModemInfo> modems = modemCatalogue();
    for (const Row &row : rows) {
        QCOMPARE(findModem(modems, row.vendorId, row.productId), &modems.at(row.record));
        for (int i = 0; i < modems.size(); ++i) {
            QCOMPARE(modems.at(i).ids.contains(row.vendorId, row.productId), i == row.record);
        }
    }
}

void ModemCatalogueTest::noOtherPairOfTheIdsIsFound()
{
    int found = 0;
    for (const Row &vendor : rows) {
        for (const Row &product : rows) {
            bool known = false;
            for (const Row &row : rows) {
                known = known
                    || (row.vendorId == vendor.vendorId && row.productId == product.productId);
            }
            QCOMPARE(nameOf(vendor.vendorId, product.productId) != QLatin1String("none"), known);
            found += known ? 1 : 0;
        }
    }
    QVERIFY(found >= int(rows.size()));
}

void ModemCatalogueTest::aDeviceHasTheNameOfItsRecord_data()
{
    QTest::addColumn<int>("vendorId");
    QTest::addColumn<int>("productId");
    QTest::addColumn<QString>("name");
    const auto row = [](int vendorId, int productId, const char *name) {
        QTest::addRow("%04x:%04x", uint(vendorId), uint(productId))
            << vendorId << productId << QString::fromLatin1(name);
    };
    row(0x1110, 0x9041, "Sagem F@st 800 E4");
    row(0x1110, 0x900F, "Sagem F@st 800");
    row(0x06B9, 0x4061, "Thomson Speedtouch 330");
    row(0x0483, 0x0138, "ZTE ZXDSL 852");
    row(0x100D, 0xCB01, "CXACRU modem");
    row(0x0572, 0xCB01, "CXACRU modem");
    row(0x1110, 0x9000, "none"); // an unlisted product of a listed vendor
    row(0x0572, 0x4061, "none"); // a listed product of another record
    row(0x4061, 0x06B9, "none");
    row(0, 0, "none");
    row(-1, -1, "none");
    row(0x1110 + 0x10000, 0x9041, "none"); // no bit is masked off
    row(0x1110, 0x9041 + 0x10000, "none");
    row(0x1110 - 0x10000, 0x9041, "none");
}

void ModemCatalogueTest::aDeviceHasTheNameOfItsRecord()
{
    QFETCH(int, vendorId);
    QFETCH(int, productId);
    QFETCH(QString, name);
    QCOMPARE(nameOf(vendorId, productId), name);
}

void ModemCatalogueTest::theEarlierRecordWins()
{
    ModemInfo first;
    first.ids.insert(1, 2);
    first.ids.insert(1, 3);
    ModemInfo second;
    second.ids.insert(1, 2);
    second.ids.insert(4, 5);
    const QList<ModemInfo> modems = {first, second};
    QCOMPARE(findModem(modems, 1, 2), &modems.at(0));
    QCOMPARE(findModem(modems, 1, 3), &modems.at(0));
    QCOMPARE(findModem(modems, 4, 5), &modems.at(1));
    QCOMPARE(findModem(modems, 4, 2), nullptr);
    QCOMPARE(findModem(QList<ModemInfo>(), 1, 2), nullptr);
}

void ModemCatalogueTest::aNewRecordIsEmpty()
{
    const ModemInfo modem;
    QVERIFY(modem.name.isEmpty());
    QVERIFY(modem.driver.isEmpty());
    QVERIFY(modem.ids.isEmpty());
}

QTEST_APPLESS_MAIN(ModemCatalogueTest)
#include "modem_catalogue_test.moc"
