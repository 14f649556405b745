"""What has to be known about a run to compare its figures with others."""

import datetime
import platform
import re
import subprocess
from pathlib import Path

PEER_PACKAGES = ["libcgal-dev", "libopenmesh-dev", "libvtk9-dev", "libopen3d-dev"]


def output_of(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=False).stdout.strip()
    except OSError:
        return ""


def processor():
    try:
        match = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    except OSError:
        match = None
    return match.group(1) if match else platform.processor()


def memory_gb():
    match = re.search(r"MemTotal: *(\d+)", Path("/proc/meminfo").read_text())
    return f"{int(match.group(1)) / 2**20:.0f} GB" if match else "unknown"


def describe(context, rows):
    """What has to be known to compare the figures: pairs of a name and a text."""
    facts = {
        "date": context.get("date", "")[:10] or str(datetime.date.today()),
        "revision": output_of("git", "describe", "--always", "--dirty"),
        "processor": f'{processor()}, {context.get("threads", "?")} threads',
        "memory": memory_gb(),
        "system": f'{platform.system()} {platform.release()}, {platform.libc_ver()[0]} '
                  f'{platform.libc_ver()[1]}',
        "compiler": f'{context.get("compiler", "?")}, release build',
        "TBB": context.get("tbb", "?"),
        "copy bandwidth": f'{context.get("copy_GB_per_s", "?")} GB/s read and written',
        "inputs": "made from the seeds fixed in bench/support",
    }
    if any(row.beside for row in rows):
        versions = output_of("dpkg-query", "-W", "-f", "${Package} ${Version}  ", *PEER_PACKAGES)
        facts["other libraries"] = re.sub("  +", ", ", versions)
    return facts


def facts_text(facts):
    return "\n".join(f"- {name}: {text}" for name, text in facts.items() if text)
