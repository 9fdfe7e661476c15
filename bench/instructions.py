#!/usr/bin/env -S python3 -B
"""Counts the instructions of each operation on each body and compares them with a baseline: one that
grew by more than 5 % is an error. So is a ratio above its limit, which is where it is today with
little to spare: each is the cost of an operation over that of the decode beside it, and rises when
a decode gets cheaper. A call's answer: 1.6 times the decode and the encode of its offer. A
negotiated answer (all that is offered is ours, with the report): 3 times the decode, by the C
interface and by the C++ API. A copy of a body, whole and line by line: half its decode. A text that
is taken as it is: 1.2 times its decode to tidy; one that is repaired: 2.6 times the decode of what
comes out when its second line is refused, 2.7 times when its last one is, 2.9 times when each has a
fault.
Counts belong to a compiler and a C library, which the baseline names.

usage: instructions.py PROGRAM BASELINE [--update]
"""

import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

OPERATIONS = ["decode", "encode", "clone", "clone-c", "serialise"]
CLONES, CLONE_LIMIT = ["clone", "clone-c"], 0.5  # times the decode of the body's text
BODIES = ["240B", "1KB", "2KB", "4KB", "mixture"]
ANSWERS = ["answer", "answer-c"]  # by the C++ API and by the C interface
OFFERS = BODIES[:-1]
REPAIRED = "repaired"  # the decode of what comes out of the repairs below
TIDY_LIMITS = {"tidy": 1.2, "repair-first": 2.6, "repair-last": 2.7, "repair-each": 2.9}
ANSWER_LIMIT = 1.6  # times decode and encode
NEGOTIATIONS = {"negotiate": 3.0, "negotiate-c": 3.0}  # times the decode of the offer
SHORTEST = "130B"
FEWER, MORE = 4, 12  # the first ones bring the heap into its steady state
GROWTH = 0.05

# Valgrind counts every byte of a repeated string instruction, with which larger allocations are
# zeroed: let the C library use its loops.
LOOPS = ":".join(f"glibc.cpu.x86_rep_{each}_threshold=1073741824" for each in ("movsb", "stosb"))


def collected(program, operation, body, count):
    command = [
        "valgrind",
        "--tool=callgrind",
        "--callgrind-out-file=/dev/null",
        program,
        operation,
        body,
        f"{count:02}",  # as many characters always: what a start costs depends on the arguments' size
    ]
    environment = dict(os.environ)
    if operation.startswith("repair"):
        environment["GLIBC_TUNABLES"] = LOOPS
    done = subprocess.run(
        command, stderr=subprocess.PIPE, text=True, check=False, env=environment
    )
    found = re.search(r"Collected : (\d+)", done.stderr)
    if done.returncode != 0 or not found:
        sys.exit(f"{' '.join(command)} ended with {done.returncode}:\n{done.stderr}")
    return int(found.group(1))


def per_operation(program, operation, body):
    more, fewer = (collected(program, operation, body, count) for count in (MORE, FEWER))
    return round((more - fewer) / (MORE - FEWER))


def counted(program):
    pairs = [(operation, body) for operation in OPERATIONS for body in BODIES]
    pairs += [(answer, offer) for answer in ANSWERS for offer in OFFERS]
    pairs += [("decode", SHORTEST)]
    pairs += [(answer, offer) for answer in NEGOTIATIONS for offer in [SHORTEST, *OFFERS]]
    with ThreadPoolExecutor(2) as pool:
        return dict(zip(pairs, pool.map(lambda pair: per_operation(program, *pair), pairs)))


def tidied(program):
    """The counts of repairs, and of the decodes that they are compared with."""
    pairs = [(operation, body) for operation in [REPAIRED, *TIDY_LIMITS] for body in OFFERS]
    with ThreadPoolExecutor(2) as pool:
        return dict(zip(pairs, pool.map(lambda pair: per_operation(program, *pair), pairs)))


def compare_tidied(counts, decodes):
    """The lines of a report, and the errors among them."""
    lines, errors = [], []
    for operation in TIDY_LIMITS:
        for body in OFFERS:
            decode = decodes["decode", body] if operation == "tidy" else counts[REPAIRED, body]
            ratio = counts[operation, body] / decode
            limit = TIDY_LIMITS[operation]
            lines.append(f"{operation:12} {body:8} is {ratio:.2f} times its decode")
            if ratio > limit:
                errors.append(f"{operation} {body} is {ratio:.2f} times its decode, not {limit}")
    return lines, errors


def tools():
    """What the counts depend on."""
    versions = [
        subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout.split("\n")[0]
        for command in (["c++", "--version"], ["ldd", "--version"], ["valgrind", "--version"])
    ]
    return "; ".join(versions)


def read_baseline(text):
    """The tools and the counts."""
    counts = {}
    for line in text.splitlines():
        if not line.startswith("#") and line.strip():
            operation, body, count = line.split()
            counts[operation, body] = int(count)
    comment = re.search(r"^# by (.*)$", text, re.M)
    return (comment.group(1) if comment else ""), counts


def baseline_text(by, counts):
    lines = [
        "# Instructions for each operation, release build. Written by ./dev instructions --update.",
        f"# by {by}",
    ]
    lines += [f"{operation} {body} {count}" for (operation, body), count in counts.items()]
    return "\n".join(lines) + "\n"


def compare(counts, baseline):
    """The lines of a report, and the errors among them."""
    lines, errors = [], []
    for (operation, body), count in counts.items():
        before = baseline.get((operation, body))
        if before is None:
            errors.append(f"{operation} {body} is not in the baseline")
            continue
        change = (count - before) / before
        lines.append(f"{operation:11} {body:8} {count:12,} {before:12,} {change:+7.1%}")
        if change > GROWTH:
            errors.append(f"{operation} {body} grew by {change:.1%}")
    for (operation, body), count in counts.items():
        if operation in ANSWERS:
            ratio = count / (counts["decode", body] + counts["encode", body])
            lines.append(f"{operation:11} {body:8} is {ratio:.2f} times decode and encode")
            if ratio > ANSWER_LIMIT:
                errors.append(f"{operation} {body} is {ratio:.2f} times decode and encode")
    for (operation, body), count in counts.items():
        if operation in NEGOTIATIONS:
            ratio = count / counts["decode", body]
            lines.append(f"{operation:11} {body:8} is {ratio:.2f} times decode")
            if ratio > NEGOTIATIONS[operation]:
                errors.append(f"{operation} {body} is {ratio:.2f} times decode")
    for (operation, body), count in counts.items():
        if operation in CLONES:
            ratio = count / counts["decode", body]
            lines.append(f"{operation:11} {body:8} is {ratio:.2f} times decode")
            if ratio > CLONE_LIMIT:
                errors.append(f"{operation} {body} is {ratio:.2f} times decode")
    errors += [
        f"{operation} {body} is in the baseline and not counted"
        for operation, body in baseline.keys() - counts.keys()
    ]
    return lines, errors


def main():
    program, path, *rest = sys.argv[1:]
    counts = counted(program)
    if rest == ["--update"]:
        with open(path, "w", encoding="utf-8") as file:
            file.write(baseline_text(tools(), counts))
        return
    with open(path, encoding="utf-8") as file:
        by, baseline = read_baseline(file.read())
    lines, errors = compare(counts, baseline)
    for more, report in zip((lines, errors), compare_tidied(tidied(program), counts)):
        more += report
    print(f"{'operation':11} {'body':8} {'counted':>12} {'baseline':>12}  change")
    print("\n".join(lines))
    if by != tools():
        print(f"note: the baseline was counted by {by}; this is {tools()}")
    if errors:
        print("\n".join(f"error: {error}" for error in errors))
        print("where that is meant: ./dev instructions --update, in the same commit")
        sys.exit(1)
    print("instructions: within 5 % of the baseline")


if __name__ == "__main__":
    if len(sys.argv) not in (3, 4) or sys.argv[3:] not in ([], ["--update"]):
        sys.exit(__doc__)
    main()
