#!/usr/bin/env python3
"""Sets `kesta filter` against grepcidr, as whole processes, on a million lines of each family.

usage: filter.py KESTA [LINES]

Both select lines by the address at their start, and must select the same ones. They run in turn;
the times are medians of what the process and its start and end take on the clock. Memory is the
most that a process had in use, with the libraries that it shares with others.
"""
import ipaddress
import os
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

RUNS = 9

# (family, our ranges, the same as grepcidr takes them, where half of the addresses lie)
FAMILIES = [
    ("IPv4", ["-e10.1.*.*", "-e192.168.7.*"], ["10.1.0.0/16 192.168.7.0/24"],
     ["10.1.0.0/16", "192.168.7.0/24"]),
    ("IPv6", ["-e2001:db8::/32", "-efd00:1:*"], ["2001:db8::/32 fd00:1::/32"],
     ["2001:db8::/32", "fd00:1::/32"]),
]


def generate(path, networks, lines):
    """Lines as an access log has them; a fixed seed makes the same ones each time."""
    chance = random.Random(1)
    networks = [ipaddress.ip_network(network) for network in networks]
    bits = networks[0].max_prefixlen
    with open(path, "w") as file:
        for _ in range(lines):
            network = chance.choice(networks)
            address = int(network[0]) | chance.getrandbits(bits - network.prefixlen)
            if chance.random() < 0.5:
                address ^= 1 << (bits - 2)   # a neighbour in another part of the address space
            print(type(network[0])(address), '- - "GET / HTTP/1.1" 200 512', file=file)


def many_ranges(directory):
    """100,000 ranges of 256 addresses, in files as each of the two reads them."""
    chance = random.Random(2)
    networks = [f"{chance.randrange(1, 224)}.{chance.randrange(256)}.{chance.randrange(256)}."
                for _ in range(100000)]
    paths = [os.path.join(directory, name) for name in ("ranges", "networks")]
    for path, end in zip(paths, ("*", "0/24")):
        with open(path, "w") as file:
            file.writelines(f"{network}{end}\n" for network in networks)
    return [["-f", path] for path in paths] + [[network + "0/24" for network in networks]]


def run(command, output):
    with open(output, "wb") as file:
        start = time.perf_counter()
        status = subprocess.run(command, stdout=file, check=False).returncode
        elapsed = time.perf_counter() - start
    if status != 0:
        sys.exit(f"{command[0]}: exit status {status}")
    return elapsed


def kilobytes(directory, command):
    """Asks time(1), which is small: a process counts as its own what its parent had in use."""
    report = os.path.join(directory, "memory")
    run(["time", "--format=%M", f"--output={report}", *command], os.devnull)
    return int(content(report))


def content(path):
    with open(path, "rb") as file:
        return file.read()


def compare(directory, kesta, lines, family, ranges, prefixes, networks):
    path, ours, theirs = (os.path.join(directory, name) for name in ("lines", "ours", "theirs"))
    generate(path, networks, lines)
    commands = {ours: [kesta, "filter", *ranges, path], theirs: ["grepcidr", "-x", *prefixes, path]}
    for output, command in commands.items():
        run(command, output)
    selected = content(ours)
    if not selected or selected != content(theirs):
        sys.exit(f"{family}: kesta filter and grepcidr select different lines")

    times = {output: [] for output in commands}
    for _ in range(RUNS):
        for output, command in commands.items():
            times[output].append(run(command, os.devnull))
    work = f"kesta filter, {family}, {lines} lines, {selected.count(10)} selected"
    row(work, "ms", *(1000 * statistics.median(times[output]) for output in commands))
    row(f"{work}, memory", "kB", *(kilobytes(directory, command) for command in commands.values()))


def row(work, unit, ours, theirs):
    ratio = ours / theirs
    print(f"| {work} | {ours:.0f} {unit} | grepcidr {ratio:.3g} "
          f"| grepcidr 1{'' if ratio <= 1 else ' **missed**'} |")


def main(kesta, lines=1000000):
    if not shutil.which("grepcidr"):
        sys.exit("grepcidr is not installed: kesta filter is not compared")
    print("| work | figure | ÷ peer | at most |")
    print("|---|---:|---|---|")
    with tempfile.TemporaryDirectory() as directory:
        for family in FAMILIES + [("IPv4, 100000 ranges", *many_ranges(directory))]:
            compare(directory, kesta, int(lines), *family)


if __name__ == "__main__":
    main(*sys.argv[1:])
