"""What a stranger finds at the panel's doors."""

import re

# Units of ours: the limit of systemd-analyze security that each of them must keep.
LIMIT = 3.0


def our_services(panel):
    listed = panel.shell("systemctl list-units --type=service --state=active --plain --no-legend 'sysset*'")
    return [line.split()[0] for line in listed.splitlines()]


def test_nothing_listens_off_the_loopback(delivered):
    listening = delivered.shell("ss -Hlntup").splitlines()
    strangers = [line for line in listening if not re.search(r"\s(127\.0\.0\.1|\[::1\]):\d+\s", line)]
    assert strangers == []


def test_our_services_are_fenced_in(delivered):
    services = our_services(delivered)
    assert "sysset.service" in services
    for service in services:
        told = delivered.shell(f"systemd-analyze security --no-pager {service} | tail -1")
        level = float(re.search(r"service: ([0-9.]+)", told).group(1))
        print(f"{service}: {level}")
        assert level <= LIMIT, told


def test_no_service_of_ours_runs_as_root(delivered):
    for service in our_services(delivered):
        pid = delivered.shell(f"systemctl show -P MainPID {service}")
        assert delivered.shell(f"stat -c %U /proc/{pid}") != "root", service


def test_the_delivered_program_has_no_control_socket(delivered):
    pid = delivered.shell("systemctl show -P MainPID sysset")
    listening = delivered.shell("ss -Hlxp").splitlines()
    assert [line for line in listening if f"pid={pid}," in line] == []
    assert delivered.try_shell("find / -xdev -name 'sysset-dev*' -o -xdev -name panelctl | grep .")[0] == 1
