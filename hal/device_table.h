// SPDX-License-Identifier: MIT
// The devices that are present, as HAL shows them: what udev tells goes in, what is to be announced
// comes out. No I/O here.
#pragma once

#include "hal/properties.h"
#include "hal/usb_record.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace hal {

/// One object on the bus.
struct HalObject
{
    std::string udi;
    Properties properties;
};

/// Something that clients are to be told. The table already shows it.
struct Announcement
{
    enum class Kind
    {
        Added,
        Removed,
        DriverAppeared,
        DriverChanged,
        DriverVanished
    };

    Kind kind;
    std::string udi;
};
using Announcements = std::vector<Announcement>;

/// What is remembered of an object over a restart of this service.
struct KnownObject
{
    std::string udi;
    UsbRecord record; ///< without driver and facts
};

/// The list of present devices. Every operation returns what to announce, in order: a device before
/// its interfaces when it comes, after them when it goes. An identifier stays with its object until
/// that is gone and is free for the next one from then on.
class DeviceTable
{
public:
    /// Whether a device still stands at a place in sysfs. When a device comes whose identifier is
    /// taken, the holder may be the very same device in its former port, gone already but with its
    /// removal still on the way; it is withdrawn then, so that the identifier stays the device's.
    using Presence = std::function<bool(const std::string &syspath)>;

    DeviceTable();

    /// @p record came. Known already: only its driver is looked at. In the place of something else:
    /// that one's removal was missed and is made up for. An interface whose device is not there yet
    /// waits for it.
    Announcements plug(UsbRecord record, const Presence &stillPresent);

    /// What stood at @p syspath is gone, with everything below it. Nothing happens when
    /// @p deviceNumber is known and is not that of the device there: the news is an old one.
    Announcements unplug(const std::string &syspath, std::optional<int> deviceNumber = {});

    /// A driver took (or, empty, left) what stands at @p syspath.
    Announcements setDriver(const std::string &syspath, const std::optional<std::string> &driver);

    /// Exactly @p records are present, whatever was known before: for the start and after lost
    /// events.
    Announcements reconcile(std::vector<UsbRecord> records);

    /// Fills the empty table with what an earlier run knew, to be followed by reconcile.
    void restore(const std::vector<KnownObject> &known);

    /// What to hand to restore in the next run.
    std::vector<KnownObject> known() const;

    /// The object @p udi, or nullptr; valid until the table changes.
    const HalObject *find(std::string_view udi) const;

    /// All objects: the computer first, every device before its interfaces. Valid until the table
    /// changes.
    std::vector<const HalObject *> objects() const;

private:
    struct Entry
    {
        HalObject object;
        UsbRecord record; ///< its facts have moved into the object
        bool isRestored = false;
    };
    using Entries = std::map<std::string, Entry>;

    void insert(UsbRecord record, const Presence &stillPresent, Announcements *news);
    void plugWaitingInterfaces(
        const std::string &deviceSyspath, const Presence &stillPresent, Announcements *news);
    void withdraw(const std::string &syspath, Announcements *news);
    void erase(const std::string &syspath, Announcements *news);
    std::string freeUdi(
        const std::string &wanted, const Presence &stillPresent, Announcements *news);
    std::optional<std::string> wantedUdi(const UsbRecord &record) const;
    std::string parentUdi(const std::string &syspath) const;
    void complete(Entry *entry, Properties facts) const;

    HalObject m_computer;
    Entries m_entries; ///< by syspath: what is plugged into something sorts behind it
    std::unordered_map<std::string_view, const Entry *> m_byUdi;
    std::map<std::string, UsbRecord> m_waiting; ///< interfaces without their device, by syspath
};

} // namespace hal
