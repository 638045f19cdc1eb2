"""The Ethernet page as an operator sees it."""

from lab import wait_for

ETHERNET = 0    # tab
GROUPS = ["Ip", "Mask", "GateWay", "Dns1_", "Dns2_"]
NET = "192.168.10."     # of the far end's server
RECORD_S = 10   # from what happens on the board to what the page shows of it
LEASE_S = 40    # the far end's server answers, and NetworkManager may just have begun to wait longer


def open_page(panel):
    panel.touch("btn_Net")
    panel.touch("tab_Net", ETHERNET)
    wait_for(lambda: panel.widget("wdg_Eth"), "the page")


def page(panel):
    """Texts of the page by their widgets' names; those that are seen."""
    return {w.name: w.text for w in panel.widget("wdg_Eth").walk() if w.visible and w.text is not None}


def fields(panel):
    """Address, mask, gateway and both servers as they are seen, or the hint in their place."""
    texts = page(panel)
    if "lab_replacwidgetEth" in texts:
        return texts["lab_replacwidgetEth"]
    return [".".join(texts[f"line_{group}{i}"] for i in range(1, 5)).strip(".") for group in GROUPS]


def wait_fields(panel, wanted, timeout=RECORD_S):
    return wait_for(lambda: (seen := fields(panel)) == wanted and seen, f"fields {wanted}", timeout)


def wait_lease(panel, timeout=LEASE_S):
    """The fields, once they show what the far end's server has given."""
    def leased():
        seen = fields(panel)
        rest = ["255.255.255.0", f"{NET}1", "10.99.0.53", "10.99.0.54"]
        return seen[0].startswith(f"{NET}1") and seen[1:] == rest and seen
    return wait_for(leased, "a lease", timeout)
