"""The cloud: from an empty panel to the blue icon, what may be wrong on the way, and who else is spoken with."""

import re

import pytest

import conftest
import modem
from authority import openssl
from capture import Capture
from cloud import CERTIFICATE_PORT, CERTIFICATES, PORT, SERVER, TIME, TIME_PORT
from cloud_page import (CONNECTED, NO_CERTIFICATE, NO_SERVER, NO_TIME, NO_TOPIC, is_blue, said_at, status,
                        wait_connected, wait_stopped)
from diagnosis_page import Diagnosis
from ethernet import CLOUD_HOSTS, HOST, LINKS, NAME_SERVERS
from ethernet_page import LEASE_S, NET
from lab import wait_for
from virtualboard import powercut

REPORTED_S = 10         # by the service, from its first try
RECOVERS_S = 30         # from the end of a cause
FIRST_S = 40            # from the project to the icon, with a certificate to be made
CALLS_S, MOST_CALLS = 20, 6     # at a server that closes each connection
CUTS = 30
SHORT_S, LONG_S = 20, 86400     # a life of which two thirds are over at once, as it began a minute ago
FIRST_SERIAL = 0x1000
IS_VALID = "openssl x509 -noout -checkend 0 -in /mnt/data/cloud/identity.pem"

# Whom a panel speaks with for its networks' sake: addresses, names, the board's check of what leads where.
AROUND = {("udp", "255.255.255.255", 67), ("udp", LINKS["eth0"][1], 67), ("tcp", HOST, 80),
          *(("udp", address, 53) for address in NAME_SERVERS),
          *(("icmp", address, 0) for address in (*NAME_SERVERS, LINKS["eth0"][1], CLOUD_HOSTS[SERVER]))}
CLOUD = {("udp", CLOUD_HOSTS[TIME], TIME_PORT), ("tcp", CLOUD_HOSTS[CERTIFICATES], CERTIFICATE_PORT),
         ("tcp", CLOUD_HOSTS[SERVER], PORT)}


@pytest.fixture
def clouded(networked):
    """A panel that is bound to no cloud yet."""
    return networked.with_cloud()


@pytest.fixture
def logged(request, networks, built, tmp_path):
    """The same, and the log of its writes."""
    log = powercut.Log(tmp_path)
    with conftest.logged(request, networks, built, {"data": log}, has_desk=False) as panel:
        yield panel.with_modem().with_cloud(), log


def is_local(contact):
    return contact in AROUND or contact[0] == "igmp" or contact[1].startswith("ff02:")


def wait_moved(panel, net, seconds):
    """Until the panel is connected from there, and from nowhere else."""
    wait_for(lambda: [address.startswith(net) for address in panel.cloud.visitors()] == [True]
             and status(panel) == (CONNECTED, ""), f"a connection from {net}", seconds)
    wait_connected(panel)


@pytest.mark.long
def test_an_empty_panel_is_connected_and_speaks_with_nobody_else(clouded):
    panel, cloud = clouded, clouded.cloud
    cloud.certificates(life_s=SHORT_S)
    assert status(panel) == (-1, "") and not is_blue(panel)
    with Capture(panel) as wire:
        cloud.bind()
        wait_connected(panel, FIRST_S)
        wait_for(lambda: cloud.granted()[:2] == ["simpleenroll", "simplereenroll"], "a renewal")
        cloud.certificates(life_s=LONG_S)
        assert panel.shell("stat -c '%U %a' /mnt/data/cloud /mnt/data/cloud/*") == "cloud 700\ncloud 600"
        assert cloud.request("hello") == "0"
        wait_for(lambda: panel.try_shell(IS_VALID)[0] == 1, "a certificate that is over")
        panel.shell("systemctl kill -s KILL sysset-cloud")
        wait_for(lambda: panel.try_shell(IS_VALID)[0] == 0, "a new one", FIRST_S)
        wait_moved(panel, NET, RECOVERS_S)
        panel.hands.cable("eth0", False)
        wait_moved(panel, modem.ADDRESS, RECOVERS_S)
        panel.hands.cable("eth0", True)
        wait_moved(panel, NET, LEASE_S + RECOVERS_S)
        assert cloud.request("again") == "0"
        diagnosis = Diagnosis(panel, 0)
        diagnosis.has_region = True
        diagnosis.says("√", "√ √ √ √ √ ms")
    assert set(cloud.granted()[2:]) == {"simpleenroll"}
    assert set(re.findall(r":\d+ \((\S+?)\)\.", panel.journal("systemd-timesyncd"))) <= {"127.0.0.1", TIME}
    assert {contact for contact in wire.contacts if not is_local(contact)} == CLOUD
    assert wire.names == set(CLOUD_HOSTS)


# Each fault is made before the one above it is mended.
def faults(cloud):
    """What is done, where the service stops then, and what its reason says."""
    yield lambda: cloud.time(wrong_s=-3600), NO_CERTIFICATE, "not yet valid"
    cloud.certificate_server(is_strange=True)
    yield cloud.time, NO_CERTIFICATE, "local issuer"
    cloud.certificates("refuses")
    yield cloud.certificate_server, NO_CERTIFICATE, "401"
    cloud.server("another name")
    yield cloud.certificates, NO_SERVER, "ostname mismatch"
    for how, reason in {"strange": "local issuer", "expired": "has expired"}.items():
        yield lambda h=how: cloud.server(h), NO_SERVER, reason
    yield lambda: cloud.server("refuses"), NO_TOPIC, "refuses the subscription"


@pytest.mark.long
def test_each_fault_is_named_and_ends_with_its_cause(clouded):
    panel, cloud = clouded, clouded.cloud
    panel.modem.pull()
    panel.air.pull_adapter()
    diagnosis = Diagnosis(panel)
    diagnosis.has_region = True

    def is_said(number, reason, seconds):
        wait_stopped(panel, number, reason, seconds)
        if number != diagnosis.status:      # the dialog knows no more than that
            diagnosis.status = number
            diagnosis.says("√", "√ √ √ √ ×", "×", "×")

    cloud.time(silent=True)
    cloud.bind()
    diagnosis.status = None
    is_said(NO_TIME, "in time", RECOVERS_S)
    assert said_at(panel, "stopped (-2)") - said_at(panel, "connecting to") <= REPORTED_S
    for mend, number, reason in faults(cloud):
        mend()
        is_said(number, reason, RECOVERS_S)
    is_closing_not_hammered(panel)
    cloud.server()
    wait_connected(panel, RECOVERS_S)
    cloud.server("down")
    wait_stopped(panel, NO_SERVER)
    cloud.server()
    wait_connected(panel, RECOVERS_S)


def is_closing_not_hammered(panel):
    """A server closes each connection, and the service, killed, begins with its shortest pauses."""
    with Capture(panel) as wire:
        panel.cloud.server("closes")
        panel.shell("systemctl kill -s KILL sysset-cloud")
        wait_stopped(panel, NO_SERVER)
        calls = wire.calls[PORT]
        wait_for(lambda: calls[-1] - calls[0] > CALLS_S, "calls", 2 * CALLS_S)
    assert 1 < sum(call - calls[0] <= CALLS_S for call in calls) <= MOST_CALLS


@pytest.mark.long
def test_a_power_cut_leaves_a_whole_certificate(logged):
    panel, log = logged
    kept, count = [(0, 0)], 0
    panel.cloud.certificates(life_s=SHORT_S)
    first = log.length()
    panel.cloud.bind()
    while log.length() < first + CUTS or len(kept) < 3:
        count = issued(panel, count)
        kept.append((log.length(), FIRST_SERIAL + count - 1))
        panel.shell("systemctl kill -s KILL sysset-cloud")
    panel.hands.cut_power()
    cuts = list(found_after_cuts(log, first))
    print(f"{len(cuts)} cuts: {cuts}; kept: {kept}")
    assert len(cuts) == CUTS
    for number, serial in cuts:
        assert serial >= max(least for by, least in kept if by <= number), f"cut after {number} requests"


def issued(panel, former):
    """How many certificates the service has kept since the start, once that are more."""
    return wait_for(lambda: (now := panel.journal("sysset-cloud").count("has been issued")) > former and now,
                    "another certificate", FIRST_S)


def found_after_cuts(log, first):
    """Requests before each cut, and the number of the certificate that it leaves, 0 for none."""
    for number, disk in log.cuts(CUTS, first=first):
        assert powercut.recover(disk) == "", f"cut after {number} requests"
        files = powercut.files_in(disk, "/cloud")
        assert {mode for mode, _ in files.values()} <= {"600"}
        yield number, serial_of(files["identity.pem"][1]) if "identity.pem" in files else 0


def serial_of(pem):
    """Of the certificate, whose key is beside it."""
    assert openssl("x509", "-noout", "-pubkey", data=pem) == openssl("pkey", "-pubout", data=pem)
    return int(openssl("x509", "-noout", "-serial", data=pem).split(b"=")[1], 16)
