// SPDX-License-Identifier: MIT
#include "hal/known_devices.h"

#include "hal/text.h"
#include "hal/udi.h"
#include "support/files/file_descriptor.h"
#include "support/files/safe_write.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hal {

namespace {

constexpr std::string_view firstLine = "norvix-hald devices 1";
constexpr std::string_view lastLine = "end";
constexpr size_t fieldCount = 7;
constexpr off_t maxFileSize = 64 * 1024 * 1024;

/// The part of @p text before @p separator, which is taken off with it; all of it when there is
/// none.
std::string_view cut(std::string_view *text, char separator)
{
    const size_t end = text->find(separator);
    const std::string_view part = text->substr(0, end);
    text->remove_prefix(end == std::string_view::npos ? text->size() : end + 1);
    return part;
}

std::string lineOf(const KnownObject &object)
{
    const UsbRecord &record = object.record;
    const bool isDevice = record.kind == UsbKind::Device;
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "\t%x\t%x\t%d\t", unsigned(record.vendorId),
        unsigned(record.productId),
        isDevice ? record.deviceNumber.value_or(-1) : record.interfaceNumber);
    return std::string(isDevice ? "device\t" : "interface\t")
        .append(object.udi)
        .append(numbers)
        .append(isDevice ? record.serial : "-")
        .append("\t")
        .append(record.syspath)
        .append("\n");
}

std::optional<KnownObject> objectFrom(std::string_view line)
{
    std::string_view fields[fieldCount];
    for (std::string_view &field : fields) {
        field = cut(&line, '\t');
    }
    const auto &[kind, udi, vendor, product, number, serial, syspath] = fields;
    const std::optional<int> vendorId = parseHex(vendor);
    const std::optional<int> productId = parseHex(product);
    const std::optional<int> index = parseDecimal(number);
    const bool isDevice = kind == "device";
    if ((!isDevice && kind != "interface") || !isDeviceUdi(udi) || udi == computerUdi || !vendorId
        || !productId || (!index && (!isDevice || number != "-1")) || serial.empty()
        || syspath.empty() || syspath.front() != '/' || !line.empty()) {
        return std::nullopt;
    }
    KnownObject object;
    object.udi = udi;
    object.record.kind = isDevice ? UsbKind::Device : UsbKind::Interface;
    object.record.syspath = syspath;
    object.record.vendorId = *vendorId;
    object.record.productId = *productId;
    if (isDevice) {
        object.record.deviceNumber = index;
        object.record.serial = serial;
    } else {
        object.record.interfaceNumber = *index;
    }
    return object;
}

std::optional<std::string> contentOf(const std::string &path)
{
    const FileDescriptor file(
        open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY));
    struct stat info = {};
    if (!file.isOpen() || fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)
        || info.st_size > maxFileSize) {
        return std::nullopt;
    }
    std::string text(size_t(info.st_size), '\0');
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = read(file.get(), text.data() + done, text.size() - done);
        if (count <= 0) {
            return std::nullopt;
        }
        done += size_t(count);
    }
    return text;
}

} // namespace

std::string knownDevicesText(const std::vector<KnownObject> &objects)
{
    std::string text = std::string(firstLine).append("\n");
    for (const KnownObject &object : objects) {
        // A folder name with a separator in it is not the kernel's: better forgotten than misread.
        if (object.record.syspath.find_first_of("\t\n") == std::string::npos) {
            text += lineOf(object);
        }
    }
    return text.append(lastLine).append("\n");
}

std::optional<std::vector<KnownObject>> knownDevicesFrom(std::string_view text)
{
    if (cut(&text, '\n') != firstLine) {
        return std::nullopt;
    }
    std::vector<KnownObject> objects;
    while (!text.empty()) {
        const std::string_view line = cut(&text, '\n');
        if (line == lastLine) {
            return text.empty() ? std::optional(std::move(objects)) : std::nullopt;
        }
        std::optional<KnownObject> object = objectFrom(line);
        if (!object) {
            return std::nullopt;
        }
        objects.push_back(std::move(*object));
    }
    return std::nullopt;
}

std::optional<std::vector<KnownObject>> readKnownDevices(const std::string &path)
{
    const std::optional<std::string> text = contentOf(path);
    return text ? knownDevicesFrom(*text) : std::nullopt;
}

bool writeKnownDevices(const std::string &path, const std::vector<KnownObject> &objects)
{
    FileAttributes attributes;
    attributes.owner = geteuid();
    attributes.group = getegid();
    return replaceFileWith(
        path, attributes, [&](int file) { return writeAll(file, knownDevicesText(objects)); });
}

} // namespace hal
