// SPDX-License-Identifier: MIT
// Whatever is called, the answer is one that the bus can carry, no longer than the call asks for.
#include "fuzz_input.h"
#include "hal/answers.h"
#include "hal/introspection.h"
#include "hal/udi.h"

namespace {

const hal::DeviceTable &devices()
{
    static const hal::DeviceTable table = [] {
        hal::UsbRecord device;
        device.syspath = "/s/1";
        device.vendorId = 0x1110;
        device.productId = 0x9041;
        device.serial = "S";
        device.facts.setText("info.product", "modem");
        device.facts.set("usb_device.speed", 1.5);
        device.facts.set("usb_device.can_wake_up", true);
        hal::UsbRecord interface;
        interface.kind = hal::UsbKind::Interface;
        interface.syspath = "/s/1/:1.0";
        hal::DeviceTable table;
        const auto isPresent = [](const std::string &) { return true; };
        table.plug(device, isPresent);
        table.plug(interface, isPresent);
        return table;
    }();
    return table;
}

std::string_view view(const QByteArray &text)
{
    return {text.constData(), size_t(text.size())};
}

struct Check
{
    size_t callSize;

    void operator()(bool) const { }
    void operator()(std::int32_t code) const { require(code > 0); }
    void operator()(const std::string &text) const
    {
        require(text.find("</node>") != std::string::npos);
    }
    void operator()(const hal::Value *value) const { require(value != nullptr); }
    void operator()(const hal::ObjectList &objects) const
    {
        for (const hal::HalObject *object : objects) {
            require(devices().find(object->udi) == object && hal::isDeviceUdi(object->udi));
        }
    }
    void operator()(const hal::Properties *properties) const { require(!properties->isEmpty()); }
    void operator()(const hal::Failure &failure) const
    {
        require(failure.name.rfind("org.freedesktop.", 0) == 0 && !failure.text.empty());
        require(failure.text.size() <= callSize + 200);
    }
    void operator()(const hal::NotOurs &) const { }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const QByteArray path = input.line();
    const QByteArray interface = input.line();
    const QByteArray member = input.line();
    const QByteArrayList texts = input.lines();
    hal::Call call{view(path), view(interface), view(member), {}};
    for (const QByteArray &text : texts.mid(0, 2)) {
        call.texts.push_back(view(text));
    }
    std::visit(Check{size}, hal::answer(devices(), call));
    if (const auto description = hal::describe(devices(), view(path))) {
        Check{size}(*description);
    }
    return 0;
}
