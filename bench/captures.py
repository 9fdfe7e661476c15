#!/usr/bin/env python3
"""Measures how fast captures and texts of messages are read, and compares that with other programs.

captures.py PROGRAM MAKECAPTURE [MEGABYTES]

Files are written to a temporary folder just before anything is measured, so that they are in the page
cache. Each program runs three times, the slow ones once; the fastest run counts. A program
that is not installed is left out. "MB/s a core" is by the time of the processors, which other work on
the machine does not lengthen as much. The end is in failure where check needs more memory than 200 MB.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time

RUNS = 3
MOST_MEMORY = 200  # MB that check may need, whatever the size of its input


class Run:
    """The fastest of several runs: wall-clock seconds, CPU seconds, and memory in MB."""

    def __init__(self, command, runs=RUNS):
        self.seconds = self.processors = self.memory = None
        for _ in range(runs):
            begin = time.monotonic()
            script = 'exec "$@" >/dev/null 2>&1'
            process = os.spawnvp(os.P_NOWAIT, "sh", ["sh", "-c", script, "sh", *command])
            _, status, usage = os.wait4(process, 0)
            seconds = time.monotonic() - begin
            if os.waitstatus_to_exitcode(status) not in (0, 1):
                sys.exit(f"{command[0]} ended with {os.waitstatus_to_exitcode(status)}")
            if self.seconds is None or seconds < self.seconds:
                self.seconds = seconds
            processors = usage.ru_utime + usage.ru_stime
            if self.processors is None or processors < self.processors:
                self.processors = processors
            self.memory = max(self.memory or 0, usage.ru_maxrss / 1024)


def write(program, arguments, path):
    with open(path, "wb") as file:
        subprocess.run([program, *arguments], stdout=file, check=True)
    return os.path.getsize(path) / 1e6


def show(name, run, size, base=None):
    against = "" if base is None else f"  {run.seconds / base.seconds:7.2f} times the first"
    print(f"{name:34} {run.seconds:8.2f} s {size / run.seconds:8.0f} MB/s"
          f" {size / max(run.processors, 0.01):8.0f} MB/s a core{against}", flush=True)


def show_memory(run):
    print(f"sdpline check: at most {run.memory:.0f} MB of memory", flush=True)
    if run.memory > MOST_MEMORY:
        sys.exit(f"more than {MOST_MEMORY} MB")


def measure_capture(program, path, size):
    print(f"a capture of {size:.0f} MB, calls among media packets")
    ours = Run([program, "check", "-j", "1", path])
    show("sdpline check, one thread", ours, size, ours)
    show("sdpline calls, one thread", Run([program, "calls", "-j", "1", path]), size, ours)
    show("cat", Run(["cat", path]), size, ours)
    if shutil.which("tshark"):
        command = ["tshark", "-r", path, "-Y", "sdp", "-T", "fields", "-e", "sdp"]
        show("tshark -Y sdp -T fields -e sdp", Run(command, 1), size, ours)
    if shutil.which("sngrep"):
        # Without -l it stops at a number of calls that a large capture passes.
        command = ["sngrep", "-N", "-I", path, "-l", "10000000"]
        show("sngrep -N -I", Run(command, 1), size, ours)
    show_memory(ours)
    measure_two("the capture", program, path, size)


def measure_two(what, program, path, size):
    one = Run([program, "check", "-j", "1", path, path])
    show(f"sdpline check -j 1, {what} twice", one, 2 * size, one)
    two = Run([program, "check", "-j", "2", path, path])
    show(f"sdpline check -j 2, {what} twice", two, 2 * size, one)
    show_memory(two)


def measure_texts(program, path, size):
    print(f"a text of {size:.0f} MB, messages with lines of a log between")
    ours = Run([program, "check", path])
    show("sdpline check, one thread", ours, size, ours)
    show("cat", Run(["cat", path]), size, ours)
    show_memory(ours)
    measure_two("the text", program, path, size)


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    program, makecapture = sys.argv[1:3]
    megabytes = int(sys.argv[3]) if len(sys.argv) > 3 else 2000
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "bulk.pcap")
        measure_capture(program, path, write(makecapture, ["bulk", str(megabytes)], path))
        os.remove(path)
        path = os.path.join(folder, "trace.txt")
        measure_texts(program, path, write(makecapture, ["trace", str(megabytes // 5)], path))


main()
