#!/usr/bin/env -S python3 -B
"""Tests the scripts of this folder with given measurements."""

import json
import os
import socket
import tempfile
import unittest
import xml.dom.minidom

import instructions
import machine
import plot
import report
import run
from results import Results


def runs(operation, library, body, times, size, **more):
    return [
        {
            "name": f"{operation}/{library}/{body}",
            "run_type": "iteration",
            "cpu_time": time,
            "bytes": float(size),
            "allocs": 1.0,
            **more,
        }
        for time in times
    ]


def read(benchmarks, **context):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "out.json")
        with open(path, "w", encoding="utf-8") as file:
            json.dump({"context": context, "benchmarks": benchmarks}, file)
        results = Results()
        results.read(path)
        return results


def sample():
    benchmarks = [
        *runs("decode", "sdpline", "240B", [90.0, 100.0, 900.0], 240),
        *runs("decode", "slow", "240B", [600.0], 240),
        *runs("decode", "fast", "240B", [510.0], 240),
        *runs("decode", "sdpline", "1KB", [500.0], 1000),
        *runs("floor", "table", "1KB", [100.0], 1000),
        *runs("decode", "sdpline", "4KB", [3200.0], 4000),
        *runs("encode", "sdpline", "240B", [100.0], 240),
        *runs("encode", "slow", "240B", [390.0], 240, lines=12.0, lost=0.0),
        *runs("encode", "fast", "240B", [50.0], 240, lines=12.0, lost=9.0),
        *runs("tidy", "sdpline", "240B", [121.0], 240),
        *runs("repaired", "sdpline", "240B", [100.0], 240),
        *runs("repair-last", "sdpline", "240B", [300.0], 240),
        *runs("attribute", "sdpline", "x:1", [9000.0], 4000),
    ]
    for threads, rate in ((1, 2e6), (2, 3e6)):
        benchmarks.append(
            {
                "name": f"threads/parallel/1KB/real_time/threads:{threads}",
                "cpu_time": 1.0,
                "threads": threads,
                "items_per_second": rate,
            }
        )
    return read(benchmarks, **{"refused/fast/1KB": "yes"})


class ReportTest(unittest.TestCase):
    def assert_lines(self, text, *lines):
        for line in lines:
            self.assertIn(line, text)

    def test_takes_the_median_of_the_repetitions(self):
        self.assertEqual(sample().get("decode", "sdpline", "240B").time, 100.0)

    def test_compares_with_the_fastest_peer_that_writes_back_what_it_read(self):
        results = sample()
        self.assertEqual(results.fastest_peer("decode", "240B"), ("fast", 510.0))
        self.assertEqual(results.fastest_peer("encode", "240B"), ("slow", 390.0))
        self.assertIsNone(results.fastest_peer("decode", "1KB"))

    def test_says_which_targets_are_held_missed_and_not_measured(self):
        text = report.markdown(sample())
        self.assert_lines(
            text,
            "PASS decode 240B, fastest peer (fast) / ours: 5.10, at least 5",
            "MISS decode 1KB, ours / table pass: 5.00, at most 4",
            "MISS encode 240B, fastest peer (slow) / ours: 3.90, at least 8",
            "MISS time per byte of decode, 4KB / 1KB: 1.60, at most 1.5",
            "not measured: decode 1KB, fastest peer / ours, at least 4.7",
        )

    def test_shows_what_a_repair_costs_in_decodes(self):
        text = report.markdown(sample())
        self.assert_lines(
            text,
            "| tidy, its last line repaired | 300 (1.25) | - | - |",
            "MISS tidy 240B / its decode: 1.21, at most 1.2",
            "PASS repair-last 240B / its decode: 3.00, at most 3",
            "not measured: repair-first 240B / its decode, at most 3",
        )

    def test_marks_what_a_peer_refuses_and_loses(self):
        text = report.markdown(sample())
        self.assert_lines(
            text,
            "fast refuses the body 1KB",
            "50.0 (0.5×) †3/12",
        )

    def test_shows_attributes_and_threads(self):
        text = report.markdown(sample())
        self.assert_lines(
            text,
            "| `a=x:1` | 9,000 | 2.25 | 4.5× |",
            "| parallel, 1KB | 2,000 | 3,000 | 1.50 |",
        )

    def test_reports_a_benchmark_that_failed(self):
        results = read(
            [{"name": "decode/sdpline/1KB", "error_occurred": True, "error_message": "refused"}]
        )
        self.assertIn("Failed: decode/sdpline/1KB: refused", report.markdown(results))

    def test_writes_every_measurement_as_csv(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "out.csv")
            report.write_csv(sample(), path)
            with open(path, encoding="utf-8") as file:
                lines = file.read().splitlines()
        self.assertEqual(len(lines), 14)
        self.assertIn("encode,fast,240B,240,50.0,0.2083,1,12,9,1", lines)

    def test_draws_a_bar_for_each_library(self):
        picture = xml.dom.minidom.parseString(plot.svg(sample()))
        bars = [bar.getAttribute("class") for bar in picture.getElementsByTagName("rect")]
        self.assertEqual(bars.count("ours"), 4)
        self.assertEqual(bars.count("peer"), 3)
        self.assertEqual(bars.count("part"), 1)
        self.assertEqual(bars.count("floor"), 1)

    def test_rewrites_a_document_between_its_markers_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "page.md")
            with open(path, "w", encoding="utf-8") as file:
                file.write(f"before\n{run.BEGIN}\nold\n{run.END}\nafter\n")
            run.replace_measured(path, "new")
            with open(path, encoding="utf-8") as file:
                self.assertEqual(file.read(), f"before\n{run.BEGIN}\nnew\n{run.END}\nafter\n")

    def test_names_the_processor_and_no_host(self):
        text = machine.markdown()
        self.assertIn("| Compiler |", text)
        self.assertNotIn(socket.gethostname(), text.split())


class InstructionsTest(unittest.TestCase):
    def test_reads_back_the_baseline_that_it_writes(self):
        counts = {("decode", "1KB"): 1000, ("encode", "1KB"): 400}
        text = instructions.baseline_text("g++ 12", counts)
        self.assertEqual(instructions.read_baseline(text), ("g++ 12", counts))

    def test_refuses_growth_above_the_bound_alone(self):
        def errors(count):
            return instructions.compare({("decode", "1KB"): count}, {("decode", "1KB"): 1000})[1]

        self.assertEqual(errors(1050), [])
        self.assertEqual(errors(500), [])
        self.assertEqual(errors(1051), ["decode 1KB grew by 5.1%"])

    def test_refuses_what_is_missing_on_either_side(self):
        errors = instructions.compare({("decode", "1KB"): 1}, {("encode", "1KB"): 1})[1]
        self.assertEqual(
            errors,
            ["decode 1KB is not in the baseline", "encode 1KB is in the baseline and not counted"],
        )


class TidyRatios(unittest.TestCase):
    def counts(self, last):
        counts = {(operation, body): 100 for operation in instructions.TIDY_LIMITS for body in
                  instructions.OFFERS}
        counts |= {(instructions.REPAIRED, body): 100 for body in instructions.OFFERS}
        return counts | {("repair-last", "1KB"): last}

    def test_what_costs_more_than_its_limit_is_an_error(self):
        decodes = {("decode", body): 100 for body in instructions.OFFERS}
        lines, errors = instructions.compare_tidied(self.counts(270), decodes)
        self.assertEqual(len(lines), 16)
        self.assertEqual(errors, [])
        _, errors = instructions.compare_tidied(self.counts(271), decodes)
        self.assertEqual(errors, ["repair-last 1KB is 2.71 times its decode, not 2.7"])
        _, errors = instructions.compare_tidied(self.counts(270), decodes | {("decode", "1KB"): 80})
        self.assertEqual(errors, ["tidy 1KB is 1.25 times its decode, not 1.2"])


if __name__ == "__main__":
    unittest.main()
