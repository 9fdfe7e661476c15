"""Calls of two phones that people use, by our agent and to it: `./dev calls --phones`.

Each phone is told what to do over its own interface, and every request and final response is read
in the log of our agent: `< INVITE audio sendonly` came in, `> 200 INVITE audio recvonly` went out.
All of it is in a network namespace where the system allows that, and on loopback addresses else.
"""

import fcntl
import json
import os
import pathlib
import re
import selectors
import shutil
import socket
import struct
import subprocess
import sys

from agents import STEP_SECONDS, Failed, client, listening, until

HERE = "127.0.0.1"

# The actions of the phone, and what our agent reports.
OUR_ANSWERS = (
    ("call", ("< INVITE audio sendrecv", "> 200 INVITE audio sendrecv", "< ACK")),
    ("hold", ("< INVITE audio sendonly", "> 200 INVITE audio recvonly", "< ACK")),
    ("resume", ("< INVITE audio sendrecv", "> 200 INVITE audio sendrecv", "< ACK")),
    ("hang up", ("< BYE", "> 200 BYE")),
)
# The actions of our agent when it calls. Neither phone supports T.38: the call continues without
# it.
OUR_OFFERS = (
    "> INVITE audio sendrecv", "< 200 INVITE audio sendrecv", "> ACK",
    "> INVITE audio sendonly", "< 200 INVITE audio recvonly", "> ACK",
    "> INVITE audio sendrecv", "< 200 INVITE audio sendrecv", "> ACK",
    "> INVITE image sendrecv", "< 488 INVITE", "> ACK",
    "> INVITE audio sendrecv", "< 200 INVITE audio sendrecv", "> ACK",
    "> BYE", "< 200 BYE",
)


# ---- What our agent saw

def summary(message):
    """(mark, line) of one message of the stack's log; the mark is that of its transaction."""
    sent, text = message
    head, _, body = text.partition("\n\n")
    lines = head.split("\n")
    cseq = next(line for line in lines if line.startswith("CSeq:")).split()
    words = lines[0].split()
    name = f"{words[1]} {cseq[2]}" if words[0] == "SIP/2.0" else words[0]
    stream = ""
    if body.strip():
        direction = re.search(r"^a=(sendrecv|sendonly|recvonly|inactive)$", body, re.MULTILINE)
        media = re.search(r"^m=(\w+)", body, re.MULTILINE)
        stream = f" {media[1]} {direction[1] if direction else 'sendrecv'}"
    return (cseq[1], name), f"{'>' if sent else '<'} {name}{stream}"


def seen(log):
    """Requests and final responses of a log of the stack, without those that were repeated."""
    pattern = re.compile(r"^(send|recv) [^\n]*\n +-{60,}\n(.*?)^ +-{60,}\n",
                         re.MULTILINE | re.DOTALL)
    found = {}
    for match in pattern.finditer(log):
        text = re.sub(r"^ {3}", "", match[2], flags=re.MULTILINE)
        if not re.match(r"SIP/2\.0 1", text):
            mark, line = summary((match[1] == "send", text))
            found.setdefault((match[1], *mark), line)
    return list(found.values())


# ---- The phones

class Phone:
    """A process whose output is read as it comes. What it prints after a step is looked at once."""

    def __init__(self, command, work, home):
        self.transcript = ""
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.STDOUT, cwd=work,
                                        env={**os.environ, "HOME": str(home)})
        os.set_blocking(self.process.stdout.fileno(), False)

    def read(self):
        with selectors.DefaultSelector() as selector:
            selector.register(self.process.stdout, selectors.EVENT_READ)
            while selector.select(0):
                data = self.process.stdout.read()
                if not data:
                    break
                self.transcript += data.decode(errors="replace")
        return self.transcript

    def expects(self, expression, begin=0):
        """The text from `begin` on is to have it."""
        if expression:
            until(lambda: re.search(expression, self.read()[begin:]),
                  f'"{expression}" in the output of the phone\n{self.transcript[-1500:]}')

    def does(self, step, uri):
        begin = len(self.read())
        command, expected = self.STEPS[step]
        self.tell(command.replace("URI", uri))
        self.expects(expected, begin)

    def end(self):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(timeout=5)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()


class Baresip(Phone):
    """Audio is a bridge between its source and its player. Told by JSON over TCP."""

    NAME = PROGRAM = "baresip"
    PACKAGE = "baresip-core"
    URI = "sip:phone@127.0.0.2:5072"
    CONTROL = ("127.0.0.2", 4444)
    STEPS = {"call": ("dial URI", "Call established"), "hold": ("hold", ""),
             "resume": ("resume", ""), "hang up": ("hangup", "")}
    # Lines that a call of ours leaves.
    CALLED = ("Call established: sip:", "session closed: ")
    CONFIG = """sip_listen 127.0.0.2:5072
net_interface 127.0.0.2
audio_player aubridge,x
audio_source aubridge,x
audio_alert aubridge,x
module_path {modules}
module g711.so
module aubridge.so
module_app account.so
module_app menu.so
module_app ctrl_tcp.so
ctrl_tcp_listen 127.0.0.2:4444
"""

    def __init__(self, work):
        home = work / "baresip"
        home.mkdir()
        modules = next(pathlib.Path("/usr/lib").glob("**/baresip/modules"))
        (home / "config").write_text(self.CONFIG.format(modules=modules))
        (home / "accounts").write_text("<sip:phone@127.0.0.2>;regint=0;answermode=auto\n")
        (home / "contacts").write_text("")
        super().__init__(["baresip", "-f", str(home), "-v"], work, home)
        self.expects("baresip is ready")
        self.control = socket.create_connection(self.CONTROL, timeout=STEP_SECONDS)

    def tell(self, command):
        verb, _, parameters = command.partition(" ")
        text = json.dumps({"command": verb, "params": parameters}).encode()
        self.control.sendall(b"%d:%s," % (len(text), text))

    def end(self):
        self.control.close()
        super().end()


class Linphone(Phone):
    """It does without a sound card. Told by lines on its standard input."""

    NAME = "linphone"
    PROGRAM = "linphone-daemon"
    PACKAGE = "linphone-cli"
    URI = "sip:phone@127.0.0.3:5076"
    STEPS = {"call": ("call URI", "LinphoneCallStreamsRunning"),
             "hold": ("call-pause 1", r"LinphoneCallPaused\s"),
             "resume": ("call-resume 1", "LinphoneCallStreamsRunning"),
             "hang up": ("terminate", "LinphoneCallEnd")}
    CALLED = ("LinphoneCallConnected", "LinphoneCallStreamsRunning", "LinphoneCallPausedByRemote",
              "LinphoneCallStreamsRunning", "LinphoneCallEnd")
    # Nothing looks for a network: it is there, and no server is asked for anything.
    CONFIG = """[sip]
sip_port=5076
sip_tcp_port=0
sip_tls_port=0
bind_address=127.0.0.3
use_ipv6=0
auto_net_state_mon=0
contact=sip:phone@127.0.0.3
[sound]
echocancellation=0
[video]
capture=0
display=0
"""

    def __init__(self, work):
        home = work / "linphone"
        (home / ".local/share/linphone").mkdir(parents=True)
        (home / ".config/linphone").mkdir(parents=True)
        (home / "rc").write_text(self.CONFIG)
        super().__init__(["linphone-daemon", "--config", str(home / "rc"), "--disable-stats-events",
                          "--auto-answer", "--log", str(home / "log")], work, home)
        until((home / "log").exists, "linphone has a log")
        until(lambda: "listening point" in (home / "log").read_text(errors="replace"),
              "linphone listens")

    def tell(self, command):
        self.process.stdin.write(command.encode() + b"\n")
        self.process.stdin.flush()


# ---- Calls

def phone_calls(phone, server, port):
    """The phone calls us, step by step."""
    expected = []
    for step, lines in OUR_ANSWERS:
        expected += lines
        phone.does(step, f"sip:us@{HERE}:{port}")
        log = pathlib.Path(server.log.name)
        until(lambda: len(seen(log.read_text(errors="replace"))) >= len(expected),
              f"{phone.NAME}: {step}: {lines}")
        found = seen(log.read_text(errors="replace"))
        if found != expected:
            raise Failed(f"{phone.NAME}: {step}: expected {expected}, found {found}")
        print(f"  {phone.NAME} calls: {step}: {', '.join(lines)}")


def phone_is_called(phone, useragent):
    """We call the phone, which answers by itself."""
    begin = len(phone.read())
    log = client(useragent, phone.URI, HERE, "agreed 4 refused 1", {"TPORT_LOG": "1"})
    if seen(log) != list(OUR_OFFERS):
        raise Failed(f"{phone.NAME}: expected {list(OUR_OFFERS)}, found {seen(log)}")
    phone.expects("(?s)" + ".*".join(phone.CALLED), begin)
    print(f"  {phone.NAME} is called: {', '.join(OUR_OFFERS)}")


def enter_namespace():
    """Runs this program again in a network namespace, if the system lets it make one."""
    mark = "CALLS_NETWORK"
    shared = ["unshare", "--map-root-user", "--net"]
    if mark in os.environ:
        with socket.socket() as any_socket:
            # SIOCSIFFLAGS, IFF_UP | IFF_LOOPBACK
            fcntl.ioctl(any_socket, 0x8914, struct.pack("16sh", b"lo", 0x1 | 0x8))
    elif subprocess.run([*shared, "true"], check=False, capture_output=True).returncode == 0:
        os.execvpe(shared[0], [*shared, sys.executable, *sys.argv], {**os.environ, mark: "1"})
    else:
        print("  no network namespace here: on loopback addresses of this one")


def phones(build, work):
    useragent = str(build / "useragent")
    for kind in (Baresip, Linphone):
        if shutil.which(kind.PROGRAM) is None:
            raise Failed(f"{kind.PROGRAM} is not installed: apt-get install {kind.PACKAGE}")
        with listening([useragent, "listen", "PORT"], work, kind.NAME,
                       {"TPORT_LOG": "1"}) as (server, port):
            phone = kind(work)
            try:
                phone_calls(phone, server, port)
                phone_is_called(phone, useragent)
            finally:
                phone.end()
            server.end(1)
    print("2 phones called us and were called: established, held, resumed and hung up, 0 failed")
