"""Sources that hold all of their mutants: a number, read when a program starts, chooses one.

A function's body becomes a switch over that number, whose cases are the body with one change each.
The whole library is so compiled once, and a mutant costs a run of the tests. So do first values of
members, and tables, which are filled when the program starts. Numbers that the compiler needs
(bounds of arrays) cannot be chosen like that; in a constexpr function it is chosen where the
function runs.
"""
import collections
import json
import os
import re
import sys
from pathlib import Path

from commands import digest, must, run, seconds_of_children
from places import code_only

VARIABLE = "mutant_chosen"
DECLARED = f'extern "C" {{ extern int {VARIABLE}; }}\n'
CHOOSER = f"""#include <stdlib.h>
int {VARIABLE};
__attribute__((constructor(101))) static void choose(void) {{
    const char *const number = getenv("MUTANT");
    {VARIABLE} = number != NULL ? atoi(number) : 0;
}}
"""

# The text that can be between the parameters of a function and its body.
HEAD = re.compile(r"\)\s*(?:const\s*|noexcept\s*|override\s*|final\s*|->[^(){};=]*)*$")
INITIALISED = re.compile(r"\)\s*(?:noexcept\s*)?:\s[^;{}]*\)\s*$")
COMPUTED = re.compile(r"\b(?:constexpr|consteval)\b")
VALUE = re.compile(r"^ *(?:uint\w+|size_t|bool|Kinds) \w+ = $"
                   r"|^(?! *for )[^=]*\((?:uint\w+|size_t) \w+ = $"
                   r"|\) : (?:\w+\(\d+\), )*\w+\($")
CONSTANT = re.compile(r"^constexpr (?=(?:uint\w+|size_t) (k\w+) = \d+;)", re.M)
FIXED = re.compile(r"\[[^\]]*\bk[A-Z]|\bstatic_assert\b|\bcase\b|\bconstexpr\b.*=.*\bk[A-Z]")
TABLE = re.compile(r"^constexpr (?=[^=;()]*\bk\w+(?:\[[^\]]*\])? =\s(?:\{|\[\] \{))", re.M)
IN_TABLE = re.compile(r"\d+|true|false")
TOLD = re.compile(r"mutant-(\d+):\d+")


def closing(code, opened):
    depth = 0
    for place in range(opened, len(code)):
        depth += {"{": 1, "}": -1}.get(code[place], 0)
        if depth == 0:
            return place
    raise ValueError("a brace is not closed")


def bodies(code):
    """The braces around each function's body, outermost ones, and whether it is constexpr."""
    found, place = [], 0
    while (place := code.find("{", place)) >= 0:
        head = re.sub(r"(?m)^\s*#.*$", "", code[:place])
        begin = max(head.rfind(";"), head.rfind("}"), head.rfind("{")) + 1
        head = head[begin:]
        head = re.sub(r"^\s*(?:public|private|protected):", "", head)
        if (HEAD.search(head) or INITIALISED.search(head)) and "=" not in head.split("(")[0]:
            end = closing(code, place)
            found.append((place, end, COMPUTED.search(head) is not None))
            place = end
        elif "=" in head:
            place = closing(code, place)
        place += 1
    return found


def fixed(code):
    """The constants that the compiler needs to know."""
    lines = [line for line in code.splitlines() if FIXED.search(line)]
    return set(re.findall(r"\bk[A-Z]\w*", "\n".join(lines)))


def tables(code, known):
    """The places of "constexpr" before constants and tables, and the ends of those."""
    found = []
    for match in CONSTANT.finditer(code):
        if match.group(1) not in known:
            found.append((match.start(), match.end(), code.index(";", match.end())))
    for match in TABLE.finditer(code):
        opened = code.index("{", match.end())
        found.append((match.start(), opened, closing(code, opened)))
    return found


def instrumented(text, code, path, mutants, known):
    """The text with the mutants in it, given as (number, begin, end, after): the numbers of those
    that are chosen for certain, and of those that are where the function is not computed. `known`
    are constants that stay as they are."""
    certain, likely, last = set(), set(), 0
    pieces = [DECLARED, "#include <type_traits>\n", f'# 1 "{path}"\n']
    filled = tables(code, known)
    if not any(opened < m[1] < end for _, opened, end in filled for m in mutants):
        constants = {match.start() for match in CONSTANT.finditer(code)}
        filled = [one for one in filled if one[0] in constants]
    at_start = {begin: len("constexpr") for begin, _, _ in filled}

    def in_table(place):
        return any(opened < place < end for _, opened, end in filled)

    def values(begin, end):
        nonlocal last
        changes = {place: (place + size, "const") for place, size in at_start.items()}
        for number, first, beyond, after in mutants:
            line = code[code.rfind("\n", 0, first) + 1:first]
            simple = IN_TABLE.fullmatch(text[first:beyond]) or text[first:beyond].startswith("0x")
            if (in_table(first) and simple) or (VALUE.search(line) and not COMPUTED.search(line)):
                before = changes[first][1] if first in changes else text[first:beyond]
                if begin <= first and beyond <= end:
                    changes[first] = beyond, f"({VARIABLE} == {number} ? {after} : {before})"
                    certain.add(number)
        for first, (beyond, chosen) in sorted(changes.items()):
            if begin <= first and beyond <= end and last <= first:
                pieces.extend((text[last:first], chosen))
                last = beyond

    for opened, closed, computed in bodies(code):
        values(last, opened)
        inside = [m for m in mutants if opened < m[1] and m[2] <= closed]
        if not inside:
            continue
        line = text.count("\n", 0, opened) + 1
        chosen = f"std::is_constant_evaluated() ? 0 : {VARIABLE}" if computed else VARIABLE
        pieces += [text[last:opened + 1], f"\nswitch ({chosen}) {{\n"]
        for number, begin, end, after in inside:
            body = text[opened + 1:begin] + after + text[end:closed]
            pieces.append(f'case {number}: {{\n# {line} "mutant-{number}"\n{body}\n}} break;\n')
            (likely if computed else certain).add(number)
        body = text[opened + 1:closed]
        pieces.append(f'default: {{\n# {line} "{path}"\n{body}\n}} break;\n}}\n')
        pieces.append(f'# {text.count(chr(10), 0, closed) + 1} "{path}"\n')
        last = closed
    values(last, len(text))
    return "".join(pieces + [text[last:]]), certain, likely


def refused_in(output):
    """The numbers of the mutants with errors; nothing when an error is elsewhere."""
    numbers, context = set(), []
    for line in output.splitlines():
        context.append(line)
        if re.search(r": (?:fatal )?error: ", line):
            told = TOLD.search(line) or next(filter(None, map(TOLD.search, context[:-1])), None)
            if told is None:
                return set()
            numbers.add(int(told.group(1)))
            context = []
        elif re.match(r"\S+: (?:In|At) ", line):
            context = [line]
    return numbers


class AllAtOnce:
    """The tests, linked with sources that hold all mutants of the functions."""

    def __init__(self, original, mutants, folder):
        self.original, self.folder = original, folder
        self.program = folder / "tests"
        self.stillborn, self.certain, self.likely = set(), set(), set()
        made = folder / "made.json"
        of = digest(original.tree / "src") + Path(__file__).read_text()
        if not made.exists() or json.loads(made.read_text())[0] != of:
            print("compiling all mutants of functions", file=sys.stderr, flush=True)
            self.compile(mutants)
            made.write_text(json.dumps([of, *map(list, (self.stillborn, self.certain,
                                                        self.likely))]))
        self.stillborn, self.certain, self.likely = map(set, json.loads(made.read_text())[1:])
        self.link()
        self.limits = []
        for tests in self.stages():
            begun = seconds_of_children()
            if original.run_tests(self.program, tests) != "survived":
                sys.exit("the tests fail in the program that holds all mutants and chooses none")
            self.limits.append((seconds_of_children() - begun) * 5)

    def compile(self, mutants):
        self.write(mutants)
        while (refused := self.refused()):
            self.stillborn |= refused
            self.write([mutant for mutant in mutants if mutant.number not in self.stillborn])
        for name in self.original.compile:
            must(self.command(name, self.folder / Path(name).name, []), self.original.build)
        chooser = self.folder / "chooser.c"
        chooser.write_text(CHOOSER)
        must(["cc", "-c", chooser, "-o", self.folder / "chooser.o"], self.folder)

    def write(self, mutants):
        of, known = collections.defaultdict(list), set()
        for path in {mutant.path for mutant in mutants}:
            known |= fixed(code_only((self.original.tree / path).read_text()))
        for mutant in mutants:
            of[mutant.path].append((mutant.number, mutant.begin, mutant.end, mutant.after))
        for path, changes in of.items():
            text = (self.original.tree / path).read_text()
            text, certain, likely = instrumented(text, code_only(text), path,
                                                            changes, known)
            self.certain |= certain
            self.likely |= likely
            (self.folder / path).parent.mkdir(parents=True, exist_ok=True)
            (self.folder / path).write_text(text)

    def command(self, name, made, options):
        command = list(self.original.compile[name])
        command[command.index("-o") + 1] = str(made)
        source = command.index("-c") + 1
        changed = self.folder / os.path.relpath(command[source], self.original.tree)
        if changed.exists():
            command[source] = str(changed)
        command[1:1] = ["-I", str(self.folder / "src")]
        return command + ["-w", "-Wno-narrowing", *options]

    def refused(self):
        refused = set()
        for name in self.original.compile:
            command = self.command(name, "/dev/null", ["-fsyntax-only"])
            status, output = run(command, self.original.build)
            found = refused_in(output)
            if status != 0 and not found:
                sys.exit(output[-4000:])
            refused |= found
        return refused

    def link(self):
        objects = {name: self.folder / Path(name).name for name in self.original.compile}
        objects["chooser"] = self.folder / "chooser.o"
        for name in self.original.subject.programs:
            if not self.original.linked(name, self.program, objects):
                sys.exit("the tests cannot be linked with all mutants")

    def stages(self):
        parts = self.original.subject.stages
        others = ":".join(parts)
        return [[f"--gtest_filter={part}"] for part in (parts[0], f"-{others}", *parts[1:])]

    def holds(self, mutant):
        return mutant.number in self.certain | self.likely

    def judge(self, mutant):
        for tests, limit in zip(self.stages(), self.limits):
            verdict = self.original.run_tests(self.program, tests, mutant.number, limit)
            if verdict != "survived":
                return verdict
        return "survived"
