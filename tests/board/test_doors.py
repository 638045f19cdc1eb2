"""What a stranger finds at the panel's doors."""

import re

# Units of ours: the limit of systemd-analyze security that each of them must keep.
LIMIT = 3.0
CLOUD_LIMIT = 2.5
AS_ROOT = "sysset-update.service"     # what it exchanges belongs to others
ONE_SHOTS = ["sysset-remount@rw.service", "sysset-reset.service", "sysset-good.service", "sysset-trial.service"]

# What polkit lets the users do, by the names of its actions; all else is refused. timedated's own policy
# gives the zone to whoever may set the clock.
MANAGE = "org.freedesktop.systemd1.manage-units --detail verb {} --detail unit {}.service"
ALLOWED = {"org.freedesktop.timedate1.set-time": "panel words",
           "org.freedesktop.timedate1.set-ntp": "panel words cloud",
           "org.freedesktop.timesync1.set-runtime-servers": "cloud",
           "org.freedesktop.timedate1.set-timezone": "panel words",
           "org.freedesktop.timedate1.set-local-rtc": "",
           "org.freedesktop.login1.reboot": "panel",
           "org.freedesktop.login1.power-off": "",
           "org.freedesktop.systemd1.manage-unit-files": "",
           MANAGE.format("start", "sysset-remount@rw"): "panel",
           MANAGE.format("start", "sysset-remount@ro"): "panel",
           MANAGE.format("start", "sysset-reset"): "panel",
           MANAGE.format("stop", "sysset-remount@rw"): "",
           MANAGE.format("start", "sysset-remount@exec"): "",
           MANAGE.format("start", "sysset-words"): "",
           "org.freedesktop.NetworkManager.network-control": "netserver",
           "org.freedesktop.NetworkManager.settings.modify.system": "netserver",
           "org.freedesktop.NetworkManager.settings.modify.hostname": "",
           "org.freedesktop.ModemManager1.Control": "netserver",
           "org.freedesktop.ModemManager1.Device.Control": "netserver"}

# Methods as they are called, and users who may not.
CALLS = [("org.freedesktop.timedate1 /org/freedesktop/timedate1 org.freedesktop.timedate1 SetTimezone sb UTC false",
          "nobody netserver cloud"),
         ("org.freedesktop.login1 /org/freedesktop/login1 org.freedesktop.login1.Manager Reboot b false",
          "nobody words"),
         ("org.freedesktop.systemd1 /org/freedesktop/systemd1 org.freedesktop.systemd1.Manager "
          "StartUnit ss sysset-reset.service replace", "nobody words"),
         ("org.sysset.Network1 /org/sysset/Network1 org.sysset.Network1 GetPreferred b false",
          "root nobody words netserver"),
         ("org.sysset.Cloud1 /org/sysset/Cloud1 org.sysset.Cloud1 GetStatus", "root nobody words netserver")]

# Owner, group and mode of what the panel is made of.
NODES = {"/dev/fb0": "root video 660", "/dev/input/event*": "root input 660", "/dev/ttyS1": "root dialout 660",
         "/dev/tty1": "panel tty 620", "/sys/class/backlight/*/brightness": "root video 664",
         "/sys/class/backlight/*/bl_power": "root video 664", "/mnt/data/sysset/words": "words words 700",
         "/mnt/data/etc/tz": "panel panel 755", "/mnt/data/prj": "panel panel 755",
         "/mnt/data/network/profiles": "root root 700", "/mnt/data/network/netserver": "netserver netserver 700",
         "/mnt/data/cloud": "cloud cloud 700"}
GROUPS = {"panel": {"panel", "video", "input", "dialout"}, "words": {"words"}, "netserver": {"netserver"},
          "cloud": {"cloud"}}


def test_nothing_listens_off_the_loopback(delivered):
    listening = delivered.shell("ss -Hlntup").splitlines()
    strangers = [line for line in listening if not re.search(r"\s(127\.0\.0\.1|\[::1\]):\d+\s", line)]
    assert strangers == []


def test_polkit_gives_each_user_what_it_needs(delivered):
    delivered.shell("systemd-run -q --unit stranger --uid nobody sleep 600")
    units = {"panel": "sysset", "words": "sysset-words", "netserver": "sysset-network",
             "cloud": "sysset-cloud", "nobody": "stranger"}
    asked = "".join(f"(for u in {' '.join(units.values())}; do pkcheck -p $(systemctl show -P MainPID $u) -a {action} "
                    f">/dev/null 2>&1 && echo $u; done) >/run/asked.{number} &\n"
                    for number, action in enumerate(ALLOWED))
    delivered.shell(asked + "wait", timeout=120)
    for number, (action, users) in enumerate(ALLOWED.items()):
        may = delivered.shell(f"cat /run/asked.{number}").split()
        assert may == [units[user] for user in users.split()], action


def test_other_users_are_refused(delivered):
    for call, users in CALLS:
        for user in users.split():
            status, said = delivered.try_shell(f"runuser -u {user} -- busctl call {call}")
            assert status != 0 and re.search("authentication required|[Aa]ccess denied", said), said


def test_devices_and_settings_are_open_to_their_groups_alone(delivered):
    for node, access in NODES.items():
        assert set(delivered.shell(f"stat -c '%U %G %a' {node}").splitlines()) == {access}, node
    for user, groups in GROUPS.items():
        assert set(delivered.shell(f"id -nG {user}").split()) == groups


def test_our_services_are_fenced_in_and_but_one_not_root(delivered):
    listed = delivered.shell("systemctl list-units --type=service --state=active --plain --no-legend 'sysset*'")
    services = [line.split()[0] for line in listed.splitlines()] + ONE_SHOTS
    assert {"sysset.service", "sysset-words.service", "sysset-network.service",
            "sysset-cloud.service", AS_ROOT} <= set(services)
    for service in services:
        told = delivered.shell(f"systemd-analyze security --no-pager {service} | tail -1")
        level = float(re.search(r"service: ([0-9.]+)", told).group(1))
        print(f"{service}: {level}")
        assert level <= (CLOUD_LIMIT if service == "sysset-cloud.service" else LIMIT), told
        pid = delivered.shell(f"systemctl show -P MainPID {service}")
        assert service in (*ONE_SHOTS, AS_ROOT) or delivered.shell(f"stat -c %U /proc/{pid}") != "root", service


def test_the_delivered_program_has_no_control_socket(delivered):
    pid = delivered.shell("systemctl show -P MainPID sysset")
    listening = delivered.shell("ss -Hlxp").splitlines()
    assert [line for line in listening if f"pid={pid}," in line] == []
    assert delivered.try_shell("find / -xdev -name 'sysset-dev*' -o -xdev -name panelctl | grep .")[0] == 1
