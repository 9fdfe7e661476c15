"""The results of sdpline_bench: medians by operation, library and body."""

import json
import statistics
from dataclasses import dataclass, field

OURS = "sdpline"
FLOOR = "floor"


@dataclass
class Measured:
    """One benchmark over its repetitions. Times are CPU time in nanoseconds."""

    times: list = field(default_factory=list)
    rates: list = field(default_factory=list)  # bodies per second, of those with threads
    allocs: float = 0.0
    bytes: int = 0
    lines: int = 0  # of the body, where a peer wrote it back ...
    lost: int = 0  # ... and how many of them it did not write

    @property
    def time(self):
        return statistics.median(self.times)

    @property
    def rate(self):
        return statistics.median(self.rates)

    @property
    def per_byte(self):
        return self.time / self.bytes

    @property
    def spread(self):
        """The fraction of the median within which half of the repetitions lie."""
        quarters = statistics.quantiles(self.times, n=4)
        return (quarters[2] - quarters[0]) / 2 / self.time


class Results:
    def __init__(self):
        self.table = {}  # (operation, library, body) -> Measured
        self.threads = {}  # (serialised or parallel, body, threads) -> Measured
        self.refused = set()  # (peer, body)
        self.failed = []

    def read(self, path):
        with open(path, encoding="utf-8") as file:
            document = json.load(file)
        for key in document["context"]:
            if key.startswith("refused/"):
                self.refused.add(tuple(key.split("/", 2)[1:]))
        for run in document["benchmarks"]:
            if run.get("run_type", "iteration") == "iteration":
                self._add(run)

    def _add(self, run):
        if run.get("error_occurred"):
            self.failed.append(f"{run['name']}: {run.get('error_message', '')}")
            return
        operation, library, body = self._name(run)
        if operation == "threads":
            body = body.split("/")[0]
            entry = self.threads.setdefault((library, body, run["threads"]), Measured())
            entry.rates.append(run["items_per_second"])
            return
        entry = self.table.setdefault((operation, library, body), Measured())
        entry.times.append(run["cpu_time"])
        entry.allocs = run["allocs"]
        entry.bytes = int(run["bytes"])
        entry.lines = int(run.get("lines", 0))
        entry.lost = int(run.get("lost", 0))

    @staticmethod
    def _name(run):
        name = run["name"].split("/repeats:")[0]
        return name.split("/", 2)

    def get(self, operation, library, body):
        return self.table.get((operation, library, body))

    def bodies(self, operation):
        """In the order in which they were measured, by size."""
        found = {}
        for (an_operation, _, body), measured in self.table.items():
            if an_operation == operation:
                found[body] = measured.bytes
        return sorted(found, key=found.get)

    def peers(self):
        names = {
            library for operation, library, _ in self.table if operation in ("decode", "encode")
        }
        return sorted((names | {peer for peer, _ in self.refused}) - {OURS})

    def fastest_peer(self, operation, body):
        """The name and time of the peer. Of peers that print, only those that lose no line."""
        best = None
        for peer in self.peers():
            measured = self.get(operation, peer, body)
            if measured and measured.lost == 0 and (best is None or measured.time < best[1]):
                best = (peer, measured.time)
        return best

    def repetitions(self):
        return max((len(measured.times) for measured in self.table.values()), default=0)

    def spread(self):
        spreads = [each.spread for each in self.table.values() if len(each.times) > 1]
        return statistics.median(spreads) if spreads else 0.0
