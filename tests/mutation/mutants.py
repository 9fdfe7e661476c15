#!/usr/bin/env -S python3 -B
"""Changes the sources one place at a time and looks whether a test fails.

usage: mutants.py --build DIR [COUNT] [--of LIBRARY] [-j N] [--seed N] [--file PART] [--list]
                  [--fresh] [--first-look]

The tree is copied below DIR and built there once (static, -O1, an index beyond an array ends the
program). The library is sdpline, of which COUNT mutants are tried (300), or negotiate, of which all
are. Then each mutant: one changed file is compiled, the tests are linked with it and run until the
first one fails. All mutants of negotiate's functions are compiled at once (see schemata.py), and
for each the tests are run alone. A mutant that does not compile is none; one whose machine code is
that of the original changes nothing and is none either. Those that change code and nothing that a
caller can see are listed in equivalent.txt, each with the reason.
What is known of each mutant is kept in DIR/results.jsonl under its text, so that a run that was
stopped goes on where it was: mutants of a file that changed since are tried again, and those that
survived when a test did. --fresh forgets all.

Exit status 1 when fewer than 95 % are killed.
"""
import argparse
import concurrent.futures
import hashlib
import json
import os
import queue
import random
import shlex
import shutil
import signal
import sys
import time
from pathlib import Path

from commands import digest, must, run, seconds_of_children
from places import ROOT, all_mutants
from schemata import AllAtOnce

GOAL = 95.0
EQUIVALENT = Path(__file__).with_name("equivalent.txt")


class Subject:
    """What is changed, and the programs that are to notice, which link it as a static library."""

    def __init__(self, folders, target, programs, options=(), stages=None):
        self.folders, self.target, self.programs = folders, target, programs
        self.options = options
        # For a subject whose mutants are compiled together: the names of the tests that run first,
        # and of those that run last.
        self.stages = stages


SUBJECTS = {
    "sdpline": Subject(("src/lexer", "src/parser", "src/encoder", "src/copy"), "sdpline_counted",
                       ("tests/sdpline_tests", "tests/inplace_tests")),
    "negotiate": Subject(("src/negotiate",), "sdpline_negotiate", ("tests/negotiate_tests",),
                         ("-DSDPLINE_NEGOTIATE_KIND=STATIC",), 
                         stages=("Negotiate_*", "NegotiateProperty*")),
}

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


class Original:
    """The unchanged tree, built once: its objects, and the commands that made them."""

    def __init__(self, subject, folder):
        self.subject = subject
        self.tree, self.build = folder / "tree", folder / "build"
        self.copy_tree()
        must(["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-Wno-dev",
              "-DCMAKE_BUILD_TYPE=Mutants", "-DCMAKE_C_FLAGS=-O1",
              "-DCMAKE_CXX_FLAGS=-O1 -D_GLIBCXX_ASSERTIONS -fsanitize=bounds "
              "-fsanitize-undefined-trap-on-error",
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
        self.limit = self.time_of_tests() * 5 + 2

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
        begun = seconds_of_children()
        for program in self.subject.programs:
            status, output = run([program, "--gtest_brief=1"], self.build, 600)
            if status != 0:
                sys.exit("the tests fail as they are:\n" + output[-4000:])
        return seconds_of_children() - begun

    def run_tests(self, program, options=(), number=0, limit=None):
        """killed, hung or survived; the limit is in seconds of the processor"""
        limit = limit or self.limit
        # Programs of the build look for shared libraries in their folder.
        libraries = ":".join(str(self.build / part) for part in ("src", "src/sipcore"))
        environment = dict(os.environ, LD_LIBRARY_PATH=libraries, MUTANT=str(number))
        status, _ = run(["prlimit", "--as=4294967296", "--core=0", f"--cpu={int(limit) + 1}",
                         str(program), "--gtest_brief=1", "--gtest_fail_fast", *options],
                        self.build, limit * 20 + 60, environment)
        if status is None or status in (-signal.SIGXCPU, -signal.SIGKILL):
            return "hung"
        return "survived" if status == 0 else "killed"

    def linked(self, name, program, objects):
        """Whether the tests could be linked with these objects in place of the library's."""
        command = [str(program) if w == name else w for w in self.links[name]]
        # The changed objects are linked first, before those of the tests with the same inline
        # functions.
        first = next(i for i, w in enumerate(command) if w.endswith(".o"))
        library = f"lib{self.subject.target}.a"
        archive = next(i for i, w in enumerate(command) if w.endswith(library))
        command[archive:archive + 1] = [each for each in self.compile if each not in objects]
        command[first:first] = [str(made) for made in objects.values()]
        return run(command, self.build)[0] == 0


class Worker:
    def __init__(self, original, folder, all_at_once=None):
        self.original, self.folder, self.all = original, folder, all_at_once
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()

    def judge(self, mutant):
        """killed, hung, survived, stillborn (does not compile), same (no other machine code), or
        unclear: survived in the program that holds all, and may be the same machine code"""
        if self.all is not None and mutant.number in self.all.stillborn:
            return "stillborn"
        if self.all is not None and self.all.holds(mutant):
            tested = self.all.judge(mutant)
            return "unclear" if tested == "survived" else tested
        return self.judge_alone(mutant)

    def judge_alone(self, mutant):
        tested = self.all is not None and mutant.number in self.all.certain
        changed = self.folder / mutant.path
        changed.parent.mkdir(parents=True, exist_ok=True)
        changed.write_text(mutant.mutated)
        try:
            return self.verdict(mutant, tested)
        finally:
            changed.unlink()

    def verdict(self, mutant, tested):
        """Of a mutant that is compiled alone; `tested` is one that survived the tests already."""
        objects = {}
        for name in self.original.users.get(mutant.path, []):
            made = self.folder / Path(name).name
            if not self.compiled(name, made, mutant.path):
                return "stillborn"
            if made.read_bytes() != (self.original.build / name).read_bytes():
                objects[name] = made
        if not objects:
            return "same"
        for name in () if tested else self.original.subject.programs:
            verdict = self.tested(name, objects)
            if verdict != "survived":
                return verdict
        return "same" if self.same_optimised(mutant, objects) else "survived"

    def tested(self, name, objects):
        """What one program makes of the changed objects."""
        program = self.folder / "tests"
        if not self.original.linked(name, program, objects):
            return "stillborn"
        return self.original.run_tests(program)

    def same_optimised(self, mutant, objects):
        """Whether a better compiler sees no difference: a store that nobody reads, for one."""
        made = self.folder / "optimised.o"
        for name in objects:
            original = self.folder / ("original-" + Path(name).name)
            if not original.exists():
                self.compiled(name, original, None, ["-O2"])
            if not self.compiled(name, made, mutant.path, ["-O2"]):
                return False
            if made.read_bytes() != original.read_bytes():
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

    def __init__(self, path, mutants, fresh):
        self.path, self.verdicts = path, {}
        self.sources = {one: hashlib.sha256((ROOT / one).read_bytes()).hexdigest()[:16]
                        for one in {mutant.path for mutant in mutants}}
        self.tests = digest(ROOT / "tests")
        now = {mutant.key: self.sources[mutant.path] for mutant in mutants}
        if fresh:
            path.unlink(missing_ok=True)
        for line in path.read_text().splitlines() if path.exists() else []:
            row = json.loads(line)
            if row["sources"] == now.get(row["key"]) and (
                    row["verdict"] != "survived" or row["tests"] == self.tests):
                self.verdicts[row["key"]] = row["verdict"]

    def add(self, mutant, verdict):
        self.verdicts[mutant.key] = verdict
        with self.path.open("a") as file:
            file.write(json.dumps({"key": mutant.key, "verdict": verdict,
                                   "sources": self.sources[mutant.path],
                                   "tests": self.tests}) + "\n")


KILLED = ("killed", "hung")


class Hunt:
    def __init__(self, known, workers, wanted, same):
        self.known, self.wanted, self.same = known, wanted, same
        self.counted, self.survivors, self.unclear, self.tally = 0, [], [], {}
        self.idle = queue.Queue()
        for worker in workers:
            self.idle.put(worker)

    def note(self, mutant, verdict, seconds):
        self.tally[verdict] = self.tally.get(verdict, 0) + 1
        self.counted += verdict in KILLED or verdict == "survived"
        if verdict == "survived":
            self.survivors.append(mutant)
        if verdict == "unclear":
            self.unclear.append(mutant)
        told = f"{mutant.path}:{mutant.line} {verdict} {seconds:.1f} s"
        print(f"[{self.counted}/{self.wanted}] {told}", file=sys.stderr, flush=True)

    def one(self, mutant, alone):
        worker = self.idle.get()
        begun = time.monotonic()
        try:
            judge = worker.judge_alone if alone else worker.judge
            return mutant, judge(mutant), time.monotonic() - begun
        finally:
            self.idle.put(worker)

    def run(self, mutants, jobs, alone=False):
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
                        running.add(pool.submit(self.one, mutant, alone))
                if not running:
                    return
                done, running = concurrent.futures.wait(
                    running, return_when=concurrent.futures.FIRST_COMPLETED)
                for future in done:
                    mutant, verdict, seconds = future.result()
                    if verdict != "unclear":
                        self.known.add(mutant, verdict)
                    self.note(mutant, verdict, seconds)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("count", nargs="?", type=int,
                        help="how many are tried: 300 of sdpline, all of negotiate")
    parser.add_argument("--build", type=Path, required=True, help="where everything is written")
    parser.add_argument("--of", choices=SUBJECTS, default="sdpline", help="the library to change")
    parser.add_argument("-j", "--jobs", type=int, default=1)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--file", default="", help="only files with this in their path")
    parser.add_argument("--list", action="store_true", help="print the mutants and stop")
    parser.add_argument("--first-look", action="store_true", help="count as survivors of negotiate"
                        " those too whose machine code may be the same")
    parser.add_argument("--fresh", action="store_true", help="forget earlier runs")
    options = parser.parse_args()

    subject = SUBJECTS[options.of]
    mutants = all_mutants(subject, options.file)
    same = equivalents(mutants, "" if options.file else subject.folders)
    random.Random(options.seed).shuffle(mutants)
    if options.list:
        print(*mutants, f"{len(mutants)} mutants", sep="\n")
        return 0
    begun = time.monotonic()
    folder = options.build.resolve() / options.of
    folder.mkdir(parents=True, exist_ok=True)
    known = Known(folder / "results.jsonl", mutants, options.fresh)
    original = Original(subject, folder)
    at_once = None
    if subject.stages is not None:
        at_once = AllAtOnce(original, mutants, folder / "schemata")
    workers = [Worker(original, folder / f"worker{i}", at_once) for i in range(options.jobs)]
    for name in subject.programs:
        if workers[0].tested(name, {}) != "survived":
            sys.exit(f"{name} fails without a change, linked as those with one")
    count = options.count or (300 if at_once is None else len(mutants))
    if at_once is not None:  # those that are compiled alone last
        mutants.sort(key=lambda mutant: not at_once.holds(mutant))
    hunt = Hunt(known, workers, count, same)
    hunt.run(mutants, options.jobs)
    if options.first_look:
        hunt.survivors += hunt.unclear
        hunt.counted += len(hunt.unclear)
    else:
        hunt.run(hunt.unclear, options.jobs, alone=True)

    print(*hunt.survivors, sep="\n")
    killed = sum(hunt.tally.get(verdict, 0) for verdict in KILLED)
    score = 100.0 * killed / hunt.counted if hunt.counted else 0.0
    print(f"{killed} of {hunt.counted} mutants killed ({score:.1f} %), among them "
          f"{hunt.tally.get('hung', 0)} by the time limit; left out: "
          f"{hunt.tally.get('stillborn', 0)} that do not compile, "
          f"{hunt.tally.get('same', 0)} that are the same machine code, "
          f"{hunt.tally.get('equivalent', 0)} that {EQUIVALENT.name} lists; "
          f"{time.monotonic() - begun:.0f} s")
    return 0 if score >= GOAL else 1


if __name__ == "__main__":
    sys.exit(main())
