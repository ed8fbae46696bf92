// SPDX-License-Identifier: MIT
#include "hal/answers.h"

#include "hal/introspection.h"
#include "hal/udi.h"

#include <algorithm>

namespace hal {

namespace {

constexpr std::string_view introspectableInterface = "org.freedesktop.DBus.Introspectable";
constexpr std::string_view peerInterface = "org.freedesktop.DBus.Peer";

Failure failure(const char *name, std::initializer_list<std::string_view> parts)
{
    Failure failure{name, {}};
    for (const std::string_view part : parts) {
        failure.text += part;
    }
    return failure;
}

Failure noSuchDevice(std::string_view udi)
{
    return failure("org.freedesktop.Hal.NoSuchDevice", {"No device with id ", udi});
}

Failure noSuchProperty(const HalObject &object, std::string_view key)
{
    return failure("org.freedesktop.Hal.NoSuchProperty",
        {"No property ", key, " on device with id ", object.udi});
}

Failure unknownMethod(const Call &call)
{
    return failure("org.freedesktop.DBus.Error.UnknownMethod",
        {"There is no method ", call.member, " here (interface \"", call.interface, "\")"});
}

Answer allDevices(const DeviceTable &devices, const Call &)
{
    return devices.objects();
}

Answer deviceExists(const DeviceTable &devices, const Call &call)
{
    return devices.find(call.texts[0]) != nullptr;
}

template <typename Condition> Answer objectsThat(const DeviceTable &devices, Condition condition)
{
    ObjectList list = devices.objects();
    list.erase(std::remove_if(list.begin(), list.end(),
                   [&](const HalObject *object) { return !condition(object->properties); }),
        list.end());
    return list;
}

Answer findStringMatch(const DeviceTable &devices, const Call &call)
{
    return objectsThat(devices, [&](const Properties &properties) {
        return hasText(properties, call.texts[0], call.texts[1]);
    });
}

Answer findByCapability(const DeviceTable &devices, const Call &call)
{
    return objectsThat(devices,
        [&](const Properties &properties) { return hasCapability(properties, call.texts[0]); });
}

Answer property(const HalObject &object, const Call &call)
{
    const Value *const value = object.properties.find(call.texts[0]);
    return value ? Answer(value) : noSuchProperty(object, call.texts[0]);
}

template <typename Type> Answer typedProperty(const HalObject &object, const Call &call)
{
    const Value *const value = object.properties.find(call.texts[0]);
    if (!value) {
        return noSuchProperty(object, call.texts[0]);
    }
    if (!std::holds_alternative<Type>(*value)) {
        return failure("org.freedesktop.Hal.TypeMismatch",
            {"Property ", call.texts[0], " on device with id ", object.udi, " is of another type"});
    }
    return value;
}

Answer allProperties(const HalObject &object, const Call &)
{
    return &object.properties;
}

Answer propertyExists(const HalObject &object, const Call &call)
{
    return object.properties.find(call.texts[0]) != nullptr;
}

Answer propertyType(const HalObject &object, const Call &call)
{
    const Value *const value = object.properties.find(call.texts[0]);
    return value ? Answer(typeCode(*value)) : noSuchProperty(object, call.texts[0]);
}

Answer queryCapability(const HalObject &object, const Call &call)
{
    return hasCapability(object.properties, call.texts[0]);
}

template <typename Subject> struct Method
{
    std::string_view member;
    size_t textCount;
    Answer (*answer)(const Subject &, const Call &);
};

constexpr Method<DeviceTable> managerMethods[] = {
    {"GetAllDevices", 0, allDevices},
    {"DeviceExists", 1, deviceExists},
    {"FindDeviceStringMatch", 2, findStringMatch},
    {"FindDeviceByCapability", 1, findByCapability},
};

constexpr Method<HalObject> deviceMethods[] = {
    {"GetProperty", 1, property},
    {"GetPropertyString", 1, typedProperty<std::string>},
    {"GetPropertyStringList", 1, typedProperty<std::vector<std::string>>},
    {"GetPropertyInteger", 1, typedProperty<std::int32_t>},
    {"GetPropertyUInt64", 1, typedProperty<std::uint64_t>},
    {"GetPropertyBoolean", 1, typedProperty<bool>},
    {"GetPropertyDouble", 1, typedProperty<double>},
    {"GetAllProperties", 0, allProperties},
    {"PropertyExists", 1, propertyExists},
    {"GetPropertyType", 1, propertyType},
    {"QueryCapability", 1, queryCapability},
};

template <typename Subject, size_t size>
Answer dispatch(const Method<Subject> (&methods)[size], const Subject &subject, const Call &call)
{
    for (const Method<Subject> &method : methods) {
        if (method.member != call.member) {
            continue;
        }
        if (call.texts.size() < method.textCount) {
            return failure(
                "org.freedesktop.DBus.Error.InvalidArgs", {call.member, " needs string arguments"});
        }
        return method.answer(subject, call);
    }
    return unknownMethod(call);
}

bool isFor(const Call &call, std::string_view interface)
{
    return call.interface.empty() || call.interface == interface;
}

} // namespace

Answer answer(const DeviceTable &devices, const Call &call)
{
    if (call.interface == peerInterface) {
        return NotOurs();
    }
    if (isFor(call, introspectableInterface) && call.member == "Introspect") {
        std::optional<std::string> description = describe(devices, call.path);
        return description ? Answer(std::move(*description)) : NotOurs();
    }
    if (call.path == managerPath && isFor(call, managerInterface)) {
        return dispatch(managerMethods, devices, call);
    }
    const HalObject *const object = devices.find(call.path);
    const bool isDevicePath = call.path.substr(0, devicesPrefix.size()) == devicesPrefix;
    if (!object && isFor(call, deviceInterface) && (isDevicePath || !call.interface.empty())) {
        return noSuchDevice(call.path);
    }
    if (object && isFor(call, deviceInterface)) {
        return dispatch(deviceMethods, *object, call);
    }
    const bool isPathOfOurs = object || describe(devices, call.path);
    return isPathOfOurs ? Answer(unknownMethod(call)) : NotOurs();
}

} // namespace hal
