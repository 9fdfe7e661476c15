"""The tables, the targets and the CSV of what was measured, as Markdown."""

import csv

from results import FLOOR, OURS

DECODE_TIMES_PEER = {"240B": 5.0, "1KB": 4.7, "2KB": 4.0, "4KB": 4.0, "mixture": 3.0}
ENCODE_TIMES_PEER = dict.fromkeys(["240B", "1KB", "2KB", "4KB"], 8.0)
DECODE_TABLE_PASSES = 4.0
DECODE_ALLOCS = 1
ENCODE_ALLOCS = 2
COST_OF_4KB = 1.5
TIDY_DECODES, REPAIR_DECODES = 1.2, 3.0

OFFERS = ["240B", "1KB", "2KB", "4KB"]
OWN_OPERATIONS = [
    ("decode", "decode, release"),
    ("encode", "encode"),
    ("both", "decode, encode, release"),
    ("clone", "clone, release"),
    ("serialise", "serialise into a buffer"),
    ("answer", "a call's answer, C++"),
    ("answer-c", "a call's answer, C"),
    ("negotiate", "an answer by RFC 3264, with its report, C++"),
    ("tidy", "tidy, of a text that is taken as it is"),
    ("repaired", "decode, release what a repair makes of a text"),
    ("repair-first", "tidy, its second line repaired"),
    ("repair-last", "tidy, its last line repaired"),
    ("repair-each", "tidy, every line repaired that can have a fault"),
]
FLOORS = [
    ("table", "floor: one table pass"),
    ("normal", "the normal form alone"),
    ("pieces", "the tree's memory alone, by calls"),
    ("copy", "floor: malloc, memcpy, free"),
]


def table(head, rows):
    """A Markdown table; all columns but the first to the right."""
    lines = [head, ["---"] + ["---:"] * (len(head) - 1), *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines) + "\n"


def nanoseconds(time):
    return f"{time:,.0f}" if time >= 100 else f"{time:.1f}"


def times_of(results, operation, body, library):
    """A cell: the time, and how many times ours it is."""
    measured = results.get(operation, library, body)
    if measured is None:
        return "refused" if (library, body) in results.refused else "-"
    ours = results.get(operation, OURS, body)
    text = nanoseconds(measured.time)
    if ours and library != OURS:
        text += f" ({measured.time / ours.time:.1f}×)"
    if measured.lost:
        text += f" †{measured.lines - measured.lost}/{measured.lines}"
    return text


def beside_peers(results, operation, title):
    peers = results.peers()
    head = ["body", "bytes", OURS, "ns/byte", *peers, "fastest peer / ours", "ours / table pass"]
    rows = []
    for body in results.bodies(operation):
        ours = results.get(operation, OURS, body)
        if ours is None:
            continue
        fastest = results.fastest_peer(operation, body)
        floor = results.get(FLOOR, "table", body)
        rows.append(
            [
                body,
                f"{ours.bytes:,}",
                f"**{nanoseconds(ours.time)}**",
                f"{ours.per_byte:.2f}",
                *(times_of(results, operation, body, peer) for peer in peers),
                f"**{fastest[1] / ours.time:.1f}** ({fastest[0]})" if fastest else "-",
                f"{ours.time / floor.time:.1f}" if floor else "-",
            ]
        )
    return f"**{title}**, ns\n\n{table(head, rows)}" if rows else ""


def own_operations(results):
    bodies = results.bodies("decode")
    rows = []
    for operation, title in OWN_OPERATIONS:
        found = [results.get(operation, OURS, body) for body in bodies]
        if any(found):
            rows.append(
                [
                    title,
                    *(
                        f"{nanoseconds(each.time)} ({each.per_byte:.2f})" if each else "-"
                        for each in found
                    ),
                ]
            )
    for who, title in FLOORS:
        found = [results.get(FLOOR, who, body) for body in bodies]
        if any(found):
            rows.append([title, *(nanoseconds(each.time) if each else "-" for each in found)])
    if not rows:
        return ""
    return f"**Every operation**, ns (ns/byte)\n\n{table(['operation', *bodies], rows)}"


def heap_calls(results):
    bodies = results.bodies("decode")
    rows = []
    for operation in ("decode", "encode"):
        for library in [OURS, *results.peers()]:
            found = [results.get(operation, library, body) for body in bodies]
            if any(found):
                rows.append(
                    [
                        f"{operation}, {library}",
                        *(f"{each.allocs:g}" if each else "-" for each in found),
                    ]
                )
    if not rows:
        return ""
    return (
        "**Calls of the process heap** (malloc, calloc, realloc), in the steady state\n\n"
        + table(["", *bodies], rows)
    )


def attributes(results, count=6):
    reference = results.get("decode", OURS, "1KB")
    found = [
        (body, measured)
        for (operation, _, body), measured in results.table.items()
        if operation == "attribute"
    ]
    if not found:
        return ""
    found.sort(key=lambda each: -each[1].per_byte)
    rows = [
        [
            f"`a={body}`",
            nanoseconds(measured.time),
            f"{measured.per_byte:.2f}",
            f"{measured.per_byte / reference.per_byte:.1f}×" if reference else "-",
        ]
        for body, measured in found[:count]
    ]
    return (
        f"**Decode of 4 KB of one attribute over and over**: the {len(rows)} of {len(found)} that "
        "cost most\n\n" + table(["attribute", "ns", "ns/byte", "of the 1 KB body's"], rows)
    )


def threads(results):
    rows = []
    for kind in ("serialised", "parallel"):
        for body in OFFERS:
            one, two = (results.threads.get((kind, body, count)) for count in (1, 2))
            if one and two:
                rows.append(
                    [
                        f"{kind}, {body}",
                        f"{one.rate / 1000:,.0f}",
                        f"{two.rate / 1000:,.0f}",
                        f"{two.rate / one.rate:.2f}",
                    ]
                )
    if not rows:
        return ""
    return (
        "**Decodes through the C++ API from two threads**, thousand bodies a second\n\n"
        + table(["", "1 thread", "2 threads", "ratio"], rows)
    )


class Target:
    """A bound on a number. A number that was not measured neither holds nor misses it."""

    def __init__(self, what, value, limit, least):
        self.what, self.value, self.limit, self.least = what, value, limit, least

    def __str__(self):
        bound = f"at {'least' if self.least else 'most'} {self.limit:g}"
        if self.value is None:
            return f"not measured: {self.what}, {bound}"
        return f"{'PASS' if self.held() else 'MISS'} {self.what}: {self.value:.2f}, {bound}"

    def held(self):
        if self.value is None:
            return False
        return self.value >= self.limit if self.least else self.value <= self.limit


def against_peers(results, operation, limits):
    for body, limit in limits.items():
        ours, fastest = results.get(operation, OURS, body), results.fastest_peer(operation, body)
        name = f" ({fastest[0]})" if fastest else ""
        yield Target(
            f"{operation} {body}, fastest peer{name} / ours",
            fastest[1] / ours.time if ours and fastest else None,
            limit,
            True,
        )


def allocations(results, operation, bodies, limit):
    for body in bodies:
        ours = results.get(operation, OURS, body)
        yield Target(
            f"heap calls of {operation} {body}", ours.allocs if ours else None, limit, False
        )


def targets(results):
    yield from against_peers(results, "decode", DECODE_TIMES_PEER)
    small, large = results.get("decode", OURS, "1KB"), results.get("decode", OURS, "4KB")
    floor = results.get(FLOOR, "table", "1KB")
    yield Target(
        "decode 1KB, ours / table pass",
        small.time / floor.time if small and floor else None,
        DECODE_TABLE_PASSES,
        False,
    )
    yield from against_peers(results, "encode", ENCODE_TIMES_PEER)
    yield from tidy_decodes(results)
    yield from allocations(results, "decode", ["240B", "1KB"], DECODE_ALLOCS)
    yield from allocations(results, "encode", OFFERS, ENCODE_ALLOCS)
    yield Target(
        "time per byte of decode, 4KB / 1KB",
        large.per_byte / small.per_byte if small and large else None,
        COST_OF_4KB,
        False,
    )


def tidy_decodes(results):
    """The cost of a text without faults and of a repaired text, relative to a decode of it."""
    for operation, decoded, most in (
        ("tidy", "decode", TIDY_DECODES),
        ("repair-first", "repaired", REPAIR_DECODES),
        ("repair-last", "repaired", REPAIR_DECODES),
    ):
        for body in OFFERS:
            ours, decode = (results.get(each, OURS, body) for each in (operation, decoded))
            yield Target(
                f"{operation} {body} / its decode",
                ours.time / decode.time if ours and decode else None,
                most,
                False,
            )


def notes(results):
    lines = [
        f"Medians of {results.repetitions()} repetitions, interleaved at random; half of the "
        f"repetitions lie within {results.spread():.1%} of the median. (N×): times as long as ours."
    ]
    if any(measured.lost for measured in results.table.values()):
        lines.append(
            "†n/m: prints n of the body's m lines, and is not counted as a peer that writes "
            "back what it read."
        )
    for peer, body in sorted(results.refused):
        what = f"a text of the {body}" if body == "mixture" else f"the body {body}"
        lines.append(f"{peer} refuses {what} and is not measured on it.")
    lines += [f"Failed: {failure}" for failure in results.failed]
    return "\n".join(f"- {line}" for line in lines) + "\n"


def markdown(results):
    parts = [
        notes(results),
        beside_peers(results, "decode", "Decode and release"),
        beside_peers(results, "encode", "Encode"),
        own_operations(results),
        heap_calls(results),
        attributes(results),
        threads(results),
        "**Targets**\n\n" + "\n".join(f"- {target}" for target in targets(results)) + "\n",
    ]
    return "\n".join(part for part in parts if part)


def write_csv(results, path):
    with open(path, "w", newline="", encoding="utf-8") as file:
        writer = csv.writer(file)
        writer.writerow(
            [
                "operation",
                "library",
                "body",
                "bytes",
                "ns",
                "ns_per_byte",
                "heap_calls",
                "lines",
                "lines_lost",
                "repetitions",
            ]
        )
        for (operation, library, body), each in results.table.items():
            writer.writerow(
                [
                    operation,
                    library,
                    body,
                    each.bytes,
                    f"{each.time:.1f}",
                    f"{each.per_byte:.4f}",
                    f"{each.allocs:g}",
                    each.lines,
                    each.lost,
                    len(each.times),
                ]
            )
