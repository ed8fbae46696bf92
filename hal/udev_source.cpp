// SPDX-License-Identifier: MIT
#include "hal/udev_source.h"

#include "hal/text.h"

#include <cerrno>
#include <cstdio>
#include <string_view>
#include <unistd.h>

namespace hal {

namespace {

/// Room for some ten thousand events; the kernel gives an unprivileged process what it may have.
constexpr int receiveBufferSize = 16 * 1024 * 1024;

/// So that a flood does not keep the bus waiting.
constexpr size_t maxBatch = 1000;

constexpr int maxScans = 5;

/// The number of the kernel's latest event; 0 when it is not told.
std::uint64_t latestSequence()
{
    std::uint64_t sequence = 0;
    if (FILE *const file = std::fopen("/sys/kernel/uevent_seqnum", "re")) {
        unsigned long long number = 0;
        if (std::fscanf(file, "%llu", &number) == 1) {
            sequence = number;
        }
        std::fclose(file);
    }
    return sequence;
}

std::optional<UsbKind> kindOf(udev_device *device)
{
    const char *const type = udev_device_get_devtype(device);
    const std::string_view name = type ? type : "";
    if (name == "usb_device") {
        return UsbKind::Device;
    }
    return name == "usb_interface" ? std::optional(UsbKind::Interface) : std::nullopt;
}

} // namespace

bool udevRuns()
{
    return access("/run/udev/control", F_OK) == 0;
}

std::unique_ptr<UdevSource> UdevSource::open(MonitorGroup group)
{
    std::unique_ptr<UdevSource> source(new UdevSource);
    source->m_udev.reset(udev_new());
    if (!source->m_udev) {
        return nullptr;
    }
    source->m_monitor.reset(udev_monitor_new_from_netlink(source->m_udev.get(), nameOf(group)));
    udev_monitor *const monitor = source->m_monitor.get();
    if (!monitor) {
        return nullptr;
    }
    udev_monitor_set_receive_buffer_size(monitor, receiveBufferSize);
    if (udev_monitor_filter_add_match_subsystem_devtype(monitor, "usb", nullptr) < 0
        || udev_monitor_enable_receiving(monitor) < 0) {
        return nullptr;
    }
    return source;
}

UdevSource::Batch UdevSource::receive()
{
    Batch batch;
    while (batch.events.size() < maxBatch) {
        errno = 0;
        const DevicePointer device(udev_monitor_receive_device(m_monitor.get()));
        if (device) {
            batch.events.push_back(eventFrom(device.get()));
            continue;
        }
        if (errno == ENOBUFS) {
            batch.someWereLost = true;
        } else if (errno != 0 && errno != EAGAIN && errno != EINTR) {
            batch.error = errno;
        }
        break;
    }
    return batch;
}

UdevEvent UdevSource::eventFrom(udev_device *device)
{
    UdevEvent event;
    const char *const action = udev_device_get_action(device);
    event.action = actionFrom(action ? action : "");
    std::optional<UsbTexts> texts = textsFrom(device, event.action == UdevAction::Add);
    if (texts) {
        event.texts = std::move(*texts);
    } else {
        event.action = UdevAction::Other;
    }
    event.sequence = udev_device_get_seqnum(device);
    return event;
}

std::optional<UsbTexts> UdevSource::textsFrom(udev_device *device, bool withAttributes)
{
    const std::optional<UsbKind> kind = kindOf(device);
    const char *const syspath = udev_device_get_syspath(device);
    if (!kind || !syspath) {
        return std::nullopt;
    }
    UsbTexts texts;
    texts.kind = *kind;
    texts.syspath = syspath;
    for (const char *name : propertyNames()) {
        if (const char *const text = udev_device_get_property_value(device, name)) {
            texts.properties.emplace(name, text);
        }
    }
    for (const char *name : withAttributes ? attributeNames(*kind) : std::vector<const char *>()) {
        if (const char *const text = udev_device_get_sysattr_value(device, name)) {
            texts.attributes.emplace(name, text);
        }
    }
    if (const char *const driver = udev_device_get_driver(device)) {
        texts.driver = driver;
    }
    return texts;
}

std::optional<UdevSource::Present> UdevSource::enumerate()
{
    for (int attempt = 1;; ++attempt) {
        const std::uint64_t before = latestSequence();
        std::optional<std::vector<UsbRecord>> records = scan();
        if (!records) {
            return std::nullopt;
        }
        // What changes under the eyes of the reader may be seen in parts. In a storm the best that
        // can be had is good enough: its events follow.
        if (latestSequence() == before || attempt == maxScans) {
            return Present{std::move(*records), before};
        }
    }
}

std::optional<std::vector<UsbRecord>> UdevSource::scan() const
{
    const std::unique_ptr<udev_enumerate, Unref> list(udev_enumerate_new(m_udev.get()));
    if (!list || udev_enumerate_add_match_subsystem(list.get(), "usb") < 0
        || udev_enumerate_scan_devices(list.get()) < 0) {
        return std::nullopt;
    }
    std::vector<UsbRecord> records;
    udev_list_entry *entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(list.get()))
    {
        const DevicePointer device(
            udev_device_new_from_syspath(m_udev.get(), udev_list_entry_get_name(entry)));
        const std::optional<UsbTexts> texts = device ? textsFrom(device.get(), true) : std::nullopt;
        if (std::optional<UsbRecord> record = texts ? usbRecordFrom(*texts) : std::nullopt) {
            records.push_back(std::move(*record));
        }
    }
    return records;
}

} // namespace hal
