// SPDX-License-Identifier: MIT
// Any sequence of events: what is announced is what is listed, and every name is there once.
#include "hal/device_table.h"
#include "hal/udi.h"

#include <cstdlib>
#include <set>

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

/// Two bytes make one of few devices or interfaces, so that they often meet.
hal::UsbRecord recordFrom(unsigned char place, unsigned char what)
{
    static const char *const places[] = {"/s/1", "/s/1/2", "/s/1/2/3", "/s/4", "/s/4/5", "/s/10"};
    static const char *const serials[] = {"noserial", "noserial_0", "noserial_if0", "x"};
    hal::UsbRecord record;
    record.syspath = places[place % std::size(places)];
    if (place & 0x40) {
        record.kind = hal::UsbKind::Interface;
        record.interfaceNumber = what % 3;
        record.syspath += "/:1." + std::to_string(record.interfaceNumber);
        return record;
    }
    record.vendorId = what & 1;
    record.productId = (what >> 1) & 1;
    record.serial = serials[(what >> 2) & 3];
    if (what & 0x80) {
        record.deviceNumber = (what >> 4) & 7;
    }
    return record;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    hal::DeviceTable table;
    std::set<std::string> announced;
    const auto hear = [&](const hal::Announcements &news) {
        for (const hal::Announcement &one : news) {
            if (one.kind == hal::Announcement::Kind::Added) {
                require(announced.insert(one.udi).second);
            } else if (one.kind == hal::Announcement::Kind::Removed) {
                require(announced.erase(one.udi) == 1);
            } else {
                require(announced.count(one.udi) == 1);
            }
        }
    };
    for (size_t i = 0; i + 3 <= size; i += 3) {
        const hal::UsbRecord record = recordFrom(data[i + 1], data[i + 2]);
        const unsigned char action = data[i];
        switch (action % 5) {
        case 0:
        case 1:
            hear(table.plug(record, [&](const std::string &syspath) {
                return (std::hash<std::string>()(syspath) ^ action) & 8;
            }));
            break;
        case 2:
            hear(table.unplug(record.syspath, record.deviceNumber));
            break;
        case 3:
            hear(table.setDriver(
                record.syspath, action & 0x80 ? std::optional<std::string>("usb") : std::nullopt));
            break;
        case 4: {
            const std::vector<hal::KnownObject> known = table.known();
            table = hal::DeviceTable();
            table.restore(known);
            hear(table.reconcile({record, recordFrom(action, data[i + 2])}));
            break;
        }
        }
        std::set<std::string> listed;
        for (const hal::HalObject *object : table.objects()) {
            require(listed.insert(object->udi).second && table.find(object->udi) == object);
        }
        listed.erase(std::string(hal::computerUdi));
        require(listed == announced);
    }
    return 0;
}
