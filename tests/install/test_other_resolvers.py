# SPDX-License-Identifier: MIT
"""Programs that manage the resolver's configuration: what pppd's hooks, ours among them, do beside each."""
import pytest

SERVERS = ("10.64.0.53", "10.64.0.54")
OWN = "192.0.2.53"


def hooks(system, folder):
    """Runs a folder of hooks as pppd does when the link norvix comes or goes."""
    link = {"PPP_IFACE": "ppp0", "PPP_LOCAL": "10.64.0.100", "PPP_REMOTE": "10.64.0.1",
            "LINKNAME": "norvix", "USEPEERDNS": "1", "DNS1": SERVERS[0], "DNS2": SERVERS[1]}
    system.write("/etc/ppp/resolv.conf", "".join("nameserver %s\n" % server for server in SERVERS))
    arguments = ["ppp0", "", "0", "10.64.0.100", "10.64.0.1"]
    return system.run("env", *("%s=%s" % pair for pair in link.items()), "run-parts", "--verbose",
                      *("--arg=" + word for word in arguments), folder).output


def servers(system):
    """The name servers that programs ask, in their order."""
    lines = system.run("cat", "/etc/resolv.conf").output.splitlines()
    return [line.split()[1] for line in lines if line.startswith("nameserver ")]


@pytest.mark.parametrize("manager", ("resolvconf", "openresolv", None))
def test_the_providers_servers_are_asked_while_the_link_is_up(system, manager):
    packages = ["ppp"] + ([manager] if manager else [])
    system.run("apt-get", "-q", "update")
    system.run("apt-get", "-q", "-y", "install", "--no-install-recommends", *packages)
    system.run("cp", "/run/repository/packaging/neighbours/norvix-resolved", "/etc/ppp/ip-up.d/")
    if manager:
        if manager == "resolvconf":
            system.run("resolvconf", "--enable-updates")
            system.run("ln", "-sf", "/run/resolvconf/resolv.conf", "/etc/resolv.conf")
        system.run("resolvconf", "-a", "eth0.inet", stdin="nameserver %s\n" % OWN)
    else:
        system.write("/etc/resolv.conf", "nameserver %s\n" % OWN)
    before = servers(system)
    assert OWN in before

    hooks(system, "/etc/ppp/ip-up.d")
    # Beside another connection their order is the manager's own affair.
    assert set(SERVERS) <= set(servers(system))
    hooks(system, "/etc/ppp/ip-down.d")
    assert servers(system) == before
