#!/usr/bin/env python3
"""Calls by sipp against the user agents of examples/calls; `./dev calls` runs it.

    run.py BUILD                      every scenario over UDP and TCP, then our client
    run.py BUILD --load RATE SECONDS  one scenario at a steady rate, and what a call costs
    run.py BUILD --soak MINUTES [--under COMMAND]
                                      every scenario again and again, one memory checker at a time
"""

import argparse
import contextlib
import csv
import os
import pathlib
import re
import selectors
import signal
import subprocess
import sys
import tempfile
import time

from scenarios import SCENARIOS, Scenario, body, AUDIO

# What the agent in C can do: it has no UPDATE, PRACK or CANCEL, and no offers of its own.
IN_C = ("compact", "longest", "nothing", "refused", "reinvite")
FIXED = ("v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=-\r\nc=IN IP4 127.0.0.1\r\nt=0 0\r\n"
         "m=audio 20002 RTP/AVP 8 0 96\r\na=rtpmap:96 telephone-event/8000\r\n"
         "a=fmtp:96 0-15\r\na=ptime:20\r\n")
READY_SECONDS = 60
END_SECONDS = 60


class Failed(Exception):
    """What did not hold, for people."""


class Agent:
    """A server of ours: started, heard to listen, and ended by SIGTERM."""

    def __init__(self, command, log):
        self.log = log
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=log, text=True)
        self.line = self._first_line()

    def _first_line(self):
        with selectors.DefaultSelector() as selector:
            selector.register(self.process.stdout, selectors.EVENT_READ)
            if not selector.select(READY_SECONDS):
                raise Failed("the server did not say that it listens")
        return self.process.stdout.readline()

    @property
    def listens(self):
        return self.line.startswith("listening on ")

    def cpu_seconds(self):
        fields = pathlib.Path(f"/proc/{self.process.pid}/stat").read_text().rsplit(")")[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def resident_kib(self):
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return int(re.search(r"VmRSS:\s+(\d+)", status)[1])

    def end(self, calls):
        """Its counters: every call that came was closed, and nothing of it is left."""
        self.process.send_signal(signal.SIGTERM)
        last = self.process.communicate(timeout=END_SECONDS)[0].strip()
        print(f"  {last}")
        if self.process.returncode != 0:
            raise Failed(f"the server ended with {self.process.returncode}")
        if f"invites {calls} closed {calls} live 0" not in last:
            raise Failed(f"the server counted other calls than the {calls} that were made")

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()


@contextlib.contextmanager
def listening(command, work, name):
    """(agent, port): the command with the first port from 5070 on that is free at its end."""
    with open(work / f"{name}.log", "w", encoding="utf-8") as log:
        for port in range(5070, 5170):
            agent = Agent([part.replace("PORT", str(port)) for part in command], log)
            if agent.listens:
                break
            agent.kill()
        else:
            raise Failed(f"{command[0]} listens on no port: see {log.name}")
        try:
            yield agent, port
        finally:
            agent.kill()


def sipp(work, name, port, calls, rate, *options, address="127.0.0.1", scenario=None, seconds=60):
    """Starts sipp on a scenario; `finish` waits for it."""
    what = ["-sf", str(work / f"{scenario}.xml")] if scenario else ["-sn", "uac"]
    command = ["sipp", f"[{address}]:{port}" if ":" in address else f"{address}:{port}", *what,
               "-i", address, "-m", str(calls), "-r", str(rate), "-l", "200",
               "-timeout", str(seconds), "-timeout_error", "-nostdin", "-trace_err",
               "-error_file", str(work / f"{name}.errors"), *options]
    with open(work / f"{name}.screen", "w", encoding="utf-8") as screen:
        return name, seconds, subprocess.Popen(command, stdout=screen, stderr=screen, cwd=work)


def finish(work, started):
    name, seconds, process = started
    try:
        status = process.wait(timeout=seconds + 20)
    except subprocess.TimeoutExpired as late:
        process.kill()
        raise Failed(f"{name}: sipp did not end") from late
    if status != 0:
        errors = work / f"{name}.errors"
        tail = errors.read_text(errors="replace")[-2000:] if errors.exists() else ""
        raise Failed(f"{name}: sipp ended with {status}: calls failed\n{tail}")


def write_scenarios(work):
    for make in SCENARIOS:
        scenario = make()
        (work / f"{scenario.name}.xml").write_text(scenario.xml(), encoding="utf-8")
    plain = Scenario("plain")
    plain.invites(body(AUDIO))
    plain.answered(("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"))
    plain.hangs_up()
    (work / "plain.xml").write_text(plain.xml(), encoding="utf-8")
    return [make.__name__ for make in SCENARIOS]


def all_scenarios(work, port, calls, rate, address="127.0.0.1", names=None, seconds=60):
    """Every scenario over UDP and TCP, both at once. Returns the number of calls."""
    made = 0
    for name in [None, *(names or [make.__name__ for make in SCENARIOS])]:
        label = name or "uac"
        both = [sipp(work, f"{label}-{transport}", port, calls, rate, "-t", transport,
                     address=address, scenario=name, seconds=seconds)
                for transport in ("u1", "t1")]
        for started in both:
            finish(work, started)
        made += 2 * calls
        print(f"  {label}: {2 * calls} calls")
    return made


def client(useragent, uri, address):
    """Our client: speech, hold, resume, fax, speech, BYE."""
    done = subprocess.run([useragent, "call", uri, address], capture_output=True, text=True,
                          timeout=END_SECONDS, check=False)
    print(f"  {uri}: {done.stdout.strip()}")
    if done.returncode != 0:
        raise Failed(f"our client ended with {done.returncode}: {done.stderr}")


def notices_wrong_answers(useragent, work):
    """A server that always sends one answer must fail the hold scenario: the checks are real."""
    with listening([useragent, "listen", "PORT", "127.0.0.1", FIXED], work, "fixed") as (_, port):
        started = sipp(work, "fixed-hold", port, 1, 1, scenario="hold", seconds=10)
        try:
            finish(work, started)
        except Failed:
            print("  a wrong answer fails its call")
            return
    raise Failed("sipp took a wrong answer for the right one")


def run(build, work, calls):
    useragent = str(build / "useragent")
    write_scenarios(work)
    begun = time.monotonic()
    with listening([useragent, "listen", "PORT"], work, "ipv4") as (server, port):
        made = all_scenarios(work, port, calls, 200)
        client(useragent, f"sip:127.0.0.1:{port}", "127.0.0.1")
        client(useragent, f"sip:127.0.0.1:{port};transport=tcp", "127.0.0.1")
        server.end(made + 2)
        total = made + 2
    with listening([useragent, "listen", "PORT", "::1"], work, "ipv6") as (server, port):
        made = all_scenarios(work, port, 20, 200, "::1", ["hold"])
        client(useragent, f"sip:[::1]:{port}", "::1")
        server.end(made + 1)
        total += made + 1
    with listening([str(build / "answer_calls"), "PORT"], work, "c") as (server, port):
        for name in IN_C:
            finish(work, sipp(work, f"c-{name}", port, 20, 200, scenario=name))
        server.end(20 * len(IN_C))
        total += 20 * len(IN_C)
    notices_wrong_answers(useragent, work)
    print(f"{total} calls, 0 failed, in {time.monotonic() - begun:.0f} s")


def load_once(command, work, rate, seconds, name):
    calls = rate * seconds
    with listening(command, work, name) as (server, port):
        statistics = work / f"{name}.csv"
        begun = time.monotonic()
        finish(work, sipp(work, name, port, calls, rate, "-trace_stat", "-stf", str(statistics),
                          "-l", str(4 * rate), scenario="plain", seconds=3 * seconds + 60))
        took = time.monotonic() - begun
        cpu = server.cpu_seconds()
        server.end(calls)
    with open(statistics, encoding="utf-8") as rows:
        last = list(csv.DictReader(rows, delimiter=";"))[-1]
    print(f"{name}: {calls} calls, {last['FailedCall(C)']} failed, "
          f"{last['Retransmissions(C)']} retransmissions, {calls / took:.0f} calls/s, "
          f"{1e6 * cpu / calls:.0f} us of the server's CPU a call")
    return cpu / calls


def load(build, work, rate, seconds):
    """A steady rate, and the share of the server's work that offers and answers are."""
    write_scenarios(work)
    command = [str(build / "useragent"), "listen", "PORT"]
    ours = load_once(command, work, rate, seconds, "negotiated")
    fixed = load_once([*command, "127.0.0.1", FIXED], work, rate, seconds, "fixed")
    print(f"offers and answers: {100 * (ours - fixed) / ours:.0f} % of the server's CPU")


def soak(build, work, minutes, under):
    """Every scenario again and again; no error of the checker, and no growth after a first time."""
    write_scenarios(work)
    command = [*under, str(build / "useragent"), "listen", "PORT"]
    end = time.monotonic() + 60 * minutes
    with listening(command, work, "soak") as (server, port):
        made = all_scenarios(work, port, 20, 20, seconds=120)
        first = server.resident_kib()
        while time.monotonic() < end:
            made += all_scenarios(work, port, 20, 20, seconds=120)
        last = server.resident_kib()
        server.end(made)
    print(f"{made} calls, {first} KiB after the first {30 * 20} of them, {last} KiB at the end")
    if last > first + first // 10:
        raise Failed("the server grew")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--calls", type=int, default=50, help="of each scenario and transport")
    parser.add_argument("--load", nargs=2, type=int, metavar=("RATE", "SECONDS"))
    parser.add_argument("--soak", type=float, metavar="MINUTES")
    parser.add_argument("--under", default="", help="command in front of the server")
    options = parser.parse_args()
    build = options.build.resolve()
    with tempfile.TemporaryDirectory(prefix="calls.") as folder:
        work = pathlib.Path(folder)
        try:
            if options.load:
                load(build, work, *options.load)
            elif options.soak:
                soak(build, work, options.soak, options.under.split())
            else:
                run(build, work, options.calls)
        except Failed as failed:
            print(f"calls: {failed}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
