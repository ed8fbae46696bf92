// SPDX-License-Identifier: MIT
// The running companion: udev's events through the table to the bus.
#pragma once

#include "hal/bus_service.h"
#include "hal/device_table.h"
#include "hal/udev_source.h"

#include <memory>
#include <string>
#include <systemd/sd-event.h>

namespace hal {

/// Everything on one thread and one event loop.
class Service
{
public:
    /// @p source must be receiving already. The list of devices is kept in the file
    /// @p knownDevicesPath over a restart.
    Service(std::unique_ptr<UdevSource> source, MonitorGroup group, std::string knownDevicesPath);

    /// Serves until a signal ends it. Returns the exit status of the process: 0 after SIGTERM or
    /// SIGINT and where another service has the name, 1 on failure, with a line on standard error.
    int run();

    /// Prints what is seen now, one object a line. Returns the exit status of the process.
    int list();

private:
    struct Unref
    {
        void operator()(sd_event *loop) const { sd_event_unref(loop); }
        void operator()(sd_event_source *source) const { sd_event_source_unref(source); }
    };

    bool takeStock(Announcements *news);
    int prepareLoop();
    static int onEvents(sd_event_source *, int, unsigned int, void *self);
    int handleEvents();
    void tell(const Announcements &news);
    void remember();

    std::unique_ptr<UdevSource> m_source;
    const MonitorGroup m_group;
    const std::string m_knownDevicesPath;
    DeviceTable m_devices;
    std::unique_ptr<sd_event, Unref> m_loop;
    std::unique_ptr<sd_event_source, Unref> m_events;
    BusService m_bus{m_devices};
    std::uint64_t m_countedUpTo = 0; ///< events up to this number are in the table already
    bool m_isFirstEvent = true;
    bool m_rememberFailed = false;
};

} // namespace hal
