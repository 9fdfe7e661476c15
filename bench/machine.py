"""The machine and the software that something was measured with; no names of hosts or users."""

import datetime
import re
import subprocess

FACTS = [
    "Model name",
    "CPU family",
    "Model",
    "CPU(s)",
    "Thread(s) per core",
    "Hypervisor vendor",
    "L1d cache",
    "L1i cache",
    "L2 cache",
    "L3 cache",
]
PACKAGES = [
    "libosip2-dev",
    "libgstreamer-plugins-base1.0-dev",
    "libsofia-sip-ua-dev",
    "libre-dev",
    "libbenchmark-dev",
    "libc6",
]


def output_of(*command):
    try:
        return subprocess.run(
            command,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
            check=False,
            env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"},
        ).stdout.strip()
    except OSError:
        return ""


def system():
    try:
        with open("/etc/os-release", encoding="utf-8") as file:
            found = re.search(r'^PRETTY_NAME="?([^"\n]*)', file.read(), re.M)
    except OSError:
        found = None
    kernel = ".".join(output_of("uname", "-r").split("-")[0].split(".")[:2])
    return f"{found.group(1) if found else 'unknown'}, Linux {kernel}"


def facts():
    processor = dict(
        re.split(r":\s+", line.strip(), maxsplit=1)
        for line in output_of("lscpu").splitlines()
        if re.search(r":\s", line)
    )
    yield from ((name, processor[name]) for name in FACTS if name in processor)
    yield "System", system()
    yield "Compiler", output_of("c++", "--version").splitlines()[0]
    for package in PACKAGES:
        version = output_of("dpkg-query", "-W", "-f=${Version}", package)
        if version:
            yield package, version
    yield "Date", datetime.date.today().isoformat()


def markdown():
    rows = "\n".join(f"| {name} | {value} |" for name, value in facts())
    return f"| machine | |\n| --- | --- |\n{rows}\n"
