"""The diagnosis of the network: faults made for real, and what it says of each."""

import json
import pathlib
import time

import modem
from lab import wait_for

ETH, WIFI, CELLULAR, EXTEND = range(4)  # tabs
LANGUAGE = 2
SETTLED_S = 60          # a fault is made, and everybody has heard of it
RUN_S = 40

CLOUD = "/mnt/data/prj/cloud"
XML = """<?xml version="1.0" encoding="UTF-8"?><cloud version="1"><region>Europe</region>
<server url="mqtt.example.com" port="8883"/><certificate url="cert.example.com" port="443"/>
<time url="ntp.example.com"/>{}</cloud>"""
WITHOUT_RESOURCE = XML.format('<resource file="root.pem"/>')

TEXTS = pathlib.Path(__file__).resolve().parents[2] / "resources" / "NetWorkTest"
ORDER = ("Gocloud NetWorkEth EthIdentified EthEnable EthConnect EthGateaway EthMQTT "
         "NetWorkWifi WifiIdentified WifiEnable WifiHotspotConnect WifiHotspotSignal WifiHotsGateaway WifiHotsMQTT "
         "NetTestNetWork4G 4GIdentified 4GEnable 4GSignal 4GCard 4GBaseStationConnect 4GConnect 4GMQTT").split()
HEADINGS = {"NetWorkEth", "NetWorkWifi", "NetTestNetWork4G"}
LEVELS = {"Strong": "强", "Medium": "中", "Weak": "弱"}

# What is said behind a failure, and below all rows: English, Chinese.
REASONS = {"Gocloud": ("Get resource file failed!", "获取资源文件失败！"),
           "MQTT": ("Server connection failed!", "服务器连接失败！")}
NOT_CHECKED = ("The cloud settings are missing or damaged. The network was not checked.", "云配置缺失或损坏，未检查网络。")
NO_LINK = ("No network reaches the cloud. See the failed items.", "所有网络均无法连接到云，请查看失败项。")
REGION = (":Europe", "：欧洲")


class Diagnosis:
    """The dialog, in a language: 0 English, 1 Chinese."""

    def __init__(self, panel, language=1):
        self.panel = panel
        self.has_region = False         # the cloud's file has been read, and names Europe
        self.speak(language)

    def speak(self, language):
        self.close()
        self.language = language
        self.panel.touch("btn_Sysset")
        self.panel.touch("tab_System", LANGUAGE)
        self.panel.touch(("ENBtn", "CHBtn")[language])
        self.texts = json.loads((TEXTS / f"NetWorkTest_{('en', 'ch')[language]}.json").read_text())
        self.panel.touch("btn_Net")

    def tab(self, tab):
        self.close()
        self.panel.touch("tab_Net", tab)
        wait_for(lambda: self.panel.widget("tab_Net").index == tab, f"tab {tab}")

    def close(self):
        if self.panel.is_seen("btn_close"):
            self.panel.touch("btn_close")
            wait_for(lambda: not self.panel.is_seen("btn_close"), "the dialog closes")

    def open(self):
        if not self.panel.is_seen("btn_StartDiag"):
            self.tab(EXTEND)
            self.panel.touch("btn_check")

    def rows(self):
        """Texts of each row by their labels' names, by the row's key."""
        rows = {}
        for widget in self.panel.widget("NetWorkTestUi").walk():
            if widget.told["class"] == "NetWorkTestItem":
                row = rows[widget.name] = {}
            elif rows and widget.visible and widget.name.startswith("lab_") and widget.name != "lab_status":
                row[widget.name] = widget.text
        return rows

    def run(self):
        """Marks of the rows; a heading's is "-"."""
        self.open()
        self.panel.touch("btn_StartDiag")
        wait_for(lambda: self.panel.text("lab_status") not in ("", "诊断中", "Diagnosing")
                 and self.panel.widget("btn_StartDiag").enabled, "the end of the diagnosis", RUN_S)
        self.seen = self.rows()
        return " ".join(row.get("lab_state") or "-" for row in self.seen.values())

    def says(self, *links, is_checked=True):
        """Waits until it has the marks of these links behind those of the cloud's file; all the texts fit."""
        marks = " - ".join(links)
        for word, translated in LEVELS.items():
            marks = marks.replace(word, translated) if self.language else marks
        began = time.monotonic()
        wait_for(lambda: self.run() == marks, f"the diagnosis says {marks}", SETTLED_S)
        print(f"{time.monotonic() - began:5.1f} s: {marks}")
        assert [key for key in ORDER if key in self.seen] == list(self.seen)
        for key, row in self.seen.items():
            assert row == self.expected(key, row["lab_state"], is_checked), key
        assert self.panel.text("lab_status") == (NO_LINK if is_checked else NOT_CHECKED)[self.language]

    def expected(self, key, mark, is_checked):
        texts = self.texts[key]
        reason = REASONS.get("MQTT" if key.endswith("MQTT") else key)
        is_region_told = key.endswith("MQTT") and self.has_region
        row = {"lab_state": mark, "lab_title": texts["ItemString"] + REGION[self.language] * is_region_told}
        if mark in ("√", "×"):
            row["lab_result"] = texts["success" if mark == "√" else "failure"]
        if mark == "×" and reason and is_checked:
            row["lab_result"] += "    " + reason[self.language]
        if mark in ("×", "Weak", "弱"):
            row["lab_solution"] = texts["Solution"]
        return row


def cloud(panel, text):
    panel.shell(f"mkdir -p {CLOUD}; cat >{CLOUD}/cloud.xml", text.encode())


def port(panel, action):
    """Has the driver let go of the first port, or take it again."""
    if action == "unbind":
        panel.shell("basename $(readlink -f /sys/class/net/eth0/device) >/run/port")
    panel.shell(f"cat /run/port >/sys/bus/virtio/drivers/virtio_net/{action}")


def join(panel, diagnosis, name):
    diagnosis.tab(WIFI)
    row = wait_for(lambda: name in (rows := panel.items("list_Wifi")) and [rows.index(name)], f"{name} in the list")
    panel.touch("list_Wifi", row[0])


def switch_all(panel, diagnosis):
    for tab, button in ((ETH, "btn_EthSwitch"), (WIFI, "btn_WifiSwitch"), (CELLULAR, "btn_4G")):
        diagnosis.tab(tab)
        panel.touch(button)


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
    port(panel, "unbind")
    diagnosis.says("√", "×", "×", "×")

    panel.far.dhcp("eth0")
    port(panel, "bind")
    panel.air.plug_adapter()
    panel.modem.has_sim = False
    panel.modem.plug()
    switch_all(panel, diagnosis)
    diagnosis.says("√", "√ √ √ √ ×", "√ √ ×", "√ √ Weak ×")
    diagnosis.speak(1)
    diagnosis.says("√", "√ √ √ √ ×", "√ √ ×", "√ √ Weak ×")
