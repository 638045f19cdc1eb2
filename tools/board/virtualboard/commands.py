"""Runs programs of the host; what they print is shown only if they fail."""

import os
import subprocess

PATH = os.environ.get("PATH", "") + ":/usr/sbin:/sbin"   # a plain user's may lack mke2fs and depmod


class CommandFailed(Exception):
    """A program ended with an error; the text has its last lines."""


def run(arguments, **options):
    """Runs one program, an argument list as it is, and returns its output as bytes."""
    arguments = [a if isinstance(a, bytes) else str(a) for a in arguments]
    env = {**os.environ, "PATH": PATH, "LC_ALL": "C.UTF-8", **options.pop("env", {})}
    done = subprocess.run(arguments, env=env, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, check=False, **options)
    if done.returncode:
        said = (done.stdout[-2000:] + done.stderr[-4000:]).decode(errors="replace")
        raise CommandFailed(f"{arguments[0]} ended with {done.returncode}:\n{said}")
    return done.stdout
