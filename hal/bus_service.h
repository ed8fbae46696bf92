// SPDX-License-Identifier: MIT
// The connection to the system bus: messages in and out.
#pragma once

#include "hal/device_table.h"

#include <memory>
#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

namespace hal {

/// Answers calls from a table of devices, which must outlive it, and tells announcements. All
/// functions return a negative errno on failure, like the library below.
class BusService
{
public:
    explicit BusService(const DeviceTable &devices);

    /// Connects. Calls are answered from now on, but nobody knows of us before ownName.
    int connect(sd_event *loop);

    /// Takes the name org.freedesktop.Hal; -EEXIST when another service has it. Waits for the bus.
    int ownName();

    /// Tells everybody.
    int announce(const Announcement &announcement);

    /// Waits until everything has left this process.
    int flush();

private:
    struct Close
    {
        void operator()(sd_bus *bus) const { sd_bus_flush_close_unref(bus); }
    };

    static int onMessage(sd_bus_message *message, void *self, sd_bus_error *error);

    const DeviceTable &m_devices;
    std::unique_ptr<sd_bus, Close> m_bus;
};

} // namespace hal
