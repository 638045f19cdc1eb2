"""Services are killed at any moment; the operator goes on."""

import random

from lab import wait_for

KILLS = 10
SERVICES = ["sysset-words", "systemd-timedated", "systemd-logind"]


def killer(chance):
    """Lines of shell that kill each service ten times, at random moments."""
    for _ in range(KILLS):
        for service in chance.sample(SERVICES, len(SERVICES)):
            yield f"sleep {chance.uniform(0.2, 1.5):.2f}"
            yield f"systemctl start {service}; systemctl kill -s KILL {service}"


def test_services_killed_ten_times_each_under_a_working_finger(panel):
    healthy = max(panel.press_through())
    program = panel.shell("systemctl show -P MainPID -P NRestarts sysset")
    panel.shell("cat >/run/killer", stdin="\n".join(killer(random.Random(7))).encode())
    panel.shell("systemd-run -q --unit killer sh /run/killer")
    took = []
    while panel.service_is("killer") == "active":
        took += panel.press_through()
    print(f"slowest of {len(took)} touches {max(took):.1f} s, without killing {healthy:.1f} s")
    # The services that start take their share of an emulated board's two processors.
    assert max(took) < 3 * healthy + 1
    assert panel.shell("systemctl show -P MainPID -P NRestarts sysset") == program
    wait_for(lambda: panel.service_is("sysset-words") == "active", "the words service")
    assert int(panel.shell("systemctl show -P NRestarts sysset-words")) >= KILLS
    # One that was killed behind the last touch is started by the next.
    wait_for(lambda: panel.press_through() and panel.shell("systemctl --failed --plain --no-legend") == "",
             "all services without a failure", 60)
    panel.touch("tab_System", 0)
    panel.drag("slider_Backlightness", 33)
    panel.set_clock()
    assert not panel.is_seen("btn_Ok")
    assert wait_for(lambda: panel.hands.backlight() == 33, "the light")
