#!/usr/bin/env python3
"""Prints the outcome of kesta_bench as a table.

usage: table.py OUTCOME.json

A measurement is named "<work>|<who>". A line of the table is one work: the library's own time, and
that time divided by the floor's and by each peer's, and how often it allocates memory. Every figure
is the median over the repetitions. The last column holds the figures aimed at, and says which of
them were missed.
"""
import json
import re
import sys

# (work, contender, the largest ratio that is good); for "ns" it is the time itself, for
# "allocations" their number.
AIMS = [
    (r"trace call, tracing off", "ns", 1),
    (r"trace call, tracing off", "spdlog", 2),
    (r"isMember\((address|range)\), IPv.", "POCO", 1 / 20),
    (r"isMember\((address|range)\), IPv.", "libcidr", 1 / 20),
    (r"isMember\(address\), IPv4", "Asio", 1.5),
    (r"isMember\(range\), IPv.|isMember\(address\), IPv6", "Asio", 3),
    (r"isMember\(address\), IPv6", "libtins", 1),
    (r"range from .*", "POCO", 1),
    (r"range from 10\..*|isMember.*|asking.*|trace call.*", "allocations", 0),
    (r"range from 2001.*", "allocations", 1),
    (r"range from 10\.1\.\*\.\*", "libcidr", 1),
    (r"range from 10\.1\.\*\.\*", "Asio", 1),
    (r"range from 2001:db8::/32", "libcidr", 1.15),
    (r"range from 2001:db8::/32", "Asio", 1.8),
    (r"range from 10\.1\.2\.3", "Asio twice", 1),
    (r"a refused text, .*", "ns", 5000),
    (r"a refused text, .*", "POCO", 1.3),
    (r"building .*", "std::sort", 3),
    (r"asking 100000 ranges, IPv4.*", "ns", 40),
    (r"asking 100000 ranges, IPv6.*", "ns", 80),
    (r"asking 1000000 ranges, IPv4.*", "ns", 100),
    (r"asking 1000000 ranges, IPv6.*", "ns", 200),
    (r"asking 100000 ranges, .*", "std::map", 1),
    (r"asking 100000 ranges, .*", "Boost.ICL", 1),
    (r"a traced line, .*", "floor", 1.05),
    (r"a traced line, .*", "spdlog", 1),
    (r"an entry, tracing on", "floor", 1.2),
    (r"tokenise, .*", "abseil", 1),
    (r"date .*", "floor", 1.1),
]

# The same for the bytes per range in a set.
BYTE_AIMS = [
    (r".* IPv4.*", "bytes", 32),
    (r".* IPv6.*", "bytes", 64),
]


def medians(path):
    """Three dictionaries {work: {who: figure}}, in the order of the program: nanoseconds per item,
    bytes per range, and allocations."""
    times, sizes, allocations = {}, {}, {}
    with open(path) as file:
        measurements = json.load(file)["benchmarks"]
    for measurement in sorted(measurements, key=lambda measurement: measurement["family_index"]):
        if measurement.get("error_occurred"):
            sys.exit(f"{measurement['name']}: {measurement['error_message']}")
        if measurement.get("aggregate_name") == "median":
            work, who = measurement["run_name"].split("|")
            who = who.split("/")[0]   # and not how often it was measured
            times.setdefault(work, {})[who] = measurement["cpu_time"] / measurement["items"]
            if measurement.get("bytes") and who != "std::sort":   # which is no set
                sizes.setdefault(work.replace("building ", "").replace(", each", ""),
                                 {})[who] = measurement["bytes"]
            made = None if work.startswith("building") else int(measurement["allocations"])
            allocations.setdefault(work, {})[who] = made   # a set's preparation allocates, too
    return times, sizes, allocations


def number(value):
    if value is None:
        return ""
    return f"{value:.3g}" if value < 1000 else f"{value:.0f}"


def judged(work, ratios, aims):
    for pattern, who, most in aims:
        ratio = ratios.get("÷ floor" if who == "floor" else who)
        if re.fullmatch(pattern, work) and ratio is not None:
            verdict = "" if ratio <= most else " **missed**"
            yield f"{who} {number(most)}{verdict}"


def print_table(works, unit, aims, allocations=None):
    columns = [unit] + (["allocations"] if allocations else []) + ["÷ floor"]
    print(f"| work | {' | '.join(columns)} | ÷ peers | at most |")
    print(f"|---|{'---:|' * len(columns)}---|---|")
    for work, figures in works.items():
        if "kesta" not in figures:   # left out by a filter
            continue
        ours = figures["kesta"]
        ratios = {who: ours / figure for who, figure in figures.items()}
        row = {unit: ours, "÷ floor": ratios.pop("floor", None)}
        if allocations:
            row["allocations"] = allocations[work]["kesta"]
        peers = ", ".join(f"{who} {number(ratio)}" for who, ratio in ratios.items() if who != "kesta")
        cells = [work.replace("*", r"\*"), *(number(row[column]) for column in columns), peers,
                 ", ".join(judged(work, ratios | row, aims))]
        print(f"| {' | '.join(cells)} |")


def main(path):
    times, sizes, allocations = medians(path)
    print_table(times, "ns", AIMS, allocations)
    if sizes:
        print()
        print_table(sizes, "bytes", BYTE_AIMS)


if __name__ == "__main__":
    main(sys.argv[1])
