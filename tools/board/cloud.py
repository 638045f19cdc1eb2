"""The cloud that a panel is bound to, where its networks lead, and what becomes of it in a story."""

import hashlib
import io
import json
import pathlib
import shlex
import shutil
import tarfile
import tempfile
import time

import authority
import ethernet

HERE = pathlib.Path(__file__).resolve().parent
PLACE = "/run/cloud"
PROJECT = "/mnt/data/prj/cloud"
SERVER, CERTIFICATES, TIME = (f"{service}.{ethernet.CLOUD_DOMAIN}" for service in ("mqtt", "cert", "ntp"))
PORT, CERTIFICATE_PORT, TIME_PORT = 8883, 8443, 123
ELSEWHERE = "elsewhere.test"
PYTHON = "/usr/bin/python3 -IS"         # what it need not look for costs an emulated board a second

# Of whose machine-id(5) the panel's name for remote services is made; what its program makes a password of
# where the processor's identifier is root's alone to read.
DEVICE_ID_OF = "5ad12c9e74b34f068d61e03b972fc418"
UNKNOWN_PROCESSOR = "3141592653"

CLOUD_XML = f"""<?xml version="1.0" encoding="UTF-8"?>
<cloud version="1">
  <region>Europe</region>
  <server url="{SERVER}" port="{PORT}"/>
  <certificate url="{CERTIFICATES}" port="{CERTIFICATE_PORT}"/>
  <time url="{TIME}"/>
  <resource file="root.pem"/>
</cloud>
"""

# An access list in a file is about messages; only the plugin refuses a subscription.
MQTT = f"""listener {PORT} {ethernet.CLOUD_HOSTS[SERVER]}
cafile {PLACE}/ca.pem
certfile {PLACE}/{{certificate}}.pem
keyfile {PLACE}/{{certificate}}.pem
require_certificate true
use_identity_as_username true
allow_anonymous false
persistence false
log_type all
user root
plugin /usr/lib/x86_64-linux-gnu/mosquitto_dynamic_security.so
plugin_opt_config_file {PLACE}/rules.json
"""
CLOSES = f"systemd-socket-activate --accept --inetd -l {ethernet.CLOUD_HOSTS[SERVER]}:{PORT} /bin/true"
KINDS = ("publishClientSend", "publishClientReceive", "subscribe", "unsubscribe")


def _allow(kind, topic):
    return {"acltype": kind, "topic": topic, "priority": 0, "allow": True}


def rules(device, may_subscribe=True):
    """Who may do what: the panel has its two topics, the back end all, by the names of their certificates."""
    request, answer = f"kvhmi/CQ/{device}", f"kvhmi/CP/{device}"
    panel = [_allow("publishClientSend", answer), _allow("publishClientReceive", request)]
    panel += [_allow("subscribeLiteral", request)] if may_subscribe else []
    backend = [_allow(kind, "kvhmi/#") for kind in ("publishClientSend", "publishClientReceive",
                                                    "subscribePattern", "unsubscribePattern")]
    return json.dumps({
        "defaultACLAccess": dict.fromkeys(KINDS, False),
        "roles": [{"rolename": "panel", "acls": panel}, {"rolename": "backend", "acls": backend}],
        "clients": [{"username": device, "roles": [{"rolename": "panel"}]},
                    {"username": "backend", "roles": [{"rolename": "backend"}]}], "groups": []})


def _tar(folder):
    packed = io.BytesIO()
    with tarfile.open(fileobj=packed, mode="w") as tar:
        tar.add(folder, arcname=".")
    return packed.getvalue()


class Cloud:
    """On a board whose far ends are up. Its certificates begin when it is made: an hour earlier none is
    valid."""

    def __init__(self, hands):
        self._hands = hands
        self.device = hands.shell(f"systemd-id128 machine-id --app-specific={DEVICE_ID_OF}").strip()
        self._put_in_place()
        self.time()
        self._run("cloud-ntp", f"{PYTHON} {PLACE}/ntp.py --address {ethernet.CLOUD_HOSTS[TIME]} {PLACE}")
        self.server()
        self.certificate_server()

    def _put_in_place(self):
        salt = hashlib.md5(UNKNOWN_PROCESSOR.encode()).hexdigest()
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            authority.make_authority(folder)
            shutil.copytree(folder, folder / "expired")
            authority.make_authority(folder / "strange", "Somebody else's")
            for server in (SERVER, CERTIFICATES):
                authority.certify_server(folder, server)
                authority.certify_server(folder / "strange", server)
            authority.certify_server(folder / "expired", SERVER, days=0)
            authority.certify_server(folder, ELSEWHERE)
            authority.certify_client(folder, "backend")
            (folder / "users").write_text(f"{self.device}:{salt}\n")
            for script in ("est.py", "ntp.py"):
                (folder / script).write_bytes((HERE / script).read_bytes())
            self._root = (folder / "ca.pem").read_bytes()
            self._hands.far(f"rm -rf {PLACE}; mkdir -m 700 {PLACE}; tar -xf - -C {PLACE}",
                            stdin=_tar(folder))

    # The panel's side.

    def let_in(self):
        """The panel's maker lets it be reached; its program begins anew, as it reads that once."""
        self._hands.shell("sed -i 's/^#remote=.*/remote=yes/' /etc/sysset/panel.conf; systemctl restart sysset")

    def bind(self):
        """The project that binds the panel to this cloud. The program finds it within two seconds."""
        self._hands.shell(f"install -d -o panel -g panel {PROJECT}; cat >{PROJECT}/root.pem", self._root)
        self._hands.shell(f"cd {PROJECT}; cat >new && mv new cloud.xml", CLOUD_XML.encode())

    # What becomes of its servers.

    def server(self, how="normal"):
        """Starts the MQTT server anew: "normal"; "down"; "closes" each connection at once; "refuses" the
        subscription; its certificate has "another name", is "expired" or of a "strange" authority."""
        self._stop("cloud-mqtt")
        if how == "down":
            return
        if how == "closes":
            self._serve("cloud-mqtt", CLOSES, PORT)
            return
        certificate = {"another name": ELSEWHERE, "expired": f"expired/{SERVER}",
                       "strange": f"strange/{SERVER}"}.get(how, SERVER)
        self._write(f"{PLACE}/rules.json", rules(self.device, how != "refuses"))
        self._write(f"{PLACE}/mqtt.conf", MQTT.format(certificate=certificate))
        self._serve("cloud-mqtt", f"/usr/sbin/mosquitto -c {PLACE}/mqtt.conf", PORT)

    def certificate_server(self, is_strange=False):
        """Starts the certificate service anew, or one of another authority in its place."""
        self._stop("cloud-est")
        certificate = f"{'strange/' if is_strange else ''}{CERTIFICATES}.pem"
        self._serve("cloud-est", f"{PYTHON} {PLACE}/est.py --address {ethernet.CLOUD_HOSTS[CERTIFICATES]} "
                    f"--port {CERTIFICATE_PORT} --certificate {certificate} {PLACE}", CERTIFICATE_PORT)

    def certificates(self, mood="normal", life_s=None):
        """What the certificate service does with requests (est.MOODS), and how long what it issues lasts."""
        self._write(f"{PLACE}/mood", mood)
        if life_s is not None:
            self._write(f"{PLACE}/life", str(life_s))

    def time(self, wrong_s=0, silent=False):
        """Has the time server tell the time, by so much wrong, or nothing."""
        self._hands.far(f"{'touch' if silent else 'rm -f'} {PLACE}/silent; "
                        f"echo {time.time() + wrong_s} $(cut -d' ' -f1 /proc/uptime) >{PLACE}/clock")

    # What is seen there.

    def request(self, text, patience_s=10):
        """The panel's answer to a message on its topic."""
        return self._hands.far(
            f"{ethernet.IN_FAR}mosquitto_rr {self.backend()} -q 1 -W {patience_s} "
            f"-t kvhmi/CQ/{self.device} -e kvhmi/CP/{self.device} -m {shlex.quote(text)}",
            timeout=patience_s + 20).strip()

    @staticmethod
    def backend():
        """How a tool of mosquitto's is the back end, in the far name space."""
        return (f"-h {ethernet.CLOUD_HOSTS[SERVER]} -p {PORT} --cafile {PLACE}/ca.pem --insecure "
                f"--cert {PLACE}/backend.pem --key {PLACE}/backend.pem")

    def granted(self):
        """What the certificate service has done until now: the last words of each path."""
        log = self._hands.far(f"grep -s '200$' {PLACE}/log || true")
        return [line.split()[2].rsplit("/", 1)[1] for line in log.splitlines()]

    def visitors(self):
        """Addresses from which somebody is connected with the MQTT server."""
        told = self._hands.far(f"{ethernet.IN_FAR}ss -Htn state established sport = :{PORT}")
        return {line.split()[3].rsplit(":", 1)[0] for line in told.splitlines()}

    def _run(self, unit, command):
        self._hands.far(f"systemd-run -q --unit {unit} --collect {ethernet.IN_FAR}{command}")

    def _serve(self, unit, command, port):
        """Until it listens."""
        self._run(unit, command)
        self._hands.far(f"until {ethernet.IN_FAR}ss -Hltn sport = :{port} | grep -q .; do sleep 0.1; done")

    def _stop(self, unit):
        self._hands.far(f"systemctl stop {unit} 2>/dev/null || true")

    def _write(self, path, text):
        self._hands.far(f"cat > {path}", stdin=text.encode())
