"""What the runs of calls have in common: the server, sipp against it, and what both must say."""

import contextlib
import os
import pathlib
import re
import selectors
import signal
import subprocess
import time

from scenarios import AUDIO, EVERY, SCENARIOS, Scenario, body

FIXED = ("v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=-\r\nc=IN IP4 127.0.0.1\r\nt=0 0\r\n"
         "m=audio 20002 RTP/AVP 8 0 96\r\na=rtpmap:96 telephone-event/8000\r\n"
         "a=fmtp:96 0-15\r\na=ptime:20\r\n")
READY_SECONDS = 60
STEP_SECONDS = 20
END_SECONDS = 60
# The timeout of a response that nobody acknowledges, short for the tests; the default is 32 s.
TIMEOUT = "2000"


class Failed(Exception):
    """What did not hold, for people."""


def until(condition, what):
    """Waits for something that is to become true."""
    end = time.monotonic() + STEP_SECONDS
    while not condition():
        if time.monotonic() > end:
            raise Failed(f"not within {STEP_SECONDS} s: {what}")
        time.sleep(0.02)


class Agent:
    """A server of ours: started, heard to listen, and ended by SIGTERM."""

    def __init__(self, command, log, environment=None):
        self.log = log
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=log, text=True,
                                        env={**os.environ, **(environment or {})})
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
            errors = pathlib.Path(self.log.name).read_text(errors="replace")[-3000:]
            raise Failed(f"the server ended with {self.process.returncode}\n{errors}")
        if f"invites {calls} closed {calls} live 0" not in last:
            raise Failed(f"the server counted other calls than the {calls} that were made")

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()


@contextlib.contextmanager
def listening(command, work, name, environment=None):
    """(agent, port): the command with the first port from 5070 on that is free at its end."""
    with open(work / f"{name}.log", "w", encoding="utf-8") as log:
        for port in range(5070, 5170):
            agent = Agent([part.replace("PORT", str(port)) for part in command], log, environment)
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
    for make in EVERY:
        scenario = make()
        (work / f"{scenario.name}.xml").write_text(scenario.xml(), encoding="utf-8")
    plain = Scenario("plain")
    plain.invites(body(AUDIO))
    plain.answered(("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"))
    plain.hangs_up()
    (work / "plain.xml").write_text(plain.xml(), encoding="utf-8")


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
        print(f"  {label}: {2 * calls} calls", flush=True)
    return made


def client(useragent, uri, address, counters="agreed 5 refused 0", environment=None):
    """Our client: speech, hold, resume, fax, speech, BYE."""
    done = subprocess.run([useragent, "call", uri, address], capture_output=True, text=True,
                          timeout=END_SECONDS, check=False,
                          env={**os.environ, **(environment or {})})
    print(f"  {uri}: {done.stdout.strip()}")
    if done.returncode != 0 or counters not in done.stdout:
        raise Failed(f"our client ended with {done.returncode}, expected {counters}: {done.stderr}")
    return done.stderr
