"""What calls cost the server of useragent.cpp: at a rate, in instructions, and in memory."""

import csv
import pathlib
import re
import time

from agents import FIXED, Failed, all_scenarios, finish, listening, sipp, write_scenarios

HERE = pathlib.Path(__file__).resolve().parent
# The memory checkers by name. sofia.supp has the leaks of the stack at its end.
CHECKERS = {
    "valgrind": ["valgrind", "--leak-check=full", "--show-leak-kinds=definite",
                 "--errors-for-leak-kinds=definite", "--error-exitcode=9", "--num-callers=30",
                 f"--suppressions={HERE / 'sofia.supp'}"],
}
# AddressSanitizer keeps freed memory, by default 256 MB, which would be measured as growth.
SANITIZERS = {"ASAN_OPTIONS": "quarantine_size_mb=8",
              "LSAN_OPTIONS": f"suppressions={HERE / 'sofia.lsan'}"}
# The number of suppressed blocks, in the output of valgrind and of LeakSanitizer.
HIDDEN = re.compile(r"suppressed: [0-9,]+ bytes in ([0-9,]+) blocks"
                    r"|^ +([0-9]+) +[0-9]+ su_msg_new$", re.MULTILINE)


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


def instructions(command, work, calls, name):
    """What the server runs from its start to its end, with so many calls between them."""
    output = work / f"{name}.callgrind"
    counted = ["valgrind", "--tool=callgrind", f"--callgrind-out-file={output}", *command]
    with listening(counted, work, name) as (server, port):
        finish(work, sipp(work, name, port, calls, 20, scenario="plain", seconds=300))
        server.end(calls)
    return int(re.search(r"^(?:summary|totals): (\d+)", output.read_text(), re.MULTILINE)[1])


def share(build, work, calls):
    """Instructions of a call, whatever else the machine does, and those of offers and answers:
    what the same server runs less when it sends one text to everybody."""
    write_scenarios(work)
    command = [str(build / "useragent"), "listen", "PORT"]
    costs = []
    for name, server in (("negotiated", command), ("fixed", [*command, "127.0.0.1", FIXED])):
        few = instructions(server, work, calls // 10, f"{name}-few")
        many = instructions(server, work, calls, f"{name}-many")
        costs.append((many - few) / (calls - calls // 10))
        print(f"{name}: {costs[-1]:.0f} instructions a call")
    ours, fixed = costs
    print(f"offers and answers: {ours - fixed:.0f} instructions, "
          f"{100 * (ours - fixed) / ours:.1f} % of the server's")


def load(build, work, rate, seconds):
    """A steady rate; then the share of the server's work that offers and answers are."""
    write_scenarios(work)
    command = [str(build / "useragent"), "listen", "PORT"]
    load_once(command, work, rate, seconds, "negotiated")
    load_once([*command, "127.0.0.1", FIXED], work, rate, seconds, "fixed")
    share(build, work, 100)


def soak(build, work, minutes, under):
    """Every scenario again and again; no error of the checker, and no growth."""
    write_scenarios(work)
    checker = CHECKERS.get(under, under.split())
    command = [*checker, str(build / "useragent"), "listen", "PORT"]
    begun = time.monotonic()
    sizes = []
    made = 0
    with listening(command, work, "soak", SANITIZERS) as (server, port):
        while len(sizes) < 2 or time.monotonic() - begun < 60 * minutes:
            made += all_scenarios(work, port, 20, 20, seconds=120)
            took = time.monotonic() - begun
            # Transactions that ended are kept for 32 s; after that their number is constant.
            sizes = sizes if took >= 40 else []
            sizes.append(server.resident_kib())
            print(f"{made} calls, {took:.0f} s: {sizes[-1]} KiB", flush=True)
        server.end(made)
    for counts in HIDDEN.findall((work / "soak.log").read_text(errors="replace")):
        if "".join(counts) != "1":
            raise Failed(f"the stack lost {counts} blocks, not one")
    print(f"{made} calls, from {sizes[0]} to {sizes[-1]} KiB, no error")
    if sizes[-1] > sizes[0] + sizes[0] // 20:
        raise Failed("the server grew")
