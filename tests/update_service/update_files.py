"""Projects as no maker's tool makes them: update_files.py FOLDER"""

import argparse
import importlib.machinery
import importlib.util
import io
import pathlib
import struct
import sys
import tarfile

TOOL = str(pathlib.Path(__file__).resolve().parents[2] / "tools" / "make-update-file")
loader = importlib.machinery.SourceFileLoader("make_update_file", TOOL)
tool = importlib.util.module_from_spec(importlib.util.spec_from_loader("make_update_file", loader))
sys.dont_write_bytecode = True
loader.exec_module(tool)

BIG = bytes(range(256)) * 12000     # three digests


def entry(name, **values):
    made = tarfile.TarInfo(name)
    for key, value in values.items():
        setattr(made, key, value)
    return made


def archive(*entries, mode="w"):
    out = io.BytesIO()
    with tarfile.open(fileobj=out, mode=mode) as tar:
        for made, data in entries:
            made.size = len(data)
            tar.addfile(made, io.BytesIO(data))
    return out.getvalue()


def files(*names):
    return archive(*((entry(name), b"x") for name in names))


def main():
    folder = pathlib.Path(sys.argv[1])
    ours, strangers = folder / "keys", folder / "strangers"
    for keys in (ours, strangers):
        tool.keys(argparse.Namespace(folder=keys, name="Test"))

    def project(name, content, entries=1, unpacked=1, keys=ours, kind="project", change=lambda data: data, version=5):
        args = argparse.Namespace(model=b"KV070T", version=version, keys=keys)
        (folder / f"{name}.tmt3").write_bytes(change(tool.sealed(kind, args, content, entries, unpacked)))

    tree = archive((entry("./cloud", type=tarfile.DIRTYPE), b""), (entry("cloud/cloud.xml"), b"<cloud/>"),
                   (entry("big"), BIG), (entry("LangugeSet.cof"), b"theirs"), (entry("空"), b"x"))
    for packing in ("gz", "xz"):
        args = (entry("a"), b"x")
        project(packing, archive(args, mode=f"w:{packing}"))
    project("good", tree, 5, len(BIG) + 15)
    project("unsigned", tree, 5, len(BIG) + 15, keys=None)
    project("newer", files("a"), version=101)
    project("stranger", files("a"), keys=strangers)
    project("logo", files("a"), kind="logo")
    project("tampered", tree, 5, len(BIG) + 15, change=lambda data: data[:-2000] + b"!" + data[-1999:])
    project("other version", files("a"), change=lambda data: data[:8] + b"\4" + data[9:])
    project("other signature", files("a"), change=lambda data: data.replace(b"Signer", b"Singer"))
    project("cut", tree, 5, len(BIG) + 15, change=lambda data: data[:-1])
    project("longer", tree, 5, len(BIG) + 15, change=lambda data: data + b"x")
    project("cut, told so", tree, 5, len(BIG) + 15,
            change=lambda data: data[:44] + struct.pack("<I", len(data) - 1048) + data[48:-1000])
    project("no archive", b"x" * 5000)
    project("climbs", files("a/../../b"))
    project("absolute", files("/etc/passwd"))
    project("before its folder", files("a/b"))
    project("twice", files("a", "a"), 2, 2)
    project("long name", files("n" * 300))
    for name, kind in {"link": tarfile.SYMTYPE, "hard link": tarfile.LNKTYPE, "device": tarfile.CHRTYPE,
                       "pipe": tarfile.FIFOTYPE}.items():
        project(name, archive((entry("a", type=kind, linkname="b"), b"")), unpacked=0)
    project("more files", files("a", "b"), 1, 2)
    project("fewer files", files("a"), 2, 1)
    project("bomb", archive((entry("a"), bytes(50_000_000)), mode="w:gz"), 1, 1000)
    project("smaller", files("a"), 1, 1000)
    (folder / "header.tmt3").write_bytes(tool.HEADER.pack(tool.MAGIC, 5, b"KV070T", 4) + b"data")
    (folder / "empty.tmt3").write_bytes(b"")
    (folder / "noise.tmt3").write_bytes(b"\xff" * 300)


if __name__ == "__main__":
    main()
