#!/usr/bin/python3
"""A certificate service for tests (RFC 7030: simpleenroll, simplereenroll, cacerts), on openssl(1) and
nothing else. Its folder holds the authority (ca.pem, ca.key) and the certificate that is named (with key),
"users" with a line NAME:PASSWORD for each panel, and what stories change while it runs: "mood", one of
MOODS, and "life", seconds that a certificate lasts. Each answer is a line of "log"."""

import argparse
import base64
import http.server
import pathlib
import ssl
import subprocess
import time

MOODS = ("normal", "refuses", "pending", "slow", "closes", "nonsense", "empty", "foreign", "huge", "broken")
SLOW_S = 30
LONG_LIFE_S = 365 * 86400

CA_CONFIGURATION = """[ca]
default_ca=panels
[panels]
database={0}/index
serial={0}/serial
new_certs_dir={0}
certificate={0}/ca.pem
private_key={0}/ca.key
default_md=sha256
policy=any
unique_subject=no
x509_extensions=panel
[any]
commonName=supplied
[panel]
basicConstraints=CA:false
keyUsage=digitalSignature
extendedKeyUsage=clientAuth
"""


def openssl(*arguments, data=b""):
    return subprocess.run(["openssl", *map(str, arguments)], input=data, check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE).stdout


class Authority:
    """What issues certificates, and what it has been told to do instead."""

    def __init__(self, folder, own):
        self.folder = folder
        self.own = own
        self._configuration = folder / "ca.conf"
        self._configuration.write_text(CA_CONFIGURATION.format(folder))
        for name, text in (("index", ""), ("serial", "1000\n")):
            if not (folder / name).exists():
                (folder / name).write_text(text)

    def told(self, name, otherwise):
        file = self.folder / name
        return file.read_text().strip() if file.exists() else otherwise

    def knows(self, header):
        """Whether an Authorization header is one of its users'."""
        users = self.told("users", "").splitlines()
        return header in ("Basic " + base64.b64encode(user.encode()).decode() for user in users)

    def issue(self, request):
        """Certificate, in PEM, for a request in base64."""
        place = self.folder / f"request-{time.monotonic_ns()}"
        place.write_bytes(openssl("req", "-inform", "DER", "-verify", data=base64.b64decode(request)))
        end = time.gmtime(time.time() + int(self.told("life", LONG_LIFE_S)))
        start = time.gmtime(time.time() - 60)
        try:
            return openssl("ca", "-batch", "-notext", "-config", self._configuration, "-in", place,
                           "-startdate", time.strftime("%Y%m%d%H%M%SZ", start),
                           "-enddate", time.strftime("%Y%m%d%H%M%SZ", end))
        finally:
            place.unlink()

    def bag(self, *certificates):
        """Certificates in a PKCS #7 without a signature, DER in base64."""
        file = self.folder / f"bag-{time.monotonic_ns()}"
        file.write_bytes(b"".join(certificates))
        try:
            return base64.encodebytes(openssl("crl2pkcs7", "-nocrl", "-certfile", file, "-outform", "DER"))
        finally:
            file.unlink()


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    authority = None

    def do_GET(self):
        if self.path != "/.well-known/est/cacerts":
            return self._answer(404)
        return self._answer(200, self.authority.bag((self.authority.folder / "ca.pem").read_bytes()))

    def do_POST(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        mood = self.authority.told("mood", "normal")
        proven = self.path == "/.well-known/est/simplereenroll" and self.connection.getpeercert()
        if not self.path.startswith("/.well-known/est/simple"):
            return self._answer(404)
        if mood == "refuses" or not (proven or self.authority.knows(self.headers.get("Authorization"))):
            return self._answer(401, headers={"WWW-Authenticate": 'Basic realm="panels"'})
        return self._grant(mood, body)

    def _grant(self, mood, request):
        foreign = self.authority.own
        if mood == "pending":
            return self._answer(202, headers={"Retry-After": "5"})
        if mood == "broken":
            return self._answer(500)
        if mood == "closes":
            self.close_connection = True
            return None
        if mood == "slow":
            time.sleep(SLOW_S)
        bodies = {"nonsense": lambda: b"%%%%", "empty": lambda: b"", "huge": lambda: b"A" * 10_000_000,
                  "foreign": lambda: self.authority.bag(foreign)}
        granted = bodies.get(mood, lambda: self.authority.bag(self.authority.issue(request)))
        return self._answer(200, granted())

    def _answer(self, status, body=b"", headers=None):
        with open(self.authority.folder / "log", "a") as log:
            log.write(f"{time.time():.1f} {self.client_address[0]} {self.path} {status}\n")
        self.send_response(status)
        for name, value in (headers or {}).items():
            self.send_header(name, value)
        if body:
            self.send_header("Content-Type", "application/pkcs7-mime; smime-type=certs-only")
            self.send_header("Content-Transfer-Encoding", "base64")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        """The log is its own."""


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--address", default="127.0.0.1")
    parser.add_argument("--port", type=int, default=8443)
    parser.add_argument("--certificate", default="server.pem")
    parser.add_argument("folder", type=pathlib.Path)
    options = parser.parse_args()
    certificate = options.folder / options.certificate
    Handler.authority = Authority(options.folder.resolve(), certificate.read_bytes())
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.minimum_version = ssl.TLSVersion.TLSv1_2
    context.load_cert_chain(certificate)
    context.load_verify_locations(options.folder / "ca.pem")
    context.verify_mode = ssl.CERT_OPTIONAL
    server = http.server.ThreadingHTTPServer((options.address, options.port), Handler)
    server.daemon_threads = True
    # In the connection's own thread: who is silent in the handshake holds nobody up.
    server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
    server.serve_forever()


if __name__ == "__main__":
    main()
