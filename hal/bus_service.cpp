// SPDX-License-Identifier: MIT
#include "hal/bus_service.h"

#include "hal/answers.h"
#include "hal/introspection.h"

#include <cstdio>

namespace hal {

namespace {

constexpr const char *busName = "org.freedesktop.Hal";
constexpr size_t maxTexts = 2; // no method wants more

struct Unref
{
    void operator()(sd_bus_message *message) const { sd_bus_message_unref(message); }
};
using MessagePointer = std::unique_ptr<sd_bus_message, Unref>;

std::string_view view(const char *text)
{
    return text ? std::string_view(text) : std::string_view();
}

std::vector<std::string_view> leadingTexts(sd_bus_message *message)
{
    std::vector<std::string_view> texts;
    char type = 0;
    while (texts.size() < maxTexts && sd_bus_message_peek_type(message, &type, nullptr) > 0
        && (type == 's' || type == 'o')) {
        const char *text = nullptr;
        if (sd_bus_message_read_basic(message, type, &text) < 0) {
            break;
        }
        texts.emplace_back(text);
    }
    return texts;
}

/// Appends a value with its own type, without a variant around it.
struct Append
{
    sd_bus_message *message;

    int operator()(std::int32_t number) const
    {
        return sd_bus_message_append_basic(message, 'i', &number);
    }
    int operator()(std::uint64_t number) const
    {
        return sd_bus_message_append_basic(message, 't', &number);
    }
    int operator()(double number) const
    {
        return sd_bus_message_append_basic(message, 'd', &number);
    }
    int operator()(bool truth) const
    {
        const int number = truth;
        return sd_bus_message_append_basic(message, 'b', &number);
    }
    int operator()(const std::string &text) const
    {
        return sd_bus_message_append_basic(message, 's', text.c_str());
    }
    int operator()(const std::vector<std::string> &list) const
    {
        int result = sd_bus_message_open_container(message, 'a', "s");
        for (auto text = list.begin(); result >= 0 && text != list.end(); ++text) {
            result = (*this)(*text);
        }
        return result < 0 ? result : sd_bus_message_close_container(message);
    }
};

const char *signatureOf(const Value &value)
{
    constexpr const char *signatures[] = {"i", "t", "d", "b", "s", "as"};
    static_assert(std::size(signatures) == std::variant_size_v<Value>);
    return signatures[value.index()];
}

int appendObjects(sd_bus_message *message, const ObjectList &objects)
{
    int result = sd_bus_message_open_container(message, 'a', "s");
    for (auto object = objects.begin(); result >= 0 && object != objects.end(); ++object) {
        result = sd_bus_message_append_basic(message, 's', (*object)->udi.c_str());
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

int appendProperty(sd_bus_message *message, const Properties::Entry &entry)
{
    const std::string key(entry.first);
    int result = sd_bus_message_open_container(message, 'e', "sv");
    if (result >= 0) {
        result = sd_bus_message_append_basic(message, 's', key.c_str());
    }
    if (result >= 0) {
        result = sd_bus_message_open_container(message, 'v', signatureOf(entry.second));
    }
    if (result >= 0) {
        result = std::visit(Append{message}, entry.second);
    }
    if (result >= 0) {
        result = sd_bus_message_close_container(message);
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

int appendProperties(sd_bus_message *message, const Properties &properties)
{
    int result = sd_bus_message_open_container(message, 'a', "{sv}");
    for (auto entry = properties.begin(); result >= 0 && entry != properties.end(); ++entry) {
        result = appendProperty(message, *entry);
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

/// Sends an answer back to whoever called.
struct Send
{
    sd_bus_message *call;

    template <typename Plain> int operator()(const Plain &value) const
    {
        return reply([&](sd_bus_message *message) { return Append{message}(value); });
    }
    int operator()(const Value *value) const
    {
        return reply([&](sd_bus_message *message) { return std::visit(Append{message}, *value); });
    }
    int operator()(const ObjectList &objects) const
    {
        return reply([&](sd_bus_message *message) { return appendObjects(message, objects); });
    }
    int operator()(const Properties *properties) const
    {
        return reply(
            [&](sd_bus_message *message) { return appendProperties(message, *properties); });
    }
    int operator()(const Failure &failure) const
    {
        const sd_bus_error error = {failure.name.c_str(), failure.text.c_str(), 0};
        return sd_bus_reply_method_error(call, &error);
    }
    int operator()(const NotOurs &) const { return 0; }

private:
    template <typename Fill> int reply(Fill fill) const
    {
        sd_bus_message *created = nullptr;
        int result = sd_bus_message_new_method_return(call, &created);
        const MessagePointer message(created);
        if (result >= 0) {
            result = fill(created);
        }
        return result < 0 ? result : sd_bus_send(nullptr, created, nullptr);
    }
};

int announceDriver(sd_bus *bus, const std::string &udi, bool removed, bool added)
{
    return sd_bus_emit_signal(bus, udi.c_str(), deviceInterface.data(), "PropertyModified",
        "ia(sbb)", 1, 1, "info.linux.driver", int(removed), int(added));
}

} // namespace

BusService::BusService(const DeviceTable &devices)
    : m_devices(devices)
{
}

int BusService::connect(sd_event *loop)
{
    sd_bus *bus = nullptr;
    int result = sd_bus_open_system_with_description(&bus, busName);
    m_bus.reset(bus);
    if (result >= 0) {
        result = sd_bus_add_filter(bus, nullptr, onMessage, this);
    }
    if (result >= 0) {
        result = sd_bus_set_exit_on_disconnect(bus, true);
    }
    return result < 0 ? result : sd_bus_attach_event(bus, loop, SD_EVENT_PRIORITY_NORMAL);
}

int BusService::ownName()
{
    return sd_bus_request_name(m_bus.get(), busName, 0);
}

int BusService::flush()
{
    return sd_bus_flush(m_bus.get());
}

int BusService::announce(const Announcement &announcement)
{
    const auto emitManagerSignal = [&](const char *signal) {
        return sd_bus_emit_signal(m_bus.get(), managerPath.data(), managerInterface.data(), signal,
            "s", announcement.udi.c_str());
    };
    switch (announcement.kind) {
    case Announcement::Kind::Added:
        return emitManagerSignal("DeviceAdded");
    case Announcement::Kind::Removed:
        return emitManagerSignal("DeviceRemoved");
    case Announcement::Kind::DriverAppeared:
        return announceDriver(m_bus.get(), announcement.udi, false, true);
    case Announcement::Kind::DriverChanged:
        return announceDriver(m_bus.get(), announcement.udi, false, false);
    case Announcement::Kind::DriverVanished:
        return announceDriver(m_bus.get(), announcement.udi, true, false);
    }
    return 0;
}

/// Comes before the library's own handling: what this does not answer, the library does.
int BusService::onMessage(sd_bus_message *message, void *self, sd_bus_error *)
{
    if (sd_bus_message_is_signal(message, "org.freedesktop.DBus.Local", "Disconnected") > 0) {
        std::fprintf(stderr, "norvix-hald: the system bus has gone, ending.\n");
        return 0;
    }
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) {
        return 0;
    }
    const Call call{view(sd_bus_message_get_path(message)),
        view(sd_bus_message_get_interface(message)), view(sd_bus_message_get_member(message)),
        leadingTexts(message)};
    const Answer reply = answer(static_cast<BusService *>(self)->m_devices, call);
    if (std::holds_alternative<NotOurs>(reply)) {
        sd_bus_message_rewind(message, true);
        return 0;
    }
    const int result = std::visit(Send{message}, reply);
    return result < 0 ? result : 1;
}

} // namespace hal
