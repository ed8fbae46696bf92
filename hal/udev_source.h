// SPDX-License-Identifier: MIT
// Reads USB devices and their events from libudev.
#pragma once

#include "hal/options.h"
#include "hal/udev_event.h"
#include "hal/usb_record.h"

#include <libudev.h>
#include <memory>
#include <optional>
#include <vector>

namespace hal {

/// Whether a udev daemon is there whose events one can wait for.
bool udevRuns();

/// One subscription to USB events, and the list of what is present. Receiving begins in open, so
/// that whatever comes after the list was made also comes as an event.
class UdevSource
{
public:
    /// Empty when libudev gives no monitor; errno tells why.
    static std::unique_ptr<UdevSource> open(MonitorGroup group);

    /// Becomes readable with each event.
    int descriptor() const { return udev_monitor_get_fd(m_monitor.get()); }

    struct Batch
    {
        std::vector<UdevEvent> events;
        bool someWereLost = false;
        int error = 0; ///< an errno that will not go away; 0 when all is well
    };

    /// Takes the events that have come, without waiting.
    Batch receive();

    struct Present
    {
        std::vector<UsbRecord> records;
        std::uint64_t upToSequence = 0; ///< events up to this number tell nothing new
    };

    /// Everything that is plugged now, in any order. Empty when sysfs cannot be read.
    std::optional<Present> enumerate();

private:
    struct Unref
    {
        void operator()(udev *context) const { udev_unref(context); }
        void operator()(udev_monitor *monitor) const { udev_monitor_unref(monitor); }
        void operator()(udev_enumerate *list) const { udev_enumerate_unref(list); }
        void operator()(udev_device *device) const { udev_device_unref(device); }
    };
    using DevicePointer = std::unique_ptr<udev_device, Unref>;

    UdevSource() = default;
    std::optional<std::vector<UsbRecord>> scan() const;
    static UdevEvent eventFrom(udev_device *device);
    static std::optional<UsbTexts> textsFrom(udev_device *device, bool withAttributes);

    std::unique_ptr<udev, Unref> m_udev;
    std::unique_ptr<udev_monitor, Unref> m_monitor;
};

} // namespace hal
