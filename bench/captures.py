#!/usr/bin/env python3
"""Measures how fast captures and texts of messages are read, beside other programs that read them.

captures.py PROGRAM MAKECAPTURE [MEGABYTES]

Files are written to a temporary folder and read once before anything is measured, so that they are in
the page cache. Each program runs three times; the fastest run counts. A program that is not installed
is left out.
"""
import os
import resource
import shutil
import subprocess
import sys
import tempfile
import time

RUNS = 3


def run(command, runs=RUNS):
    """Seconds of the fastest run, and the greatest resident set in MB of this process' children."""
    fastest = None
    for _ in range(runs):
        begin = time.monotonic()
        done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        taken = time.monotonic() - begin
        if done.returncode not in (0, 1):
            sys.exit(f"{command[0]} ended with {done.returncode}")
        fastest = taken if fastest is None else min(fastest, taken)
    return fastest


def memory(command):
    """The greatest resident set of one run, in MB."""
    process = os.spawnvp(os.P_NOWAIT, "sh", ["sh", "-c", 'exec "$@" >/dev/null 2>&1', "sh", *command])
    _, _, usage = os.wait4(process, 0)
    return usage.ru_maxrss / 1024


def write(program, arguments, path):
    with open(path, "wb") as file:
        subprocess.run([program, *arguments], stdout=file, check=True)
    return os.path.getsize(path) / 1e6


def show(name, seconds, size, base=None):
    against = "" if base is None else f"  {seconds / base:7.1f} times the first"
    print(f"{name:34} {seconds:8.2f} s {size / seconds:8.0f} MB/s{against}", flush=True)


def measure_capture(program, path, size):
    print(f"a capture of {size:.0f} MB, calls among media packets")
    ours = run([program, "check", "-j", "1", path])
    show("sdpline check, one thread", ours, size, ours)
    show("sdpline calls, one thread", run([program, "calls", "-j", "1", path]), size, ours)
    show("cat", run(["cat", path]), size, ours)
    if shutil.which("tshark"):
        command = ["tshark", "-r", path, "-Y", "sdp", "-T", "fields", "-e", "sdp"]
        show("tshark -Y sdp -T fields -e sdp", run(command, 1), size, ours)
    if shutil.which("sngrep"):
        show("sngrep -N -I", run(["sngrep", "-N", "-I", path], 1), size, ours)
    print(f"sdpline check: at most {memory([program, 'check', path]):.0f} MB of memory")


def measure_texts(program, path, size):
    print(f"a text of {size:.0f} MB, messages with lines of a log between")
    ours = run([program, "check", path])
    show("sdpline check, one thread", ours, size, ours)
    show("cat", run(["cat", path]), size, ours)
    print(f"sdpline check: at most {memory([program, 'check', path]):.0f} MB of memory")
    both = run([program, "check", "-j", "2", path, path])
    show("sdpline check -j 2, the text twice", both, 2 * size, ours)


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    program, makecapture = sys.argv[1:3]
    megabytes = int(sys.argv[3]) if len(sys.argv) > 3 else 2000
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "bulk.pcap")
        measure_capture(program, path, write(makecapture, ["bulk", str(megabytes)], path))
        os.remove(path)
        path = os.path.join(folder, "trace.txt")
        measure_texts(program, path, write(makecapture, ["trace", str(megabytes // 5)], path))


main()
