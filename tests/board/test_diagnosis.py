"""The diagnosis of the network: faults made for real, and what it says of each."""

import pytest

import modem
from diagnosis_page import CELLULAR, ETH, WIFI, Diagnosis
from lab import wait_for
from wifi_page import choose

CLOUD = "/mnt/data/prj/cloud"
XML = """<?xml version="1.0" encoding="UTF-8"?><cloud version="1"><region>Europe</region>
<server url="mqtt.example.com" port="8883"/><certificate url="cert.example.com" port="443"/>
<time url="ntp.example.com"/>{}</cloud>"""
WITHOUT_RESOURCE = XML.format('<resource file="root.pem"/>')


def cloud(panel, text):
    panel.shell(f"mkdir -p {CLOUD}; cat >{CLOUD}/cloud.xml", text.encode())


def ports(panel, action):
    """Has the drivers let go of the Ethernet ports, or take them again."""
    for name, driver in (("eth0", "virtio/drivers/virtio_net"), ("eth1", "pci/drivers/e1000")):
        if action == "unbind":
            panel.shell(f"basename $(readlink -f /sys/class/net/{name}/device) >/run/{name}")
        panel.shell(f"cat /run/{name} >/sys/bus/{driver}/{action}")


def join(panel, diagnosis, name):
    diagnosis.tab(WIFI)
    choose(panel, name)


def switch_all(panel, diagnosis):
    for tab, button in ((ETH, "btn_EthSwitch"), (WIFI, "btn_WifiSwitch"), (CELLULAR, "btn_4G")):
        diagnosis.tab(tab)
        panel.touch(button)


@pytest.mark.long
def test_every_fault_is_named(networked):
    panel = networked
    diagnosis = Diagnosis(panel, 0)
    diagnosis.says("×", is_checked=False)
    cloud(panel, "<cloud")
    diagnosis.says("×", is_checked=False)
    cloud(panel, WITHOUT_RESOURCE)
    diagnosis.says("×", "√ √ √ √ ×", "√ √ ×", "√ √ Medium √ √ √ ×")

    cloud(panel, XML.format(""))
    diagnosis.has_region = True
    panel.modem.signal(28)
    join(panel, diagnosis, "Guests")
    diagnosis.says("√", "√ √ √ √ ×", "√ √ √ Medium √ ×", "√ √ Strong √ √ √ ×")

    panel.modem.signal(9)
    panel.far.gateway("eth0", False)
    panel.far.gateway("wlan0", False)
    panel.air.level("Guests", 100)
    diagnosis.says("√", "√ √ √ ×", "√ √ √ Strong ×", "√ √ Weak √ √ √ ×")

    panel.far.gateway("wlan0", True)
    panel.air.level("Guests", 40)
    panel.hands.cable("eth0", False)
    panel.modem.apn = "another"
    panel.modem.drop_call()
    diagnosis.says("√", "√ √ ×", "√ √ √ Weak √ ×", "√ √ Weak √ √ ×")

    # A cable that is back within six seconds keeps its lease.
    wait_for(lambda: "unavailable" in panel.shell("nmcli -g GENERAL.STATE dev show eth0"), "no cable")
    panel.far.gateway("eth0", True)
    panel.far.dhcp("eth0", "silent")
    panel.hands.cable("eth0", True)
    panel.air.gone("Guests")
    panel.modem.apn = None
    panel.modem.register(modem.SEARCHING)
    diagnosis.says("√", "√ √ √ ×", "√ √ ×", "√ √ Weak √ × ×")

    switch_all(panel, diagnosis)
    diagnosis.says("√", "√ ×", "√ ×", "√ ×")

    panel.modem.pull()
    panel.air.pull_adapter()
    ports(panel, "unbind")
    diagnosis.says("√", "×", "×", "×")

    panel.far.dhcp("eth0")
    ports(panel, "bind")
    panel.air.plug_adapter()
    panel.modem.has_sim = False
    panel.modem.plug()
    switch_all(panel, diagnosis)
    diagnosis.says("√", "√ √ √ √ ×", "√ √ ×", "√ √ Weak ×")

    panel.modem.pull()
    panel.modem.has_sim, panel.modem.pin = True, "1234"
    panel.modem.plug()
    diagnosis.speak(1)
    diagnosis.says("√", "√ √ √ √ ×", "√ √ ×", "√ √ Weak √ × ×")
