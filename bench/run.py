#!/usr/bin/env -S python3 -B
"""Runs the benchmark programs and reports on all of them together. Options of Google Benchmark are
passed to it."""

import argparse
import os
import subprocess
import sys
import tempfile

import machine
import plot
import report
from results import Results

BEGIN = "<!-- measured: written by ./dev bench --document -->"
END = "<!-- measured: end -->"


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, allow_abbrev=False)
    parser.add_argument("--program", action="append", required=True)
    parser.add_argument("--csv", metavar="FILE")
    parser.add_argument("--plot", metavar="FILE.svg")
    parser.add_argument(
        "--document",
        metavar="FILE.md",
        nargs="?",
        const="docs/performance.md",
        help="write the tables between its markers, and a plot in the same folder",
    )
    return parser.parse_known_args()


def measure(program, flags, results):
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.json")
        command = [
            program,
            "--benchmark_repetitions=9",
            "--benchmark_min_time=0.03",
            "--benchmark_enable_random_interleaving=true",
            *flags,
            f"--benchmark_out={out}",
            "--benchmark_out_format=json",
        ]
        print("+", " ".join(command[:-2]), file=sys.stderr, flush=True)
        done = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=False)
        if done.returncode != 0:
            sys.exit(done.stdout + f"{program}: ended with {done.returncode}")
        if os.path.getsize(out) == 0:
            sys.exit("nothing was measured: no benchmark has such a name")
        results.read(out)


def replace_measured(path, text):
    with open(path, encoding="utf-8") as file:
        before, _, rest = file.read().partition(BEGIN + "\n")
    _, found, after = rest.partition(END + "\n")
    if not found:
        sys.exit(f"{path}: lacks the two markers of what is measured")
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"{before}{BEGIN}\n{text}\n{END}\n{after}")


def main():
    options, flags = arguments()
    results = Results()
    first, *others = options.program
    measure(first, flags, results)
    if not any(flag.startswith("--benchmark_filter") for flag in flags):
        for program in others:  # another build, for the threads alone
            measure(program, [*flags, "--benchmark_filter=^threads/"], results)
    text = report.markdown(results)
    print(text)
    if options.csv:
        report.write_csv(results, options.csv)
    if options.plot:
        plot.write_plot(results, options.plot)
    if options.document:
        picture = os.path.splitext(options.document)[0] + ".svg"
        plot.write_plot(results, picture)
        image = f"![Time per byte of decode and encode]({os.path.basename(picture)})"
        replace_measured(options.document, f"{machine.markdown()}\n{image}\n\n{text}")


if __name__ == "__main__":
    main()
