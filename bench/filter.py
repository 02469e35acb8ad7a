#!/usr/bin/env python3
"""Compares `kesta filter` with grepcidr, as whole processes, on a million lines.

usage: filter.py KESTA [LINES]

Both select lines by the address at their start, or by those anywhere in them, and must select the same
ones. They run in turn; the times are medians of elapsed time, starting and ending the process included.
Memory is the largest resident size of the process, which includes libraries that it shares with others.
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

IPV4 = ["10.1.0.0/16", "192.168.7.0/24"]
IPV6 = ["2001:db8::/32", "fd00:1::/32"]

AGENTS = ["Mozilla/5.0 (X11; Linux x86_64; rv:109.0) Gecko/20100101 Firefox/115.0",
          "Mozilla/5.0 (Windows NT 10.0; Win64; x64) AppleWebKit/537.36 (KHTML, like Gecko) Safari/537.36",
          "Mozilla/5.0 (compatible; a-bot/2.1; +http://www.example.com/bot.html)", "curl/7.88.1"]


def addresses(networks, lines, chance):
    """Half of them in the networks, the others in a neighbour in another part of the address space."""
    networks = [ipaddress.ip_network(network) for network in networks]
    bits = networks[0].max_prefixlen
    for _ in range(lines):
        network = chance.choice(networks)
        address = int(network[0]) | chance.getrandbits(bits - network.prefixlen)
        if chance.random() < 0.5:
            address ^= 1 << (bits - 2)
        yield type(network[0])(address)


def short_log(path, networks, lines):
    """A fixed seed makes the same lines each time."""
    with open(path, "w") as file:
        for address in addresses(networks, lines, random.Random(1)):
            print(address, '- - "GET / HTTP/1.1" 200 512', file=file)


def web_log(path, networks, lines):
    """Like the log of a web server, in its combined format."""
    chance = random.Random(3)
    with open(path, "w") as file:
        for number, address in enumerate(addresses(networks, lines, chance)):
            time_of_day = f"{number // 3600 % 24:02}:{number // 60 % 60:02}:{number % 60:02}"
            print(f'{address} - - [23/Nov/2026:{time_of_day} +0000] "GET /items/{number}?page=1 HTTP/1.1" '
                  f'200 {chance.randrange(100000)} "https://www.example.com/" "{chance.choice(AGENTS)}"',
                  file=file)


def many_networks(path):
    """100,000 networks of 256 addresses, one per line."""
    chance = random.Random(2)
    networks = [f"{chance.randrange(1, 224)}.{chance.randrange(256)}.{chance.randrange(256)}.0/24"
                for _ in range(100000)]
    with open(path, "w") as file:
        file.writelines(network + "\n" for network in networks)
    return networks


def run(command, output, statuses=(0,)):
    with open(output, "wb") as file:
        start = time.perf_counter()
        status = subprocess.run(command, stdout=file, check=False).returncode
        elapsed = time.perf_counter() - start
    if status not in statuses:
        sys.exit(f"{command[0]}: exit status {status}")
    return elapsed


def kilobytes(directory, command):
    """Asks time(1): as a child of this process, the command would count this one's memory, too."""
    report = os.path.join(directory, "memory")
    run(["time", "--format=%M", f"--output={report}", *command], os.devnull)
    return int(content(report))


def content(path):
    with open(path, "rb") as file:
        return file.read()


def compare(work, ours, theirs, at_most, directory=None, statuses=(0,)):
    """A row of times, and with a directory for its report one of memory."""
    commands = (ours, theirs)
    times = ([], [])
    for _ in range(RUNS):
        for command, elapsed in zip(commands, times):
            elapsed.append(run(command, os.devnull, statuses))
    row(work, "ms", *(1000 * statistics.median(elapsed) for elapsed in times), at_most)
    if directory:
        row(f"{work}, memory", "kB", *(kilobytes(directory, command) for command in commands), 1)


def select(directory, work, ours, theirs, lines, at_most, memory=False):
    """Compares two commands, which must select the same lines."""
    outputs = [os.path.join(directory, name) for name in ("ours", "theirs")]
    for output, command in zip(outputs, (ours, theirs)):
        run(command, output)
    selected, wanted = (content(output) for output in outputs)
    if not selected or selected != wanted:
        sys.exit(f"{work}: kesta filter and grepcidr select different lines")
    compare(f"kesta filter, {work}, {lines} lines, {selected.count(10)} selected", ours, theirs,
            at_most, directory if memory else None)


def row(work, unit, ours, theirs, at_most):
    ratio = ours / theirs
    print(f"| {work} | {ours:.0f} {unit} | grepcidr {ratio:.3g} "
          f"| grepcidr {at_most:.3g}{'' if ratio <= at_most else ' **missed**'} |")


def main(kesta, lines=1000000):
    if not shutil.which("grepcidr"):
        sys.exit("grepcidr is not installed: kesta filter is not compared")
    print("| work | figure | ÷ peer | at most |")
    print("|---|---:|---|---|")
    lines = int(lines)
    with tempfile.TemporaryDirectory() as directory:
        log, web, listed = (os.path.join(directory, name) for name in ("log", "web", "list"))
        for family, networks in (("IPv4", IPV4), ("IPv6", IPV6)):
            ours = [kesta, "filter", *(f"-e{network}" for network in networks), log]
            theirs = ["grepcidr", " ".join(networks), log]
            short_log(log, networks, lines)
            select(directory, family, ours, [*theirs, "-x"], lines, 0.5, memory=True)
            select(directory, f"{family} anywhere", [*ours, "-a"], theirs, lines, 1)
        web_log(web, IPV4, lines)
        ours = [kesta, "filter", *(f"-e{network}" for network in IPV4), web]
        theirs = ["grepcidr", " ".join(IPV4), web]
        select(directory, "log of a web server", ours, [*theirs, "-x"], lines, 0.5)
        select(directory, "log of a web server, anywhere", [*ours, "-a"], theirs, lines, 1)
        networks = many_networks(listed)
        short_log(log, networks, lines)
        ours, theirs = ([*command, "-f", listed] for command in ([kesta, "filter"], ["grepcidr", "-x"]))
        compare("kesta filter, a list of 100000 networks", [*ours, os.devnull],
                [*theirs, os.devnull], 1 / 3, statuses=(0, 1))
        select(directory, "IPv4, 100000 networks", [*ours, log], [*theirs, log], lines, 1, memory=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
