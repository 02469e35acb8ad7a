#!/usr/bin/env python3
"""Prints the outcome of kesta_bench as a table.

usage: table.py OUTCOME.json

A measurement is named "<work>|<who>". A line of the table is one work: the library's own time, and
that time divided by the floor's and by each peer's. Every figure is the median over the
repetitions. The last column holds the figures aimed at, and says which of them were missed.
"""
import json
import re
import sys

# (work, beside whom, what the ratio may be at most); beside "ns" it is the time itself.
AIMS = [
    (r"trace call, tracing off", "ns", 1),
    (r"trace call, tracing off", "spdlog", 2),
    (r"isMember\((address|range)\), IPv.", "POCO", 1 / 20),
    (r"isMember\((address|range)\), IPv.", "libcidr", 1 / 20),
    (r"isMember\((address|range)\), IPv.", "Asio", 3),
    (r"isMember\(address\), IPv6", "libtins", 1),
    (r"range from .*", "POCO", 1),
    (r"range from .*", "libcidr", 1),
    (r"range from 10.*", "Asio", 2),
    (r"range from 2001.*", "Asio", 2),
    (r"a traced line, .*", "floor", 1.1),
    (r"a traced line, .*", "spdlog", 1),
    (r"an entry, tracing on", "floor", 1.25),
    (r"tokenise, .*", "abseil", 1),
    (r"date .*", "floor", 1.1),
]


def medians(path):
    """{work: {who: nanoseconds an item}}, in the order of the program."""
    works = {}
    with open(path) as file:
        measurements = json.load(file)["benchmarks"]
    for measurement in sorted(measurements, key=lambda measurement: measurement["family_index"]):
        if measurement.get("error_occurred"):
            sys.exit(f"{measurement['name']}: {measurement['error_message']}")
        if measurement.get("aggregate_name") == "median":
            work, who = measurement["run_name"].split("|")
            works.setdefault(work, {})[who] = measurement["cpu_time"] / measurement["items"]
    return works


def number(value):
    return f"{value:.3g}" if value < 1000 else f"{value:.0f}"


def judged(work, times):
    ratios = {who: times["kesta"] / time for who, time in times.items()}
    ratios["ns"] = times["kesta"]
    for pattern, who, most in AIMS:
        if re.fullmatch(pattern, work) and who in ratios:
            verdict = "" if ratios[who] <= most else " **missed**"
            yield f"{who} {number(most)}{verdict}"


def main(path):
    print("| work | ns | ÷ floor | ÷ peers | at most |")
    print("|---|---:|---:|---|---|")
    for work, times in medians(path).items():
        ours = times.pop("kesta")
        floor = times.pop("floor", None)
        peers = ", ".join(f"{who} {number(ours / time)}" for who, time in times.items())
        all_times = {"kesta": ours, **times, **({"floor": floor} if floor else {})}
        print(f"| {work.replace('*', chr(92) + '*')} | {number(ours)}",
              number(ours / floor) if floor else "",
              peers, ", ".join(judged(work, all_times)) + " |", sep=" | ")


if __name__ == "__main__":
    main(sys.argv[1])
