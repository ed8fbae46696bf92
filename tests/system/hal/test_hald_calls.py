# SPDX-License-Identifier: MIT
"""What norvix-hald answers on the bus. Nothing changes here, so all tests ask one companion."""
import pytest
from hald_fixtures import HUB, error_of
from jeepney import HeaderFields

from lab.machine import companion
from lab.machine.companion import DEVICES, MANAGER, NAME, HalCompanion, device, devices, manager
from lab.machine.private_machine import PrivateMachine
from lab.machine.simulated_usb import SimulatedUsb

INTROSPECTABLE = "org.freedesktop.DBus.Introspectable"
MODEM = "usb_device_1110_9041_S1"
ODD = "usb_device_572_cafe_noserial"


@pytest.fixture(scope="module")
def place():
    """A machine in which the companion sees a modem with three interfaces and a device whose maker
    writes no UTF-8."""
    with PrivateMachine() as machine:
        companion.prepare(machine)
        machine.start_bus(policies=[companion.POLICY])
        usb = SimulatedUsb(machine)
        usb.plug("1-1", 0x1110, 0x9041, serial="S1", interfaces=(0, 1, 2), number=7,
                 attributes={"manufacturer": "Maker", "speed": "1.5"})
        odd = usb.plug("1-2", 0x0572, 0xcafe, interfaces=())
        machine.write(usb.environment["UMOCKDEV_DIR"] + odd + "/product", b"caf\xe9\0\xff")
        HalCompanion(machine, usb)
        yield machine


@pytest.fixture(scope="module")
def client(place):
    return place.client()


# ---- properties

def test_ids_are_plain_32_bit_integers_and_not_variants(client):
    for key, value in (("usb_device.vendor_id", 4368), ("usb_device.product_id", 36929)):
        serial = client.start_call("GetProperty", "s", key, service=NAME, path=DEVICES + MODEM,
                                   interface=NAME + ".Device")
        reply = client.finish_call(serial)
        assert reply.header.fields[HeaderFields.signature] == "i" and reply.body == (value,)


def test_an_interface_has_no_property_of_a_device(client):
    properties = device(client, MODEM + "_if2", "GetAllProperties")
    assert [key for key in properties if key.startswith("usb_device.")] == []
    assert properties["usb.interface.number"] == ("i", 2)
    assert properties["usb.vendor_id"] == ("i", 0x1110)
    assert properties["usb.product_id"] == ("i", 0x9041)
    assert properties["info.subsystem"] == ("s", "usb")
    assert properties["info.parent"] == ("s", DEVICES + MODEM)
    error = error_of(device, client, MODEM + "_if2", "GetProperty", "s", "usb_device.vendor_id")
    assert error.name == NAME + ".NoSuchProperty"


def test_every_object_has_the_mandatory_properties(client):
    for name in devices(client):
        properties = device(client, name, "GetAllProperties")
        assert properties["info.udi"] == ("s", DEVICES + name)
        for key in ("info.subsystem", "linux.subsystem", "linux.hotplug_type"):
            assert key in properties, (name, key)
        assert ("info.parent" in properties) == (name != "computer")
        if name != "computer":
            assert properties["info.parent"][1][len(DEVICES):] in devices(client)


def test_a_device_has_hals_properties_and_types(client):
    properties = device(client, MODEM, "GetAllProperties")
    for key, value in {
            "usb_device.bus_number": ("i", 1), "usb_device.linux.device_number": ("i", 7),
            "usb_device.num_configurations": ("i", 1), "usb_device.num_interfaces": ("i", 3),
            "usb_device.configuration_value": ("i", 1), "usb_device.device_class": ("i", 255),
            "usb_device.device_subclass": ("i", 0), "usb_device.device_protocol": ("i", 0),
            "usb_device.device_revision_bcd": ("i", 1), "usb_device.max_power": ("i", 500),
            "usb_device.num_ports": ("i", 0), "usb_device.speed": ("d", 1.5),
            "usb_device.version": ("d", 1.1), "usb_device.is_self_powered": ("b", False),
            "usb_device.can_wake_up": ("b", True), "usb_device.serial": ("s", "S1"),
            "usb_device.product": ("s", "ADSL modem"), "usb_device.vendor": ("s", "Maker"),
            "info.product": ("s", "ADSL modem"), "info.vendor": ("s", "Maker"),
            "linux.device_file": ("s", "/dev/bus/usb/001/007"), "linux.hotplug_type": ("i", 2),
            "linux.subsystem": ("s", "usb"), "info.capabilities": ("as", ["usb_device"]),
            "usb_device.linux.sysfs_path": ("s", "/sys/devices/usb1/1-1")}.items():
        assert properties[key] == value, key


def test_typed_getters_give_their_type_or_a_mismatch(client):
    good = {"String": "info.udi", "StringList": "info.capabilities", "Boolean": "usb_device.can_wake_up",
            "Integer": "usb_device.vendor_id", "Double": "usb_device.speed"}
    for kind, own in good.items():
        for key in good.values():
            if key == own:
                device(client, MODEM, "GetProperty" + kind, "s", key)
            else:
                error = error_of(device, client, MODEM, "GetProperty" + kind, "s", key)
                assert error.name == NAME + ".TypeMismatch"
    for key in good.values():
        assert error_of(device, client, MODEM, "GetPropertyUInt64", "s", key).name == NAME + ".TypeMismatch"


def test_the_type_of_a_property_is_its_code(client):
    for key, code in (("info.udi", "s"), ("usb_device.vendor_id", "i"), ("usb_device.speed", "d"),
                      ("usb_device.is_self_powered", "b")):
        assert device(client, HUB, "GetPropertyType", "s", key) == ord(code)
    assert device(client, HUB, "GetPropertyType", "s", "info.capabilities") == (ord("s") << 8) + ord("l")


def test_a_manufacturer_who_writes_no_utf8_does_no_harm(client):
    assert device(client, ODD, "GetProperty", "s", "info.product").startswith("caf?")


# ---- the manager and errors

def test_get_all_devices_takes_any_arguments(client):
    everything = ["computer", HUB, MODEM] + [MODEM + "_if%d" % number for number in range(3)] + [ODD]
    assert devices(client) == everything
    for signature, arguments in (("s", ("udi",)), ("i", (1,)), ("ass", (["x"], "y")),
                                 ("a{sv}", ({"x": ("i", 1)},)), ("sss", ("a", "b", "c"))):
        assert manager(client, "GetAllDevices", signature, *arguments) == [DEVICES + name
                                                                          for name in everything]


def test_devices_can_be_looked_for(client):
    assert manager(client, "DeviceExists", "s", DEVICES + MODEM) is True
    assert manager(client, "DeviceExists", "s", DEVICES + "usb_device_1_2_x") is False
    assert manager(client, "FindDeviceStringMatch", "ss", "info.subsystem", "usb") == [
        DEVICES + MODEM + "_if%d" % number for number in range(3)]
    assert manager(client, "FindDeviceByCapability", "s", "usb_device") == [
        DEVICES + HUB, DEVICES + MODEM, DEVICES + ODD]
    assert device(client, MODEM, "QueryCapability", "s", "usb_device") is True
    assert device(client, MODEM, "QueryCapability", "s", "camera") is False


def test_a_missing_property_has_hals_error(client):
    error = error_of(device, client, HUB, "GetProperty", "s", "no.such.key")
    assert error.name == NAME + ".NoSuchProperty"
    assert error.text == "No property no.such.key on device with id %s%s" % (DEVICES, HUB)
    assert device(client, HUB, "PropertyExists", "s", "no.such.key") is False


@pytest.mark.parametrize("method,signature,arguments", [
    ("GetProperty", "s", ("info.udi",)), ("GetAllProperties", "", ()), ("PropertyExists", "s", ("x",)),
    ("QueryCapability", "s", ("x",)), ("GetPropertyType", "s", ("x",)), ("SetProperty", "sv", ("x", ("i", 1))),
    ("GetProperty", "", ()), ("Lock", "s", ("why",))])
def test_any_method_of_an_unknown_device_is_no_such_device(client, method, signature, arguments):
    error = error_of(device, client, "usb_device_1_2_gone", method, signature, *arguments)
    assert error.name == NAME + ".NoSuchDevice"
    assert error.text == "No device with id %susb_device_1_2_gone" % DEVICES


@pytest.mark.parametrize("method,signature,arguments", [
    ("SetProperty", "sv", ("x", ("i", 1))), ("SetPropertyString", "ss", ("x", "y")),
    ("RemoveProperty", "s", ("x",)), ("AddCapability", "s", ("x",)), ("Lock", "s", ("why",)),
    ("Unlock", "", ()), ("AcquireInterfaceLock", "sb", ("x", True)), ("Rescan", "", ())])
def test_setters_and_locks_of_a_device_are_unknown_methods(client, method, signature, arguments):
    error = error_of(device, client, HUB, method, signature, *arguments)
    assert error.name == "org.freedesktop.DBus.Error.UnknownMethod"


@pytest.mark.parametrize("method,signature,arguments", [
    ("NewDevice", "", ()), ("Remove", "s", ("x",)), ("CommitToGdl", "ss", ("x", "y")),
    ("AcquireGlobalInterfaceLock", "sb", ("x", True)), ("ReleaseGlobalInterfaceLock", "s", ("x",)),
    ("SingletonAddonIsReady", "s", ("x",))])
def test_what_the_manager_does_not_offer_is_an_unknown_method(client, method, signature, arguments):
    error = error_of(manager, client, method, signature, *arguments)
    assert error.name == "org.freedesktop.DBus.Error.UnknownMethod"


@pytest.mark.parametrize("signature,arguments", [
    ("", ()), ("i", (1,)), ("v", (("s", "info.udi"),)), ("as", (["info.udi"],)), ("ay", (b"info.udi",))])
def test_wrongly_typed_arguments_are_invalid(client, signature, arguments):
    for call in ((device, client, HUB, "GetProperty"), (manager, client, "DeviceExists")):
        error = error_of(*call, signature, *arguments)
        assert error.name == "org.freedesktop.DBus.Error.InvalidArgs"


def test_more_arguments_than_needed_are_ignored(client):
    assert device(client, HUB, "GetProperty", "sis", "info.udi", 1, "x") == DEVICES + HUB


def test_objects_elsewhere_are_unknown(client):
    for path in ("/com", "/org/freedesktop/Hal/Managers"):
        error = error_of(lambda: client.call_raw("X", service=NAME, path=path, interface="org.x"))
        assert error.name == "org.freedesktop.DBus.Error.UnknownObject"


def test_the_companion_answers_a_ping_on_every_object(client):
    for path in (MANAGER, DEVICES + HUB, "/"):
        client.call_raw("Ping", service=NAME, path=path, interface="org.freedesktop.DBus.Peer")


def test_the_tree_of_objects_can_be_walked(client):
    def walk(path):
        node = client.introspect(path, NAME)
        found = {path: {one.get("name") for one in node.findall("interface")}}
        for child in node.findall("node"):
            found.update(walk(path.rstrip("/") + "/" + child.get("name")))
        return found

    tree = walk("/")
    assert NAME + ".Manager" in tree[MANAGER]
    found = [path[len(DEVICES):] for path, interfaces in tree.items() if NAME + ".Device" in interfaces]
    assert sorted(found) == sorted(devices(client))


def test_introspection_is_the_installed_description(client):
    for path, file in ((MANAGER, "Manager"), (DEVICES + "computer", "Device")):
        installed = (companion.REPOSITORY / "hal" / (NAME + "." + file + ".xml")).read_text("utf-8")
        start, end = installed.index("  <interface"), installed.index("</node>")
        answered = client.call_raw("Introspect", service=NAME, path=path, interface=INTROSPECTABLE)
        assert installed[start:end] in answered


def test_a_device_not_there_can_be_introspected(client):
    node = client.introspect(DEVICES + "usb_device_1_2_gone", NAME)
    assert NAME + ".Device" in {one.get("name") for one in node.findall("interface")}
