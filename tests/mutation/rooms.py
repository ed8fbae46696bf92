# SPDX-License-Identifier: MIT
"""Which tests ask about which file."""
import re
from pathlib import Path

ROOMS = ("daemon", "connection", "network", "driver", "dbus", "support")

# Unit tests that ask about a file without including its header. Those that include it, or bear its name,
# are found by themselves.
UNIT = {
    "connection/modem_state": ["line_state"],
    "driver/compiler_thread": ["build_plan"],
    "support/build_log": ["tool_runner"],
    "support/modem_families": ["restart_modem", "modem_catalogue"],
    "support/safe_write": ["safe_file", "module_backup"],
    "support/file_descriptor": ["tool_runner", "trusted_file"],
    "support/module_tree": ["module_backup"],
}

# System tests (tests/system/test_NAME.py), those that say no soonest first. What is not listed is asked
# about by the tests of its room.
SYSTEM = {
    "connection/connect_thread": ["connection", "connection_waits", "hostile_pppd", "settings", "long_connection"],
    "connection/connection_control": ["connection", "connection_waits", "hostile_pppd", "line_state", "long_connection"],
    "connection/connection_facts": ["network_status", "connection", "hostile_pppd"],
    "connection/line_state": ["line_state", "connection_waits"],
    "connection/modem_state": ["line_state", "connection_waits"],
    "connection/process_identity": ["connection", "hostile_pppd", "ghost"],
    "daemon/announcements": ["modem_detection"],
    "daemon/hal_silence": ["modem_detection"],
    "daemon/log_limit": ["logging"],
    "daemon/hal_proxy": ["modem_detection", "modem_chain"],
    "daemon/logging": ["logging", "start_and_end"],
    "daemon/main": ["start_and_end", "logging", "connection"],
    "daemon/modem_catalogue": ["modem_detection", "modem_chain", "driver_build"],
    "daemon/modem_detection": ["modem_detection", "modem_chain", "settings"],
    "daemon/norvix_daemon": ["bus_interface", "start_and_end", "logging", "settings", "modem_detection", "connection",
                             "network_status", "driver_build", "modem_restart", "resolver"],
    "daemon/process_end": ["start_and_end", "ending_storm"],
    "daemon/settings": ["settings", "setup", "modem_detection"],
    "daemon/setup": ["setup"],
    "daemon/setup_rules": ["setup"],
    "daemon/settings_methods": ["settings", "bus_interface"],
    "driver/compiler_thread": ["driver_build"],
    "driver/driver_build": ["driver_build"],
    "driver/modem_restart": ["modem_restart"],
    "driver/restart_modem": ["modem_restart"],
    "network/account": ["account", "account_obstacles", "account_in_use"],
    "network/account_safety": ["setup", "account"],
    "network/account_files": ["account", "account_obstacles", "account_in_use"],
    "network/dns_check": ["resolver"],
    "network/network_status": ["network_status", "connection", "long_connection"],
    "support/build_log": ["driver_build"],
    "support/build_plan": ["driver_build"],
    "support/compiler": ["driver_build"],
    "support/compiler_install": ["driver_build"],
    "support/compiler_work": ["driver_build"],
    "support/debug": ["logging", "connection_waits"],
    "support/dns_manager": ["resolver_manager", "resolver"],
    "support/resolv_conf": ["resolver_manager", "resolver"],
    "support/safe_file": ["resolver_manager", "account", "account_obstacles", "settings", "driver_build"],
    "support/safe_write": ["resolver_manager", "account", "settings", "driver_build"],
    "support/settings_text": ["settings"],
    "support/interface_address": ["network_status", "connection"],
    "support/line_cutter": ["hostile_pppd", "connection"],
    "support/lock_file": ["start_and_end"],
    "support/modem_families": ["modem_restart", "driver_build", "modem_detection", "connection"],
    "support/my_process": ["connection", "hostile_pppd", "connection_waits"],
    "support/programs": ["connection", "network_status", "connection_waits"],
    "support/system_info": ["connection"],
}
ROOM = {
    "connection": ["connection", "connection_waits", "network_status", "line_state", "hostile_pppd"],
    "daemon": ["bus_interface", "start_and_end", "settings", "logging", "modem_detection"],
    "dbus": ["bus_interface", "account", "network_status", "settings"],
    "driver": ["driver_build", "modem_restart"],
    "network": ["network_status", "account", "long_connection"],
    "support": ["driver_build", "connection", "resolver_manager"],
}


def unit_tests(root, file):
    """Names of the unit tests of a file, its own first."""
    stem = re.sub(r"\.\w+$", "", file)
    own = stem.split("/")[1]
    found = UNIT.get(stem, [])[:]
    for test in sorted((root / "tests/unit").glob("*_test.cpp")):
        name = test.name[:-len("_test.cpp")]
        if name.startswith("client_"):
            continue
        if name == own or '#include "%s.h"' % stem in test.read_text(encoding="utf-8"):
            found.append(name)
    found = [name for name in dict.fromkeys(found) if (root / "tests/unit" / (name + "_test.cpp")).exists()]
    return sorted(found, key=lambda name: name != own)


def system_tests(root, file, every=False):
    """Names of the system tests of a file; with every, the rest behind them."""
    stem = re.sub(r"(_slots)?\.\w+$", "", file)
    names = SYSTEM.get(stem, ROOM[file.split("/")[0]])[:]
    if every:
        names += sorted(path.stem[len("test_"):] for path in (root / "tests/system").glob("test_*.py"))
    return [name for name in dict.fromkeys(names) if (Path(root) / "tests/system" / ("test_%s.py" % name)).exists()]
