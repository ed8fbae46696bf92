# SPDX-License-Identifier: MIT
"""Which tests ask about which file."""
import re
from pathlib import Path

ROOMS = ("daemon", "connection", "network", "driver", "dbus", "support")

# Unit tests that ask about a file without including its header. Those that include it, or bear its name,
# are found by themselves.
UNIT = {
    "connection/line_state_slots": ["line_state"],
    "driver/compiler_thread": ["build_plan"],
    "support/driver/build_log": ["tool_runner"],
    "dbus/modem_families": ["restart_modem", "modem_catalogue"],
    "support/files/safe_write": ["safe_file", "module_backup"],
    "support/files/file_descriptor": ["tool_runner", "trusted_file"],
    "support/driver/module_tree": ["module_backup"],
    "support/files/pppd_escapes": ["account_safety"],
}

# System tests (tests/system/test_NAME.py), those that say no soonest first. What is not listed is asked
# about by the tests of its room.
SYSTEM = {
    "connection/connect_thread": ["connection", "connection_waits", "hostile_pppd", "settings", "long_connection"],
    "connection/connection_control_slots": ["connection", "connection_waits", "hostile_pppd", "line_state", "long_connection"],
    "connection/connection_facts_slots": ["network_status", "connection", "hostile_pppd"],
    "connection/line_state": ["line_state", "connection_waits"],
    "connection/line_state_slots": ["line_state", "connection_waits"],
    "connection/process_identity": ["connection", "hostile_pppd", "ghost"],
    "daemon/announcements": ["modem_detection"],
    "daemon/hal_silence": ["modem_detection"],
    "daemon/log_limit": ["logging"],
    "daemon/hal_proxy": ["modem_detection", "modem_chain"],
    "daemon/logging": ["logging", "start_and_end"],
    "daemon/main": ["start_and_end", "logging", "connection"],
    "daemon/modem_catalogue": ["modem_detection", "setup", "modem_chain", "driver_build"],
    "daemon/modem_detection_slots": ["modem_detection", "modem_chain", "settings"],
    "daemon/norvix_daemon": ["bus_interface", "start_and_end", "logging", "settings", "modem_detection", "connection",
                             "network_status", "driver_build", "restart_modem", "resolver"],
    "daemon/process_end": ["start_and_end", "ending_storm"],
    "daemon/settings": ["settings", "setup", "modem_detection"],
    "daemon/settings_store": ["settings", "setup", "modem_detection"],
    "daemon/setup": ["setup"],
    "daemon/setup_rules": ["setup"],
    "daemon/settings_slots": ["settings", "bus_interface"],
    "driver/compiler_thread": ["driver_build"],
    "driver/build_slots": ["driver_build"],
    "driver/restart_slots": ["restart_modem"],
    "driver/restart_modem": ["restart_modem"],
    "network/account_slots": ["account", "account_obstacles", "account_in_use"],
    "network/account_safety": ["setup", "account"],
    "network/account_files": ["account", "account_obstacles", "account_in_use"],
    "network/dns_check_slots": ["resolver"],
    "network/network_status_slots": ["network_status", "connection", "long_connection"],
    "support/driver/build_log": ["driver_build"],
    "support/driver/build_plan": ["driver_build"],
    "support/driver/compiler": ["driver_build"],
    "support/driver/compiler_install": ["driver_build"],
    "support/driver/compiler_work": ["driver_build"],
    "support/process/debug": ["logging", "connection_waits"],
    "support/resolver/dns_manager": ["resolver_manager", "resolver"],
    "support/resolver/resolv_conf": ["resolver_manager", "resolver"],
    "support/files/safe_file": ["resolver_manager", "account", "account_obstacles", "settings", "driver_build"],
    "support/files/safe_write": ["resolver_manager", "account", "settings", "driver_build"],
    "support/files/pppd_escapes": ["setup"],
    "support/files/settings_text": ["settings"],
    "support/resolver/interface_address": ["network_status", "connection"],
    "support/process/line_cutter": ["hostile_pppd", "connection"],
    "support/files/lock_file": ["start_and_end"],
    "dbus/contract": ["bus_contract", "bus_interface", "setup", "connection"],
    "dbus/modem_families": ["restart_modem", "driver_build", "modem_detection", "connection"],
    "support/process/my_process": ["connection", "hostile_pppd", "connection_waits"],
    "support/process/programs": ["connection", "network_status", "connection_waits"],
    "support/process/system_info": ["connection"],
}
ROOM = {
    "connection": ["connection", "connection_waits", "network_status", "line_state", "hostile_pppd"],
    "daemon": ["bus_interface", "start_and_end", "settings", "logging", "modem_detection"],
    "dbus": ["bus_interface", "account", "network_status", "settings"],
    "driver": ["driver_build", "restart_modem"],
    "network": ["network_status", "account", "long_connection"],
    "support": ["driver_build", "connection", "resolver_manager"],
}


def test_file(root, kind, name):
    """The file of a test, below the root; None when there is none of that name."""
    pattern = "%s_test.cpp" % name if kind == "unit" else "test_%s.py" % name
    return next(iter(sorted((Path(root) / "tests" / kind).rglob(pattern))), None)


def unit_tests(root, file):
    """Names of the unit tests of a file, its own first."""
    stem = re.sub(r"\.\w+$", "", file)
    own = stem.split("/")[-1]
    found = UNIT.get(stem, [])[:]
    for test in sorted((root / "tests/unit").rglob("*_test.cpp")):
        name = test.name[:-len("_test.cpp")]
        if test.parent.name in ("client", "ctl"):
            continue
        if name == own or '#include "%s.h"' % stem in test.read_text(encoding="utf-8"):
            found.append(name)
    found = [name for name in dict.fromkeys(found) if test_file(root, "unit", name)]
    return sorted(found, key=lambda name: name != own)


def system_tests(root, file, every=False):
    """Names of the system tests of a file; with every, the rest behind them."""
    stem = re.sub(r"\.\w+$", "", file)
    names = SYSTEM.get(stem, ROOM[file.split("/")[0]])[:]
    if every:
        names += sorted(path.stem[len("test_"):] for path in (root / "tests/system").rglob("test_*.py"))
    return [name for name in dict.fromkeys(names) if test_file(root, "system", name)]
