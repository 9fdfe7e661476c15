#!/usr/bin/env python3
"""Calls by sipp against the user agents of examples/calls; `./dev calls` runs it.

    run.py BUILD                      every scenario over UDP and TCP, then our client
    run.py BUILD --load [RATE] [SECONDS]
                                      one scenario at a steady rate (1000 for 10 seconds), and what
                                      a call costs
    run.py BUILD --share [CALLS]      the instructions of a call (of 200), and those that are ours
    run.py BUILD --soak MINUTES [--under COMMAND]
                                      every scenario again and again, one memory checker at a time
    run.py BUILD --phones             baresip and linphone call us, and are called
"""

import argparse
import pathlib
import sys
import tempfile
import time

from agents import (FIXED, TIMEOUT, Failed, all_scenarios, client, finish, listening, sipp, until,
                    write_scenarios)
from measure import load, share, soak
from phones import enter_namespace, phones
from scenarios import SILENT

# What the agent in C can do: it has no UPDATE, PRACK or CANCEL, and no offers of its own.
IN_C = ("compact", "longest", "nothing", "refused", "reinvite")


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


def silent_peers(useragent, work):
    """Calls that are released by a timeout, all at once. Returns their number."""
    calls = 10
    command = [useragent, "listen", "PORT", "127.0.0.1", "", TIMEOUT]
    with listening(command, work, "silent") as (server, port):
        started = [sipp(work, f"{make.__name__}-{transport}", port, calls, 200, "-t", transport,
                        scenario=make.__name__)
                   for make in SILENT for transport in ("u1", "t1")]
        for one in started:
            finish(work, one)
        server.end(calls * len(started))
    return calls * len(started)


def ends_calls(useragent, work):
    """Calls that are up when the server is told to end. Returns their number."""
    calls = 10
    command = [useragent, "listen", "PORT"]
    with listening(command, work, "ended", {"TPORT_LOG": "1"}) as (server, port):
        started = sipp(work, "left", port, calls, 200, scenario="left")
        log = work / "ended.log"
        until(lambda: log.read_text(errors="replace").count("\n   ACK sip:") == calls,
              f"{calls} calls are up")
        server.end(calls)
        finish(work, started)
    return calls


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
    total += silent_peers(useragent, work)
    total += ends_calls(useragent, work)
    with listening([str(build / "answer_calls"), "PORT"], work, "c") as (server, port):
        for name in IN_C:
            finish(work, sipp(work, f"c-{name}", port, 20, 200, scenario=name))
        server.end(20 * len(IN_C))
        total += 20 * len(IN_C)
    notices_wrong_answers(useragent, work)
    print(f"{total} calls, 0 failed, in {time.monotonic() - begun:.0f} s")


def arguments():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--calls", type=int, default=50, help="of each scenario and transport")
    parser.add_argument("--load", nargs="*", type=int, metavar="NUMBER", help="rate and seconds")
    parser.add_argument("--share", nargs="?", type=int, const=200, metavar="CALLS")
    parser.add_argument("--soak", type=float, metavar="MINUTES")
    parser.add_argument("--phones", action="store_true")
    parser.add_argument("--under", default="", help="command in front of the server, or valgrind")
    options = parser.parse_args()
    if options.load is not None:
        if len(options.load) > 2:
            parser.error("--load takes a rate and a number of seconds")
        options.load += (1000, 10)[len(options.load):]
    return options


def main():
    options = arguments()
    build = options.build.resolve()
    if options.phones:
        enter_namespace()
    with tempfile.TemporaryDirectory(prefix="calls.") as folder:
        work = pathlib.Path(folder)
        try:
            if options.load:
                load(build, work, *options.load)
            elif options.share:
                share(build, work, options.share)
            elif options.soak:
                soak(build, work, options.soak, options.under)
            elif options.phones:
                phones(build, work)
            else:
                run(build, work, options.calls)
        except Failed as failed:
            print(f"calls: {failed}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
