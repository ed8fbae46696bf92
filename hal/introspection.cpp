// SPDX-License-Identifier: MIT
#include "hal/introspection.h"

#include "hal/introspection_texts.h"
#include "hal/udi.h"

namespace hal {

namespace {

constexpr std::string_view doctype
    = "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\"\n"
      " \"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n";

constexpr std::string_view standardInterfaces
    = R"(  <interface name="org.freedesktop.DBus.Introspectable">
    <method name="Introspect">
      <arg name="data" direction="out" type="s"/>
    </method>
  </interface>
  <interface name="org.freedesktop.DBus.Peer">
    <method name="Ping"/>
    <method name="GetMachineId">
      <arg name="machine_uuid" direction="out" type="s"/>
    </method>
  </interface>
)";

/// What stands inside the root node of an interface description.
std::string_view insideRootNode(std::string_view document)
{
    constexpr std::string_view opening = "<node>\n";
    const size_t start = document.find(opening) + opening.size();
    return document.substr(start, document.rfind("</node>") - start);
}

std::string node(std::string_view content)
{
    return std::string(doctype)
        .append("<node>\n")
        .append(content)
        .append(standardInterfaces)
        .append("</node>\n");
}

std::string childNode(std::string_view name)
{
    return std::string("  <node name=\"").append(name).append("\"/>\n");
}

std::string deviceNodes(const DeviceTable &devices)
{
    std::string nodes;
    for (const HalObject *object : devices.objects()) {
        nodes += childNode(std::string_view(object->udi).substr(devicesPrefix.size()));
    }
    return nodes;
}

} // namespace

std::optional<std::string> describe(const DeviceTable &devices, std::string_view path)
{
    if (path == managerPath) {
        return node(insideRootNode(managerDocument));
    }
    if (path.substr(0, devicesPrefix.size()) == devicesPrefix) {
        return node(insideRootNode(deviceDocument));
    }
    if (path == devicesPrefix.substr(0, devicesPrefix.size() - 1)) {
        return node(deviceNodes(devices));
    }
    if (path == "/org/freedesktop/Hal") {
        return node(childNode("Manager") + childNode("devices"));
    }
    if (path == "/org/freedesktop") {
        return node(childNode("Hal"));
    }
    if (path == "/org") {
        return node(childNode("freedesktop"));
    }
    return path == "/" ? std::optional(node(childNode("org"))) : std::nullopt;
}

} // namespace hal
