"""Settings by touch alone: kept over a power cut, and arrived at the devices behind them."""

import datetime
import time

import pytest

from lab import wait_for

GENERAL, COM, LANGUAGE = range(3)   # tabs
MARQUESAS = 4                       # row of the zones
AHEAD = datetime.timedelta(hours=9, minutes=30)
CLOCK = ["line_Year", "line_Month", "line_Day", "line_Hour", "line_Minute", "line_Second"]

# What is typed: the keyboard's caption, the digits.
CLOCK_TYPED = dict(zip(CLOCK, [("年", "2031"), ("月", "2"), ("日", "28"), ("时", "23"), ("分", "41"), ("秒", "7")]))
GENERAL_TYPED = {"line_BacklightTime": ("背光时间", "45"), "line_Backlightness": ("背光亮度", "60"),
                 "line_BeepTime": ("蜂鸣时间", "250"), "line_BeepType": ("蜂鸣音调", "5")}
STATIONS_TYPED = {"line_HmiStation": ("HMI 站号", "11"), "line_StandStation": ("设备站号", "12")}
SLID = {"slider_Backlightness": 35, "slider_BeepType": 2}

# Of a dialog: its button, what is typed in it, what is stepped to the left (-1) or right (1).
DIALOGS = [("btn_CommunIndetail", {"line_ByteSize": ("数据位", "7"), "line_StopBits": ("停止位", "2")},
            {"Communication": 1, "BaudRate": 1, "Parity": -1}),
           ("btn_TimeOutIndetail", {"line_WaitTimeOut": ("等待超时(ms)", "250"), "line_RetryTime": ("重试次数", "7")},
            {"ReadTimeOut": 1, "RetryTimeOut": -1})]

KEPT = {"line_BacklightTime": "45", "line_Backlightness": "35", "line_BeepTime": "250", "line_BeepType": "2"}
COM_KEPT = {"line_ComNum": "COM1-1", "line_HmiStation": "11", "line_StandStation": "12",
            "line_SerialCommiation": "RS485_1,19200,7,2,Mark", "line_TimeCommiation": "250,110,7,1"}

TONES_HZ = [1000, 1500, 2000, 2700, 4000]


def open_tab(panel, tab):
    panel.touch("btn_Sysset")
    panel.touch("tab_System", tab)
    wait_for(lambda: panel.widget("tab_System").index == tab, f"tab {tab}")


def enter(panel, typed):
    for field, (caption, digits) in typed.items():
        panel.touch(field)
        panel.wait_text("lab_Field", caption)
        panel.type(digits)
        assert field in CLOCK or panel.text(field) == digits   # a clock goes on


def texts(panel, page, names):
    return {w.name: w.text for w in panel.widget(page).walk() if w.name in names}


def board_time(panel):
    return datetime.datetime.fromtimestamp(int(panel.shell("date +%s")), datetime.timezone.utc)


def set_clock(panel):
    panel.choose("comboBox", MARQUESAS)
    enter(panel, CLOCK_TYPED)
    panel.set_clock()
    # The seconds become what the minutes are; this is intended.
    chosen = datetime.datetime(2031, 2, 28, 23, 41, 41, tzinfo=datetime.timezone.utc) + AHEAD
    wait_for(lambda: datetime.timedelta() <= board_time(panel) - chosen < datetime.timedelta(seconds=60), "the clock")


def set_port(panel):
    open_tab(panel, COM)
    enter(panel, STATIONS_TYPED)
    for button, typed, stepped in DIALOGS:
        panel.touch(button)
        enter(panel, typed)
        for name, step in stepped.items():
            before = panel.text(f"line_{name}")
            panel.touch(f"btn_{name}_{'R' if step > 0 else 'L'}")
            wait_for(lambda n=name, b=before: panel.text(f"line_{n}") != b, f"{name} changes")
        panel.touch("btn_Save")
        wait_for(lambda: not panel.is_seen("btn_Save"), "the dialog closes")
    assert texts(panel, "ComSetting", COM_KEPT) == COM_KEPT
    panel.touch("btn_ComR")
    panel.wait_text("line_ComNum", "COM1-2")
    enter(panel, {"line_HmiStation": ("HMI 站号", "21")})


def test_every_setting_comes_back_after_a_power_cut(panel):
    open_tab(panel, GENERAL)
    set_clock(panel)
    enter(panel, GENERAL_TYPED)
    assert [panel.widget(slider).value for slider in SLID] == [60, 5]
    for slider, value in SLID.items():
        panel.drag(slider, value)
    assert texts(panel, "General", KEPT) == KEPT
    panel.touch("btn_BeepSwitch")
    set_port(panel)
    open_tab(panel, LANGUAGE)
    panel.touch("ENBtn")
    wait_for(lambda: panel.items("tab_System")[GENERAL] == "General", "English")
    set_at, wall = board_time(panel), time.time()
    time.sleep(1)   # so long a service may take to keep a word
    panel.power_cycle()

    panel.open_pages()
    assert abs((board_time(panel) - set_at).total_seconds() - (time.time() - wall)) < 3
    assert panel.hands.backlight() == 35
    open_tab(panel, GENERAL)
    assert panel.items("tab_System")[COM] == "COM Settings"
    assert texts(panel, "General", KEPT) == KEPT
    assert [panel.widget(slider).value for slider in SLID] == list(SLID.values())
    assert panel.widget("comboBox").index == MARQUESAS
    fields = texts(panel, "General", CLOCK)
    local = board_time(panel) - AHEAD
    shown = datetime.datetime(*(int(fields[field]) for field in CLOCK), tzinfo=datetime.timezone.utc)
    assert abs((shown - local).total_seconds()) < 5
    assert len(click(panel)) == 1   # the switch is on again; this is intended
    open_tab(panel, COM)
    assert texts(panel, "ComSetting", COM_KEPT) == COM_KEPT
    panel.touch("line_HmiStation")
    panel.wait_text("lab_Field", "HMI No.")
    panel.press_key("btn_close", lambda: not panel.is_seen("line_Text"))
    panel.touch("btn_ComR")
    panel.wait_text("line_HmiStation", "21")


def test_the_light_follows_and_goes_out_until_a_touch_that_does_nothing_else(panel):
    open_tab(panel, GENERAL)
    for level in (1, 100, 40):
        panel.drag("slider_Backlightness", level)
        wait_for(lambda v=level: panel.hands.backlight() == v, f"a light of {level} %")
    enter(panel, {"line_Backlightness": ("背光亮度", "70")})
    wait_for(lambda: panel.hands.backlight() == 70, "a light of 70 %")
    enter(panel, {"line_BacklightTime": ("背光时间", "2")})
    place = panel.widget("btn_Net").centre
    wait_for(panel.hands.is_dark, "no light")
    with panel.listening() as heard:
        panel.touch_at(*place)
        wait_for(lambda: not panel.hands.is_dark(), "light")
    assert panel.is_seen("General") and heard == []
    panel.touch_at(*place)
    wait_for(lambda: panel.is_seen("tab_Net"), "the page of the second touch")


def click(panel, seconds=1.0):
    """The tones that are heard of a touch on the group that is open already. The end of a tone comes
    out of the recorder's buffer with the beginning of the next one, which is left out here."""
    with panel.listening() as heard:
        panel.touch("btn_Sysset")
        time.sleep(seconds)
    return [tone for tone in heard if tone.seconds > 0.06]


def test_each_tone_sounds_as_long_as_it_is_set(panel):
    open_tab(panel, GENERAL)
    enter(panel, {"line_BeepTime": ("蜂鸣时间", "500")})
    for tone, hertz in enumerate(TONES_HZ, 1):
        panel.drag("slider_BeepType", tone)
        time.sleep(1)
        (heard,) = click(panel)
        assert heard.hertz == pytest.approx(hertz, rel=0.02)
        assert heard.seconds == pytest.approx(0.5, abs=0.1)
    enter(panel, {"line_BeepTime": ("蜂鸣时间", "200")})
    time.sleep(1)
    (heard,) = click(panel)
    assert heard.seconds == pytest.approx(0.2, abs=0.1)
    panel.touch("btn_BeepSwitch")
    time.sleep(1)
    assert click(panel) == []
    panel.touch("btn_BeepSwitch")
    assert len(click(panel)) == 1
