// SPDX-License-Identifier: MIT
// Tests for hal/known_devices: the list kept over a restart.
#include "hal/known_devices.h"

#include "hal_test.h"
#include "test_table.h"

#include <QFile>
#include <QTemporaryDir>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::vector<hal::KnownObject> someObjects()
{
    hal::DeviceTable table;
    table.plug(device("1-1", 0x1110, 0x9041, "", 12), everythingIsPresent);
    table.plug(interface("1-1", 2), everythingIsPresent);
    table.plug(device("1-2", 0x1110, 0x9041), everythingIsPresent);
    table.plug(device("1-3", 0x572, 0xcafe, "A:B"), everythingIsPresent);
    return table.known();
}

std::string list(const QByteArray &line)
{
    return "norvix-hald devices 1\n" + line.toStdString() + "end\n";
}

} // namespace

class HalKnownDevicesTest : public QObject
{
    Q_OBJECT

private slots:
    void a_list_survives_writing_and_reading()
    {
        const std::vector<hal::KnownObject> before = someObjects();
        const auto after = hal::knownDevicesFrom(hal::knownDevicesText(before));
        QVERIFY(after);
        QCOMPARE(after->size(), before.size());
        for (size_t i = 0; i < before.size(); ++i) {
            QCOMPARE(text((*after)[i].udi), text(before[i].udi));
            QVERIFY(hal::sameInstance((*after)[i].record, before[i].record));
            QCOMPARE((*after)[i].record.deviceNumber.value_or(-1),
                before[i].record.deviceNumber.value_or(-1));
        }
    }

    void a_list_that_is_cut_off_anywhere_counts_as_none()
    {
        const std::string whole = hal::knownDevicesText(someObjects());
        for (size_t length = 0; length + 1 < whole.size(); ++length) {
            QVERIFY2(!hal::knownDevicesFrom(std::string_view(whole).substr(0, length)),
                std::to_string(length).c_str());
        }
    }

    void a_list_with_a_line_that_makes_no_sense_counts_as_none_data()
    {
        const auto row = table<QByteArray>("line");
        const QByteArray udi = "/org/freedesktop/Hal/devices/usb_device_1_2_x";
        row("good, to compare", "device\t" + udi + "\t1\t2\t3\tx\t/sys/1\n");
        row("unknown kind", "thing\t" + udi + "\t1\t2\t3\tx\t/sys/1\n");
        row("no identifier", "device\t/org/x\t1\t2\t3\tx\t/sys/1\n");
        row("the computer", "device\t/org/freedesktop/Hal/devices/computer\t1\t2\t3\tx\t/sys/1\n");
        row("vendor", "device\t" + udi + "\t10000\t2\t3\tx\t/sys/1\n");
        row("product", "device\t" + udi + "\t1\t\t3\tx\t/sys/1\n");
        row("number", "device\t" + udi + "\t1\t2\t-2\tx\t/sys/1\n");
        row("interface number", "interface\t" + udi + "\t0\t0\t-1\t-\t/sys/1\n");
        row("no serial", "device\t" + udi + "\t1\t2\t3\t\t/sys/1\n");
        row("no path", "device\t" + udi + "\t1\t2\t3\tx\t\n");
        row("relative path", "device\t" + udi + "\t1\t2\t3\tx\tsys/1\n");
        row("one field too few", "device\t" + udi + "\t1\t2\t3\tx\n");
        row("one field too many", "device\t" + udi + "\t1\t2\t3\tx\t/sys/1\t\tz\n");
        row("empty line", "\n");
        row("two lists", "end\n");
    }
    void a_list_with_a_line_that_makes_no_sense_counts_as_none()
    {
        QFETCH(QByteArray, line);
        const bool isGood = QByteArray(QTest::currentDataTag()).startsWith("good");
        QCOMPARE(bool(hal::knownDevicesFrom(list(line))), isGood);
    }

    void another_format_counts_as_none()
    {
        QVERIFY(hal::knownDevicesFrom("norvix-hald devices 1\nend\n"));
        QVERIFY(!hal::knownDevicesFrom("norvix-hald devices 2\nend\n"));
        QVERIFY(!hal::knownDevicesFrom(""));
        QVERIFY(!hal::knownDevicesFrom("end\n"));
    }

    void a_path_that_would_break_the_format_is_forgotten()
    {
        std::vector<hal::KnownObject> objects = someObjects();
        objects[0].record.syspath += "\n";
        const auto after = hal::knownDevicesFrom(hal::knownDevicesText(objects));
        QVERIFY(after && after->size() == objects.size() - 1);
    }

    void the_file_is_replaced_as_a_whole()
    {
        QTemporaryDir folder;
        const std::string path = folder.filePath("devices").toStdString();
        QVERIFY(!hal::readKnownDevices(path));
        QVERIFY(hal::writeKnownDevices(path, someObjects()));
        const int before = open(path.c_str(), O_RDONLY);
        QVERIFY(hal::writeKnownDevices(path, {}));
        struct stat old = {};
        QVERIFY(fstat(before, &old) == 0 && old.st_size > 100 && old.st_nlink == 0);
        close(before);
        QVERIFY(hal::readKnownDevices(path) && hal::readKnownDevices(path)->empty());
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList("devices"));
    }

    void what_is_no_regular_file_is_neither_read_nor_followed()
    {
        QTemporaryDir folder;
        const std::string path = folder.filePath("devices").toStdString();
        const std::string other = folder.filePath("other").toStdString();
        QVERIFY(hal::writeKnownDevices(other, someObjects()));
        QCOMPARE(symlink(other.c_str(), path.c_str()), 0);
        QVERIFY(!hal::readKnownDevices(path));
        QCOMPARE(symlink(other.c_str(), (path + ".new").c_str()), 0);
        QVERIFY(hal::writeKnownDevices(path, {}));
        QVERIFY(hal::readKnownDevices(other)->size() == someObjects().size());
        QCOMPARE(unlink(path.c_str()), 0);
        QCOMPARE(mkfifo(path.c_str(), 0600), 0);
        QVERIFY(!hal::readKnownDevices(path));
    }

    void a_folder_that_is_not_there_is_an_error()
    {
        QTemporaryDir folder;
        QVERIFY(!hal::writeKnownDevices(folder.filePath("no/devices").toStdString(), {}));
        QCOMPARE(errno, ENOENT);
    }
};

QTEST_APPLESS_MAIN(HalKnownDevicesTest)
#include "hal_known_devices_test.moc"
