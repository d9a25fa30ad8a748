#!/usr/bin/env python3
"""Prints one table of ratios from what Google Benchmark measured: table.py RESULTS.json..."""

import json
import sys

results = {}
for path in sys.argv[1:]:
    with open(path, encoding="utf-8") as file:
        for entry in json.load(file)["benchmarks"]:
            if entry.get("aggregate_name") == "median":
                results[entry["run_name"].replace("/real_time", "")] = entry


def cost(name):
    """Nanoseconds: of the processor where nothing waits, else of the clock."""
    entry = results[name]
    waits = name.startswith(("save", "after", "beside", "threads", "host"))
    return entry["real_time" if waits else "cpu_time"]


def ratio(one, other):
    return cost(one) / cost(other)


def growth():
    """A million pending events to ten, without what the map's own searches cost more."""
    many, few = "/1000000/iterations:100000", "/10/iterations:100000"
    searches = cost("pending/floor" + many) - cost("pending/floor" + few)
    return (cost("pending/component" + many) - searches) / cost("pending/component" + few)


def per_parameter(count):
    return (cost(f"parameters/{count}") - cost("parameters/4")) / (count - 4)


def percentile(name):
    return results[name]["p99_us"]


after_many, after_none = "after/1000000/iterations:1000", "after/0/iterations:1000"
writes = {
    "durable save to the raw transaction": ("save/ts", "save/raw", 1.15),
    "durable save to one row a commit": ("save/ts", "save/row-by-row", None),
    "save after a million events to the first": (after_many, after_none, 1.1),
    "save beside another writer to alone": ("beside/writer", "save/ts", None),
    "save beside a reader to alone": ("beside/reader", "save/ts", None),
    "line of the default logger to a raw line": ("line/logger", "line/raw", None),
}
hosts = {
    "save on a file to the rows alone": ("host/file", "host/file-raw", 1.2),
}
rows = [
    ("event: component to the obvious way", ratio("event/component", "event/obvious"), 0.3),
    ("event: component to the floor", ratio("event/component", "event/floor"), 3),
    ("event: allocations", results["event/component"]["allocations"], 24),
    ("event, the obvious way: allocations", results["event/obvious"]["allocations"], None),
    ("call while TS is unsupported to its two lines", ratio("unsupported/component", "unsupported/lines"), 1.3),
    ("event among 1,000,000 pending to among 10", growth(), 1.1),
    ("parameter of 10,000 to parameter of 1,000", per_parameter(10000) / per_parameter(1000), 1.1),
    ("call of four threads to call of one", 4 * ratio("threads/threads:4", "threads/threads:1"), None),
]


def print_heading(what):
    print(f"{what:48} {'Ratio':>8} {'Target':>8} {'p99 of both, µs':>20}")


def print_writes(writes):
    for what, (one, other, target) in writes.items():
        both = f"{percentile(one):.1f}, {percentile(other):.1f}"
        print(f"{what:48} {ratio(one, other):8.2f} {target or '':>8} {both:>20}")


print_heading("What")
for what, value, target in rows:
    print(f"{what:48} {value:8.2f} {target or '':>8}")
print_writes(writes)
print_heading("What a host pays, through the exported surface")
print_writes(hosts)
processor = results["host/file"]["cpu_time"] / results["host/file-raw"]["cpu_time"]
print(f"{'save on a file: processor time':48} {processor:8.2f}")
for name in ("event/component", "execution", "bring-up", "save/ts", "host/file"):
    print(f"{name}: {cost(name) / 1000:.2f} µs")
