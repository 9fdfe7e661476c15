#!/usr/bin/env python3
"""Changes the sources one place at a time and looks whether a test fails.

usage: mutants.py --build DIR [COUNT] [--of LIBRARY] [-j N] [--seed N] [--file PART] [--list]
                  [--fresh]

The tree is copied below DIR and built there once (static, -O1, an index beyond an array ends the
program). The library is sdpline or negotiate. Then each mutant: one changed file is compiled, the
tests are linked with it and run until the first one fails. A mutant that does not compile is none;
one whose machine code is that of the original changes nothing and is none either. Those that change
code and nothing that a caller can see are listed in equivalent.txt, each with the reason.
What is known of each mutant is kept in DIR/results.jsonl under its text, so that a run that was
stopped goes on where it was, and mutants of a line that changed since are tried again.

Exit status 1 when fewer than 95 % are killed.
"""
import argparse
import concurrent.futures
import hashlib
import json
import os
import queue
import random
import re
import shlex
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
GOAL = 95.0
EQUIVALENT = Path(__file__).with_name("equivalent.txt")


class Subject:
    """What is changed, and the programs that are to notice, which link it as a static library."""

    def __init__(self, folders, target, programs, options=()):
        self.folders, self.target, self.programs = folders, target, programs
        self.options = options


SUBJECTS = {
    "sdpline": Subject(("src/lexer", "src/parser", "src/encoder", "src/copy"), "sdpline_counted",
                       ("tests/sdpline_tests", "tests/inplace_tests")),
    "negotiate": Subject(("src/negotiate",), "sdpline_negotiate", ("tests/negotiate_tests",),
                         ("-DSDPLINE_NEGOTIATE_KIND=STATIC",)),
}

# What is changed into what; the first group of a pattern is replaced. Patterns see code only:
# literals and comments are blanked out before they look.
SWAPS = [
    ("condition", r"(==)", ["!="]),
    ("condition", r"(!=)", ["=="]),
    ("condition", r"(?<![<\-])(<=)(?!>)", ["<", ">"]),
    ("condition", r"(?<!>)(>=)", [">", "<"]),
    ("condition", r"(?<= )(<)(?= )", ["<=", ">="]),
    ("condition", r"(?<= )(>)(?= )", [">=", "<="]),
    ("condition", r"(&&)(?= )", ["||"]),
    ("condition", r"(\|\|)", ["&&"]),
    ("condition", r"(?<=[\s(])(!)(?=[A-Za-z_(])", [""]),
    ("condition", r"\b(true)\b", ["false"]),
    ("condition", r"\b(false)\b", ["true"]),
    ("arithmetic", r"(?<= )(\+)(?= )", ["-"]),
    ("arithmetic", r"(?<= )(-)(?= )", ["+"]),
    ("arithmetic", r"(?<= )(\*)(?= \d)", ["+"]),
    ("arithmetic", r"(\+=)", ["-="]),
    ("arithmetic", r"(-=)", ["+="]),
    ("arithmetic", r"(\+\+)", ["--"]),
    ("bits", r"(?<=[\w)\]] )(&)(?= [\w(~])", ["|"]),
    ("bits", r"(?<= )(\|)(?= )", ["&"]),
    ("bits", r"(<<)", [">>"]),
]
NUMBER = re.compile(r"(?<![\w.])(0x[0-9A-Fa-f]+|\d+)(u|U)?(?![\w.'])")
STATEMENT = re.compile(r"^(\s+)((?:[A-Za-z_][\w:.\[\]>*()-]*\s*[-+|&*]?=\s*[^={};]+"
                       r"|(?:\+\+|--)[\w.\[\]>-]+|[A-Za-z_][\w:.>-]*\([^{};]*\)));$")
RETURN = re.compile(r"^\s*(?:[^/]*\s)?return ([^;{}]+);")
DECLARATION = re.compile(r"^\s*(?:const|constexpr|auto|static|using|extern|return|typename|char|bool|"
                         r"uint\w*|size_t|std::\w+|case|default|struct)\b")


def code_only(text):
    """The text with comments, strings and characters blanked out, of the same length."""
    def blank(match):
        return re.sub(r"[^\n]", " ", match.group(0))
    return re.sub(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', blank, text,
                  flags=re.S)


class Mutant:
    def __init__(self, path, line, kind, begin, end, after, text):
        self.path, self.line, self.kind = path, line, kind
        self.begin, self.end, self.after = begin, end, after
        start = text.rfind("\n", 0, begin) + 1
        stop = text.find("\n", end)
        self.before_line = text[start:stop].strip()
        self.after_line = (text[start:begin] + after + text[end:stop]).strip()
        self.mutated = text[:begin] + after + text[end:]
        # Known by what it says, not by where: a line moves when others change.
        nth = text[:start].count(text[start:stop])
        told = f"{path}\0{self.before_line}\0{self.after_line}\0{nth}"
        self.key = hashlib.sha256(told.encode()).hexdigest()[:16]

    def __str__(self):
        return (f"{self.path}:{self.line}: {self.kind}\n    - {self.before_line}"
                f"\n    + {self.after_line or '(nothing)'}")


def mutants_of(path):
    text = (ROOT / path).read_text()
    code = code_only(text)
    found = []
    offset = 0
    for number, line in enumerate(code.split("\n"), 1):
        directive = line.lstrip().startswith(("#", "static_assert", "template"))

        def add(kind, begin, end, after):
            found.append(Mutant(path, number, kind, offset + begin, offset + end, after, text))

        if not directive:
            for kind, pattern, replacements in SWAPS:
                for match in re.finditer(pattern, line):
                    for after in replacements:
                        add(kind, *match.span(1), after)
            for match in NUMBER.finditer(line):
                value = int(match.group(1), 0)
                suffix = match.group(2) or ""
                for other in {value + 1, value - 1 if value > 0 else 1}:
                    add("constant", *match.span(), f"{other}{suffix}")
            statement = STATEMENT.match(line)
            if statement and not DECLARATION.match(line):
                add("statement", statement.start(2), statement.end(2) + 1, ";")
            result = RETURN.match(line)
            if result and result.group(1) not in ("0", "1", "true", "false"):
                add("result", *result.span(1), "{}")
        offset += len(line) + 1
    return found


def all_mutants(subject, part):
    paths = sorted(p.relative_to(ROOT).as_posix() for folder in subject.folders
                   for p in (ROOT / folder).glob("*.[ch]pp"))
    return [mutant for path in paths if part in path for mutant in mutants_of(path)]


def equivalents(mutants, whole):
    """The keys of equivalent.txt: a file, its line, the same changed, and after "=" the reason."""
    known, keys, entry = {}, set(), []
    for mutant in mutants:
        said = (mutant.path, mutant.before_line, mutant.after_line)
        known.setdefault(said, set()).add(mutant.key)
    for line in EQUIVALENT.read_text().splitlines():
        if line.startswith("="):
            found = known.get(tuple(part.strip() for part in entry), set())
            if not found and whole and entry[0].startswith(whole):
                sys.exit(f"{EQUIVALENT.name}: no such mutant:\n" + "\n".join(entry))
            keys |= found
            entry = []
        elif line and not line.startswith("#"):
            entry.append(line)
    return keys


def run(command, folder, limit=None):
    """Exit status and output; None as status for a command that took too long."""
    process = subprocess.Popen(command, cwd=folder, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, text=True, errors="replace",
                               start_new_session=True)
    try:
        output, _ = process.communicate(timeout=limit)
        return process.returncode, output
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.communicate()
        return None, ""


def must(command, folder):
    status, output = run(command, folder)
    if status != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{output[-4000:]}")
    return output


def digest(folder):
    sums = hashlib.sha256()
    for path in sorted(p for p in folder.rglob("*") if p.is_file()):
        sums.update(path.relative_to(folder).as_posix().encode() + b"\0" + path.read_bytes())
    return sums.hexdigest()[:16]


class Original:
    """The unchanged tree, built once: its objects, and the commands that made them."""

    def __init__(self, subject, folder):
        self.subject = subject
        self.tree, self.build = folder / "tree", folder / "build"
        self.copy_tree()
        must(["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-Wno-dev",
              "-DCMAKE_BUILD_TYPE=Mutants", "-DCMAKE_C_FLAGS=-O1",
              "-DCMAKE_CXX_FLAGS=-O1 -fsanitize=bounds -fsanitize-undefined-trap-on-error",
              "-DSDPLINE_HARDEN=OFF", "-DSDPLINE_INSTALL=OFF", *subject.options], folder)
        programs = subject.programs
        must(["ninja", "-C", self.build, "-j2", *programs], folder)
        self.compile, self.links = {}, {}
        for line in must(["ninja", "-t", "commands", *programs], self.build).splitlines():
            words = [w for w in shlex.split(line)]
            if "-c" in words and f"{subject.target}.dir" in line:
                self.compile[words[words.index("-o") + 1]] = self.plain(words)
            elif words[-1] != ":" or "-o" in words:
                for program in programs:
                    if program in words:
                        link = words[words.index("&&") + 1:] if words[0] == ":" else words
                        self.links[program] = link
        for link in self.links.values():
            while link and link[-1] in ("&&", ":"):
                link.pop()
        self.users = self.dependents()
        self.limit = self.time_of_tests() * 5 + 10

    @staticmethod
    def plain(words):
        """The command without what keeps compiled files and what writes dependency files."""
        words = words[1:] if Path(words[0]).name == "ccache" else words
        kept, skip = [], 0
        for word in words:
            if skip or word in ("-MF", "-MT", "-MD"):
                skip = 0 if skip or word == "-MD" else 1
                continue
            kept.append(word)
        return kept

    def copy_tree(self):
        names = must(["git", "ls-files", "-co", "--exclude-standard"], ROOT).splitlines()
        wanted = {name for name in names if (ROOT / name).is_file()}
        for name in wanted:
            source, target = ROOT / name, self.tree / name
            if not target.exists() or target.read_bytes() != source.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, target)
        for path in [p for p in self.tree.rglob("*") if p.is_file()]:
            if path.relative_to(self.tree).as_posix() not in wanted:
                path.unlink()

    def dependents(self):
        """The objects that each file of the tree is compiled into."""
        users, current = {}, None
        for line in must(["ninja", "-t", "deps"], self.build).splitlines():
            if line and not line.startswith(" "):
                current = line.split(":")[0]
            elif line and current in self.compile:
                path = os.path.normpath(self.build / line.strip())
                if path.startswith(str(self.tree)):
                    users.setdefault(os.path.relpath(path, self.tree), []).append(current)
        return users

    def time_of_tests(self):
        begun = time.monotonic()
        for program in self.subject.programs:
            status, output = run([program, "--gtest_brief=1"], self.build, 600)
            if status != 0:
                sys.exit("the tests fail as they are:\n" + output[-4000:])
        return time.monotonic() - begun


class Worker:
    def __init__(self, original, folder):
        self.original, self.folder = original, folder
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()

    def judge(self, mutant):
        """killed, hung, survived, stillborn (does not compile) or same (no other machine code)"""
        changed = self.folder / mutant.path
        changed.parent.mkdir(parents=True, exist_ok=True)
        changed.write_text(mutant.mutated)
        try:
            return self.verdict(mutant)
        finally:
            changed.unlink()

    def verdict(self, mutant):
        objects = {}
        for name in self.original.users.get(mutant.path, []):
            made = self.folder / Path(name).name
            if not self.compiled(name, made, mutant.path):
                return "stillborn"
            if made.read_bytes() != (self.original.build / name).read_bytes():
                objects[name] = made
        if not objects:
            return "same"
        for name in self.original.subject.programs:
            verdict = self.tested(name, objects)
            if verdict != "survived":
                return verdict
        return "same" if self.same_optimised(mutant, objects) else "survived"

    def tested(self, name, objects):
        """What one program makes of the changed objects."""
        program = self.folder / "tests"
        command = [str(program) if w == name else w for w in self.original.links[name]]
        # The changed objects stand first, before inline functions and tables in those of the tests.
        first = next(i for i, w in enumerate(command) if w.endswith(".o"))
        library = f"lib{self.original.subject.target}.a"
        archive = next(i for i, w in enumerate(command) if w.endswith(library))
        unchanged = [each for each in self.original.compile if each not in objects]
        command[archive:archive + 1] = unchanged
        command[first:first] = [str(made) for made in objects.values()]
        status, _ = run(command, self.original.build)
        if status != 0:
            return "stillborn"
        # Programs of the build look for shared libraries beside themselves.
        libraries = ":".join(str(self.original.build / part) for part in ("src", "src/sipcore"))
        status, _ = run(["env", f"LD_LIBRARY_PATH={libraries}", "prlimit", "--as=4294967296", "--core=0", str(program),
                         "--gtest_brief=1", "--gtest_fail_fast"], self.original.build,
                        self.original.limit)
        return "hung" if status is None else "survived" if status == 0 else "killed"

    def same_optimised(self, mutant, objects):
        """Whether a better compiler sees no difference: a store that nobody reads, for one."""
        for name in objects:
            first, second = self.folder / "first.o", self.folder / "second.o"
            if not self.compiled(name, first, mutant.path, ["-O2"]):
                return False
            self.compiled(name, second, None, ["-O2"])
            if first.read_bytes() != second.read_bytes():
                return False
        return True

    def compiled(self, name, made, changed, options=()):
        """With the file `changed` taken from the worker's folder, or with none."""
        command = list(self.original.compile[name])
        command[command.index("-o") + 1] = str(made)
        source = command.index("-c") + 1
        if os.path.relpath(command[source], self.original.tree) == changed:
            command[source] = str(self.folder / changed)
        if changed is not None:
            command[1:1] = ["-I", str(self.folder / "src")]
        status, _ = run(command + ["-w", *options], self.original.build)
        return status == 0


class Known:
    """Verdicts of earlier runs that still hold: of these sources, and survivors of these tests."""

    def __init__(self, path, fresh):
        self.path, self.verdicts = path, {}
        self.sources, self.tests = digest(ROOT / "src"), digest(ROOT / "tests")
        if fresh:
            path.unlink(missing_ok=True)
        for line in path.read_text().splitlines() if path.exists() else []:
            row = json.loads(line)
            if row["sources"] == self.sources and (
                    row["verdict"] != "survived" or row["tests"] == self.tests):
                self.verdicts[row["key"]] = row["verdict"]

    def add(self, mutant, verdict):
        self.verdicts[mutant.key] = verdict
        with self.path.open("a") as file:
            file.write(json.dumps({"key": mutant.key, "verdict": verdict, "sources": self.sources,
                                   "tests": self.tests}) + "\n")


KILLED = ("killed", "hung")


class Hunt:
    def __init__(self, known, workers, wanted, same):
        self.known, self.wanted, self.same = known, wanted, same
        self.counted, self.survivors, self.tally = 0, [], {}
        self.idle = queue.Queue()
        for worker in workers:
            self.idle.put(worker)

    def note(self, mutant, verdict, seconds):
        self.tally[verdict] = self.tally.get(verdict, 0) + 1
        self.counted += verdict in KILLED or verdict == "survived"
        if verdict == "survived":
            self.survivors.append(mutant)
        told = f"{mutant.path}:{mutant.line} {verdict} {seconds:.1f} s"
        print(f"[{self.counted}/{self.wanted}] {told}", file=sys.stderr, flush=True)

    def one(self, mutant):
        worker = self.idle.get()
        begun = time.monotonic()
        try:
            return mutant, worker.judge(mutant), time.monotonic() - begun
        finally:
            self.idle.put(worker)

    def run(self, mutants, jobs):
        waiting = iter(mutants)
        with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
            running = set()
            while True:
                while len(running) < jobs and self.counted + len(running) < self.wanted:
                    mutant = next(waiting, None)
                    if mutant is None:
                        break
                    verdict = self.known.verdicts.get(mutant.key)
                    verdict = "equivalent" if mutant.key in self.same else verdict
                    if verdict is not None:
                        self.note(mutant, verdict, 0)
                    else:
                        running.add(pool.submit(self.one, mutant))
                if not running:
                    return
                done, running = concurrent.futures.wait(
                    running, return_when=concurrent.futures.FIRST_COMPLETED)
                for future in done:
                    mutant, verdict, seconds = future.result()
                    self.known.add(mutant, verdict)
                    self.note(mutant, verdict, seconds)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("count", nargs="?", type=int, default=300)
    parser.add_argument("--build", type=Path, required=True, help="where everything is written")
    parser.add_argument("--of", choices=SUBJECTS, default="sdpline", help="the library to change")
    parser.add_argument("-j", "--jobs", type=int, default=1)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--file", default="", help="only files with this in their path")
    parser.add_argument("--list", action="store_true", help="print the mutants and stop")
    parser.add_argument("--fresh", action="store_true", help="forget earlier runs")
    options = parser.parse_args()

    subject = SUBJECTS[options.of]
    mutants = all_mutants(subject, options.file)
    same = equivalents(mutants, "" if options.file else subject.folders)
    random.Random(options.seed).shuffle(mutants)
    if options.list:
        print(*mutants, f"{len(mutants)} mutants", sep="\n")
        return 0
    folder = options.build.resolve() / options.of
    folder.mkdir(parents=True, exist_ok=True)
    known = Known(folder / "results.jsonl", options.fresh)
    original = Original(subject, folder)
    workers = [Worker(original, folder / f"worker{i}") for i in range(options.jobs)]
    for name in subject.programs:
        if workers[0].tested(name, {}) != "survived":
            sys.exit(f"{name} fails without a change, linked as those with one")
    hunt = Hunt(known, workers, options.count, same)
    hunt.run(mutants, options.jobs)

    print(*hunt.survivors, sep="\n")
    killed = sum(hunt.tally.get(verdict, 0) for verdict in KILLED)
    score = 100.0 * killed / hunt.counted if hunt.counted else 0.0
    print(f"{killed} of {hunt.counted} mutants killed ({score:.1f} %), among them "
          f"{hunt.tally.get('hung', 0)} by the time limit; left out: "
          f"{hunt.tally.get('stillborn', 0)} that do not compile, "
          f"{hunt.tally.get('same', 0)} that are the same machine code, "
          f"{hunt.tally.get('equivalent', 0)} that {EQUIVALENT.name} lists")
    return 0 if score >= GOAL else 1


if __name__ == "__main__":
    sys.exit(main())
