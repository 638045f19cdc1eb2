"""The diagnosis of the network as an operator sees and touches it."""

import json
import pathlib
import re
import time

from lab import NotSeen, wait_for

ETH, WIFI, CELLULAR, EXTEND = range(4)  # tabs
LANGUAGE = 2
SETTLED_S = 60          # a fault is made, and everybody has heard of it
RUN_S = 40

TEXTS = pathlib.Path(__file__).resolve().parents[2] / "resources" / "NetWorkTest"
ORDER = ("Gocloud NetWorkEth EthIdentified EthEnable EthConnect EthGateaway EthMQTT EthNetDelay "
         "NetWorkWifi WifiIdentified WifiEnable WifiHotspotConnect WifiHotspotSignal WifiHotsGateaway WifiHotsMQTT "
         "WifiNetDelay NetTestNetWork4G 4GIdentified 4GEnable 4GSignal 4GCard 4GBaseStationConnect 4GConnect 4GMQTT "
         "4GNetDelay").split()
LEVELS = {"Strong": "强", "Medium": "中", "Weak": "弱"}

# What is said behind a failure, by what the cloud's client stopped at, and below all rows: English, Chinese.
NO_RESOURCE = -1
REASONS = {NO_RESOURCE: ("Get resource file failed!", "获取资源文件失败！"),
           -2: ("Time synchronize failed!", "时间同步失败！"), -3: ("Certificate download failed!", "证书下载失败！"),
           -4: ("Server connection failed!", "服务器连接失败！"), -5: ("Topic subscribe failed!", "主题订阅失败！")}
NOT_CHECKED = ("The cloud settings are missing or damaged. The network was not checked.", "云配置缺失或损坏，未检查网络。")
SLOW_MS = 500           # from here on it is advised what to do
NO_LINK = ("No network reaches the cloud. See the failed items.", "所有网络均无法连接到云，请查看失败项。")
SUCCESS = ("The network connection is successful.", "网络连接成功。")
REGION = (":Europe", "：欧洲")


class Diagnosis:
    """The dialog, in a language: 0 English, 1 Chinese."""

    def __init__(self, panel, language=1):
        self.panel = panel
        self.has_region = False         # the cloud's file has been read, and names Europe
        self.status = -4                # what the cloud's client has stopped at
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
        wait_for(lambda: re.sub(r"\d+ms", "ms", self.run()) == marks and self.fits(is_checked),
                 f"the diagnosis says {marks}", SETTLED_S)
        print(f"{time.monotonic() - began:5.1f} s: {marks}")
        assert [key for key in ORDER if key in self.seen] == list(self.seen)
        result = SUCCESS if marks.endswith("ms") else NO_LINK if is_checked else NOT_CHECKED
        assert self.panel.text("lab_status") == result[self.language]

    def fits(self, is_checked):
        """NotSeen where a row's texts are not those of its mark."""
        for key, row in self.seen.items():
            expected = self.expected(key, row["lab_state"], is_checked)
            if row != expected:
                raise NotSeen(f"{key} says {row} instead of {expected}")
        return True

    def expected(self, key, mark, is_checked):
        texts = self.texts[key]
        reason = {"Gocloud": NO_RESOURCE}.get(key, self.status if key.endswith("MQTT") else None)
        is_region_told = key.endswith("MQTT") and self.has_region
        row = {"lab_state": mark, "lab_title": texts["ItemString"] + REGION[self.language] * is_region_told}
        if mark in ("√", "×"):
            row["lab_result"] = texts["success" if mark == "√" else "failure"]
        if mark == "×" and reason and is_checked:
            row["lab_result"] += "    " + REASONS[reason][self.language]
        is_slow = mark.endswith("ms") and int(mark[:-2]) >= SLOW_MS
        if mark in ("×", "Weak", "弱") or is_slow:
            row["lab_solution"] = texts["Solution"]
        return row
