// SPDX-License-Identifier: MIT
#include "hal/service.h"

#include "hal/known_devices.h"
#include "hal/text.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/epoll.h>
#include <unistd.h>

namespace hal {

namespace {

/// A line on standard error, where the journal takes it from.
[[gnu::format(printf, 1, 2)]] void log(const char *format, ...)
{
    std::fputs("norvix-hald: ", stderr);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
}

bool isPresent(const std::string &syspath)
{
    return access(syspath.c_str(), F_OK) == 0;
}

std::string_view textOf(const HalObject &object, std::string_view key)
{
    const Value *const value = object.properties.find(key);
    const auto *const text = value ? std::get_if<std::string>(value) : nullptr;
    return text ? std::string_view(*text) : std::string_view();
}

} // namespace

Service::Service(
    std::unique_ptr<UdevSource> source, MonitorGroup group, std::string knownDevicesPath)
    : m_source(std::move(source))
    , m_group(group)
    , m_knownDevicesPath(std::move(knownDevicesPath))
{
}

int Service::list()
{
    Announcements news;
    if (!takeStock(&news)) {
        return EXIT_FAILURE;
    }
    for (const HalObject *object : m_devices.objects()) {
        const std::string place = visibleText(textOf(*object, "linux.sysfs_path"));
        const std::string name = visibleText(textOf(*object, "info.product"));
        std::printf("%s\t%s\t%s\n", visibleText(object->udi).c_str(), place.c_str(), name.c_str());
    }
    return std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

int Service::run()
{
    int result = prepareLoop();
    if (result >= 0) {
        result = m_bus.connect(m_loop.get());
    }
    if (result < 0) {
        log("cannot reach the system bus: %s", std::strerror(-result));
        return EXIT_FAILURE;
    }
    Announcements news;
    if (!takeStock(&news)) {
        return EXIT_FAILURE;
    }
    result = m_bus.ownName();
    if (result == -EEXIST) {
        log("another service offers org.freedesktop.Hal on this bus, stepping aside.");
        return EXIT_SUCCESS;
    }
    if (result < 0) {
        log("the bus refuses the name org.freedesktop.Hal: %s", std::strerror(-result));
        return EXIT_FAILURE;
    }
    log("listening to the events of %s, %zu objects.",
        m_group == MonitorGroup::Udev ? "udev" : "the kernel", m_devices.objects().size());
    tell(news);
    remember();
    return sd_event_loop(m_loop.get()) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Learns what is present. A first run announces nothing, its clients ask for the list; a later one
/// announces what changed while nobody was looking.
bool Service::takeStock(Announcements *news)
{
    const std::optional<std::vector<KnownObject>> known = readKnownDevices(m_knownDevicesPath);
    if (known) {
        m_devices.restore(*known);
    }
    std::optional<UdevSource::Present> present = m_source->enumerate();
    if (!present) {
        log("cannot list the USB devices: %s", std::strerror(errno));
        return false;
    }
    m_countedUpTo = present->upToSequence;
    *news = m_devices.reconcile(std::move(present->records));
    if (!known) {
        news->clear();
    }
    return true;
}

int Service::prepareLoop()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    sigprocmask(SIG_BLOCK, &ending, nullptr);

    sd_event *loop = nullptr;
    int result = sd_event_new(&loop);
    m_loop.reset(loop);
    sd_event_source *events = nullptr;
    if (result >= 0) {
        result = sd_event_add_io(
            loop, &events, m_source->descriptor(), EPOLLIN, &Service::onEvents, this);
        m_events.reset(events);
    }
    for (const int signal : {SIGTERM, SIGINT}) {
        if (result >= 0) {
            result = sd_event_add_signal(loop, nullptr, signal, nullptr, nullptr);
        }
    }
    return result;
}

int Service::onEvents(sd_event_source *, int, unsigned int, void *self)
{
    return static_cast<Service *>(self)->handleEvents();
}

int Service::handleEvents()
{
    UdevSource::Batch batch = m_source->receive();
    if (batch.error != 0) {
        log("cannot receive events: %s", std::strerror(batch.error));
        return sd_event_exit(m_loop.get(), EXIT_FAILURE);
    }
    bool hasNews = false;
    const auto take = [&](const Announcements &news) {
        tell(news);
        hasNews = hasNews || !news.empty();
    };
    const bool isFirst = m_isFirstEvent && !batch.events.empty();
    for (const UdevEvent &event : inOrder(std::move(batch.events))) {
        take(apply(event, m_countedUpTo, isPresent, &m_devices));
    }
    // Without udev there is no telling since when events have been reaching us.
    const bool mustRecount = batch.someWereLost || (isFirst && m_group == MonitorGroup::Kernel);
    if (batch.someWereLost) {
        log("events were lost, looking at all devices again.");
    }
    if (std::optional<UdevSource::Present> present
        = mustRecount ? m_source->enumerate() : std::nullopt) {
        m_countedUpTo = present->upToSequence;
        take(m_devices.reconcile(std::move(present->records)));
    }
    m_isFirstEvent = m_isFirstEvent && !isFirst;
    if (hasNews) {
        remember();
    }
    return 0;
}

void Service::tell(const Announcements &news)
{
    for (const Announcement &announcement : news) {
        const int result = m_bus.announce(announcement);
        if (result < 0) {
            log("cannot announce %s: %s", announcement.udi.c_str(), std::strerror(-result));
        }
    }
}

/// After the announcements have left: whoever kills us in between makes the next run repeat them,
/// which is better than losing one.
void Service::remember()
{
    m_bus.flush();
    const bool written = writeKnownDevices(m_knownDevicesPath, m_devices.known());
    if (!written && !m_rememberFailed) {
        log("cannot keep the list of devices in %s (%s): after a restart of this service, what "
            "was plugged meanwhile will not be announced.",
            m_knownDevicesPath.c_str(), std::strerror(errno));
    }
    m_rememberFailed = !written;
}

} // namespace hal
