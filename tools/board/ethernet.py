"""What the panel's cables and all its networks lead to, and what a technician does to it."""

import contextlib
import time

import dhcp
import modem

HOST = "10.99.0.1"                      # answers over every network: HTTP, and a count of bytes
NAME_SERVERS = ("10.99.0.53", "10.99.0.54")
CLOUD_DOMAIN = "cloud.test"             # its hosts have addresses of their own, every other name has HOST's
CLOUD_HOSTS = {f"mqtt.{CLOUD_DOMAIN}": "10.99.0.11", f"cert.{CLOUD_DOMAIN}": "10.99.0.12",
               f"ntp.{CLOUD_DOMAIN}": "10.99.0.13"}
PLACE = "/usr/local/lib/far"
COUNTS = "/run/far/counts"
IN_FAR = "ip netns exec far "

# By the panel's name of a link: the far end's card, its address, and the addresses that it serves.
LINKS = {"eth0": ("far0", "192.168.10.1"), "eth1": ("far1", "192.168.20.1")}
SENDERS = {"192.168.10.": "eth0", "192.168.20.": "eth1", "10.1.": "wlan0", "10.64.": "4g"}
WHO = {"eth0": "iif far0", "eth1": "iif far1", "wlan0": "from 10.1.0.0/16", "4g": "iif mobile"}

BEYOND_PLACE, GATEWAY_PLACE = 50, 40    # of the rules that let packets vanish


def _dhcp(port):
    card, address = LINKS[port]
    net = address.rsplit(".", 1)[0]
    return (f"port=0\nno-ping\ninterface={card}\nexcept-interface=lo\nbind-interfaces\ndhcp-authoritative\n"
            f"dhcp-range={net}.100,{net}.199,1h\ndhcp-option=6,{','.join(NAME_SERVERS)}\n"
            f"dhcp-leasefile=/run/far/{port}.leases\npid-file=/run/far/{port}-dhcp.pid\n"
            f"log-facility=/run/far/{port}-dhcp.log\n")


def _names():
    servers = "".join(f"listen-address={address}\n" for address in NAME_SERVERS)
    cloud = "".join(f"host-record={name},{address}\n" for name, address in CLOUD_HOSTS.items())
    return (f"no-resolv\nno-hosts\nbind-interfaces\n{servers}address=/#/{HOST}\nlocal=/{CLOUD_DOMAIN}/\n{cloud}"
            "pid-file=/run/far/names.pid\n")


def _addresses():
    on_lo = "".join(f"address add {address}/32 dev lo\n" for address in (HOST, *NAME_SERVERS, *CLOUD_HOSTS.values()))
    on_cards = "".join(f"address add {address}/24 dev {card}\n" for card, address in LINKS.values())
    return (f"{on_lo}{on_cards}address add {modem.GATEWAY}/32 peer {modem.ADDRESS} dev mobile\n"
            f"neighbor add {modem.ADDRESS} lladdr {modem.LINE_MAC.hex(':')} dev mobile nud permanent\n")


def configuration():
    """Files of the far ends by their names."""
    return {"addresses": _addresses(), "names.conf": _names(),
            **{f"{port}-dhcp.conf": _dhcp(port) for port in LINKS}}


class Transfer:
    """Data on its way from the panel to the far end, over whatever link it takes."""

    def __init__(self, hands):
        self._hands = hands

    def counts(self):
        """Bytes that have arrived until now, by link."""
        found = dict.fromkeys(SENDERS.values(), 0)
        for line in self._hands.far(f"cat {COUNTS}").splitlines():
            address, count = line.split()
            link = next(link for net, link in SENDERS.items() if address.startswith(net))
            found[link] += int(count)
        return found

    def link(self, seconds=2):
        """The link over which most has arrived within so many seconds from now; None if nothing has."""
        before = self.counts()
        time.sleep(seconds)
        gains = {link: count - before[link] for link, count in self.counts().items()}
        best = max(gains, key=gains.get)
        return best if gains[best] else None


class Far:
    """The servers at the end of the cables, the routers between them and the host beyond."""

    def __init__(self, hands):
        self._hands = hands
        self._wrong = {}

    def dhcp(self, port, how="normal"):
        """Has the port's DHCP server be normal or silent; that of eth0 also "slow" (dhcp.SLOW_S to each
        answer), or one that answers something else of dhcp.NONSENSE."""
        if port in self._wrong:
            self._wrong.pop(port).close()
        own = f"/run/far/{port}"
        self._hands.far(f"pkill -F {own}-dhcp.pid; rm -f {own}-dhcp.pid {own}.leases")
        if how in dhcp.NONSENSE:
            self._wrong[port] = dhcp.WrongServer(self._hands.wire(port), dhcp.NONSENSE[how])
        elif how == "normal":
            self._hands.far(f"{IN_FAR}dnsmasq -C {PLACE}/{port}-dhcp.conf")
        elif how != "silent":
            raise KeyError(how)

    def close(self):
        for server in self._wrong.values():
            server.close()
        self._wrong.clear()

    def gateway(self, link, answers):
        """Lets a link's gateway fall silent, as one does that is switched off behind a switch, or be back."""
        self._vanish(link, GATEWAY_PLACE, "", not answers)

    def beyond(self, link, reachable):
        """Cuts a link's gateway off from what lies beyond it, or joins it again; it answers itself."""
        self._vanish(link, BEYOND_PLACE, "to 10.99.0.0/16", not reachable)

    def _vanish(self, link, place, where, is_cut):
        place += list(WHO).index(link)
        verb = "add" if is_cut else "del"
        self._hands.far(f"ip -n far rule {verb} pref {place} {WHO[link]} {where} blackhole\n"
                        "ip -n far route flush cache")

    def claim(self, port, address):
        """Another host of the port's network has this address."""
        self._hands.far(f"ip -n far address add {address}/24 dev {LINKS[port][0]}")

    def release(self, port, address):
        self._hands.far(f"ip -n far address del {address}/24 dev {LINKS[port][0]}")

    @contextlib.contextmanager
    def transfer(self):
        """Sends from the panel to the far end as long as the block lasts."""
        unit = "transfer"
        self._hands.shell(f"systemd-run -q --unit {unit} --collect {PLACE}/far send {HOST}")
        try:
            yield Transfer(self._hands)
        finally:
            self._hands.shell(f"systemctl stop {unit}")
