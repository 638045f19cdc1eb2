#!/usr/bin/python3
"""An authority for tests, and certificates of it, by openssl(1): authority.py FOLDER [--server NAME]...
[--client NAME]... Makes ca.pem and ca.key in the folder where they are missing, and NAME.pem, certificate
and key in one, for each name; a server's address or host name is its name."""

import argparse
import pathlib
import subprocess

DAYS = 3650
KEY = ["-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes"]


def openssl(*arguments, data=None):
    return subprocess.run(["openssl", *map(str, arguments)], input=data, check=True, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL).stdout


def make_authority(folder, name="Cloud of the tests"):
    folder.mkdir(parents=True, exist_ok=True)
    if not (folder / "ca.pem").exists():
        openssl("req", "-x509", *KEY, "-keyout", folder / "ca.key", "-out", folder / "ca.pem", "-days", DAYS,
                "-subj", f"/CN={name}")


def certify(folder, name, extension, days=DAYS):
    """NAME.pem."""
    key, rules = folder / f"{name}.key", folder / f"{name}.rules"
    request = openssl("req", "-new", *KEY, "-keyout", key, "-subj", f"/CN={name}")
    rules.write_text(extension)
    certificate = openssl("x509", "-req", "-CA", folder / "ca.pem", "-CAkey", folder / "ca.key",
                          "-set_serial", int.from_bytes(name.encode(), "big") % 2**63, "-days", days,
                          "-extfile", rules, data=request)
    (folder / f"{name}.pem").write_bytes(certificate + key.read_bytes())
    key.unlink()
    rules.unlink()


def certify_server(folder, name, days=DAYS):
    kind = "IP" if name.replace(".", "").isdigit() else "DNS"
    certify(folder, name, f"subjectAltName={kind}:{name}\nextendedKeyUsage=serverAuth\n", days)


def certify_client(folder, name, days=DAYS):
    certify(folder, name, "extendedKeyUsage=clientAuth\n", days)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--server", action="append", default=[])
    parser.add_argument("--client", action="append", default=[])
    options = parser.parse_args()
    make_authority(options.folder)
    for name in options.server:
        certify_server(options.folder, name)
    for name in options.client:
        certify_client(options.folder, name)


if __name__ == "__main__":
    main()
