"""The networks on the air: which there are, what a technician does to them, and what their access points
are told."""

import dataclasses

PASSWORD = "12345678"   # of one page of the keyboard
BEACON_MS = {1: 200, 2: 200, 3: 1000}   # rare ones cost an emulated board less
CHANNELS = {1: 1, 2: 6, 3: 11}          # of the radios
ALL_CHANNELS = range(1, 12)

WPA2, WPA3, MIXED, ENTERPRISE, OPEN = "wpa2", "wpa3", "wpa2 or wpa3", "enterprise", "open"

SECURITY = {
    OPEN: "",
    WPA2: f"wpa=2\nrsn_pairwise=CCMP\nwpa_key_mgmt=WPA-PSK\nwpa_passphrase={PASSWORD}\n",
    WPA3: f"wpa=2\nrsn_pairwise=CCMP\nwpa_key_mgmt=SAE\nieee80211w=2\nsae_password={PASSWORD}\n",
    MIXED: ("wpa=2\nrsn_pairwise=CCMP\nwpa_key_mgmt=WPA-PSK SAE\nieee80211w=1\nsae_require_mfp=1\n"
            f"wpa_passphrase={PASSWORD}\n"),
    ENTERPRISE: ("wpa=2\nrsn_pairwise=CCMP\nwpa_key_mgmt=WPA-EAP\nieee8021x=1\n"
                 "own_ip_addr=127.0.0.1\nauth_server_addr=127.0.0.1\nauth_server_shared_secret=none\n"),
}


@dataclasses.dataclass(frozen=True)
class Network:
    """A station, as its owner set it up. The level is in percent, as NetworkManager tells it."""

    name: bytes
    level: int
    security: str = WPA2
    radio: int = 3
    is_hidden: bool = False
    has_addresses: bool = True


def _named(name, level, *rest, **more):
    return Network(name.encode() if isinstance(name, str) else name, level, *rest, **more)


NETWORKS = [
    _named("Works", 80, WPA2, 1),
    _named("Guests", 75, OPEN, 1),
    _named("厂区 – Büro", 70, WPA2, 1),
    _named("Works 3", 65, WPA3, 1),
    _named("Works 2+3", 60, MIXED, 1),
    _named("Head office", 55, ENTERPRISE, 1),
    _named("Hidden one", 80, WPA2, 1, is_hidden=True),
    _named("No address", 55, OPEN, 1, has_addresses=False),
    _named("32 bytes, of which none is left.", 50, OPEN, 2),
    _named("Say \"hi\", it's 'me'", 50, WPA2, 2),
    _named("Four:colons\\and\\back", 45, OPEN, 2),
    _named("<b>x</b> &amp; <img src=x>", 45, WPA2, 2),
    _named(b"bad\xff\xfe\x01\nline", 40, OPEN, 2),
    _named("$(reboot); %s %n", 40, OPEN, 2),
    _named("Works", 35, WPA2, 2),
    *[_named(f"Net {number:02}", 100 - 5 * number, WPA2 if number % 4 else OPEN) for number in range(1, 15)],
]


def address(network):
    """Of a station: the fifth byte is the number of its radio, the last counts the radio's stations."""
    same = [other for other in NETWORKS if other.radio == network.radio]
    return f"02:00:00:00:{network.radio:02x}:{same.index(network):02x}"


def interface(network):
    """Name of a station's interface in the far name space."""
    last = int(address(network)[-2:], 16)
    return f"air{network.radio}" + (f"_{last}" if last else "")


def dbm(percent):
    """Of a level: the other way round than NetworkManager reckons it, which is exact for every fifth."""
    return -40 - (100 - percent) * 60 // 100


# What the access points are told.

def _station(network):
    begin = "bss" if "_" in interface(network) else "interface"
    return (f"{begin}={interface(network)}\nbssid={address(network)}\nssid2={network.name.hex()}\n"
            f"ignore_broadcast_ssid={int(network.is_hidden)}\n{SECURITY[network.security]}")


def _radio(number):
    stations = [_station(network) for network in NETWORKS if network.radio == number]
    head = (f"driver=nl80211\nhw_mode=g\nchannel={CHANNELS[number]}\n"
            f"beacon_int={BEACON_MS[number]}\n")
    return stations[0] + head + "".join(stations[1:])


def _net(network):
    return f"10.1.{NETWORKS.index(network)}"


def _addresses():
    return "".join(f"address add {_net(network)}.1/24 dev {interface(network)}\n" for network in NETWORKS)


def _dhcp(name_servers):
    ranges = "".join(f"dhcp-range={_net(network)}.10,{_net(network)}.99,1h\n"
                     for network in NETWORKS if network.has_addresses)
    return ("port=0\nno-ping\ninterface=air*\nbind-dynamic\ndhcp-authoritative\n"
            f"log-facility=/run/far/air-dhcp.log\ndhcp-option=6,{name_servers}\n"
            f"dhcp-leasefile=/run/far/air.leases\npid-file=/run/far/air-dhcp.pid\n{ranges}")


def levels(strengths, crowd=()):
    """The file that the medium reads. strengths: percent by station; the others are gone."""
    lines = [f"{where} {dbm(percent)}" for where, percent in strengths.items()]
    return "".join(f"{line}\n" for line in [*lines, *crowd])


def usual_strengths():
    return {address(network): network.level for network in NETWORKS}


def configuration(name_servers):
    """Files of the access points by their names."""
    radios = {f"air{number}.conf": _radio(number) for number in CHANNELS}
    return {**radios, "air-addresses": _addresses(), "air-dhcp.conf": _dhcp(",".join(name_servers)),
            "levels": levels(usual_strengths())}


class Air:
    """What a technician does to the networks around the panel."""

    FILE, MEDIUM = "/run/far/levels", "/run/far/medium.pid"
    ADAPTER = "02:00:00:00:00:00"

    def __init__(self, hands):
        self._far = hands.far
        self._strengths = usual_strengths()
        self._crowd = []

    def level(self, name, percent):
        """Gives all stations of a name that level; None takes them out of reach."""
        name = name.encode() if isinstance(name, str) else name
        for network in NETWORKS:
            if network.name == name:
                self._strengths[address(network)] = percent
        self._tell()

    def gone(self, name):
        """A station is switched off."""
        self.level(name, None)

    def crowd(self, total):
        """Adds strangers that can be seen and not joined, until there are so many stations; 0 takes them
        away again. wpa_supplicant holds 200 stations (bss_max_count) and forgets what is more."""
        self._crowd = [self._stranger(number) for number in range(total - len(self._heard()))]
        self._tell()

    def _heard(self):
        return {where: percent for where, percent in self._strengths.items() if percent is not None}

    @staticmethod
    def _stranger(number):
        name = f"Crowd {number:03}".encode().hex()
        kind = ("psk", "open", "eap")[number % 3]
        channel = ALL_CHANNELS[number % len(ALL_CHANNELS)]
        return f"02:00:00:01:fe:{number:02x} {-45 - number % 50} {channel} {kind} {name}"

    def pull_adapter(self):
        self._far("/usr/local/lib/far/air pull panel")

    def plug_adapter(self):
        self._far(f"/usr/local/lib/far/air plug panel {self.ADAPTER}")

    def _tell(self):
        text = levels(self._heard(), self._crowd)
        self._far(f"cat >{self.FILE}; kill -HUP $(cat {self.MEDIUM})", text.encode())
