#!/usr/bin/env python3
"""Draws the outcome of kesta_bench as a chart.

usage: chart.py OUTCOME.json CHART.svg

Each line is a work: the library's time and those of its peers, on a logarithmic scale. They are the
medians of the tables.
"""
import math
import re
import sys
from xml.sax.saxutils import escape

from table import medians

SHOWN = re.compile(
    r"trace call, .*|a traced line, plain|isMember\(address\), .*|address from .*"
    r"|range from (10\.1\.\*\.\*|2001:db8::/32)|a refused text, .*"
    r"|asking (100000|1000000) ranges, IPv[46]|tokenise, 10000 .*|date plus .*")
COLOURS = ["#0072b2", "#e69f00", "#009e73", "#cc79a7", "#56b4e9", "#b8860b", "#7f4fc9", "#8c564b",
           "#d62728"]
OURS = "#111111"
LEFT, RIGHT, STEP, TOP, WIDTH = 230, 30, 24, 70, 860


def marks(works):
    """A colour for everyone who appears, ours first."""
    peers = dict.fromkeys(who for figures in works.values() for who in figures)
    peers.pop("kesta")
    peers.pop("floor", None)
    colours = {who: COLOURS[i % len(COLOURS)] for i, who in enumerate(peers)}
    return {"kesta": OURS, **colours, "floor": "#999999"}


def text(x, y, content, anchor="start", colour="#333333"):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{colour}">{escape(content)}</text>'


def mark(who, x, y, colour):
    if who == "kesta":
        return f'<circle cx="{x:.1f}" cy="{y:.1f}" r="6" fill="{colour}"/>'
    if who == "floor":
        return f'<path d="M{x:.1f} {y - 7:.1f}v14" stroke="{colour}" stroke-width="3"/>'
    return f'<circle cx="{x:.1f}" cy="{y:.1f}" r="5" fill="none" stroke="{colour}" stroke-width="2.5"/>'


def draw(works):
    figures = [figure for row in works.values() for figure in row.values()]
    low = math.floor(math.log10(min(figures)))
    high = math.ceil(math.log10(max(figures)))
    bottom = TOP + STEP * len(works)

    def place(figure):
        return LEFT + (WIDTH - LEFT - RIGHT) * (math.log10(figure) - low) / (high - low)

    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {bottom + 40}" '
           f'width="{WIDTH}" height="{bottom + 40}" font-family="sans-serif" font-size="12">')
    yield f'<rect width="{WIDTH}" height="{bottom + 40}" fill="#ffffff"/>'
    colours = marks(works)
    for i, (who, colour) in enumerate(colours.items()):
        x, y = 20 + i % 7 * 118, 18 + i // 7 * 20
        yield mark(who, x, y, colour)
        yield text(x + 11, y + 4, who)
    for power in range(low, high + 1):
        x = place(10 ** power)
        yield f'<path d="M{x:.1f} {TOP - 8}V{bottom}" stroke="#dddddd"/>'
        yield text(x, bottom + 16, f"{10 ** power:,}" if power >= 0 else f"{10 ** power:g}", "middle")
    yield text(WIDTH - RIGHT, bottom + 34, "nanoseconds, to the left is faster", "end")
    for i, (work, row) in enumerate(works.items()):
        y = TOP + STEP * i + STEP / 2
        yield text(LEFT - 14, y + 4, work, "end")
        yield f'<path d="M{LEFT} {y:.1f}H{WIDTH - RIGHT}" stroke="#eeeeee"/>'
        for who in sorted(row, key="kesta".__eq__):   # ours on top
            yield mark(who, place(row[who]), y, colours[who])
    yield "</svg>"


def main(outcome, chart):
    works = {work: row for work, row in medians(outcome)[0].items()
             if SHOWN.fullmatch(work) and "kesta" in row and len(row) > 1}
    with open(chart, "w") as file:
        file.writelines(f"{line}\n" for line in draw(works))


if __name__ == "__main__":
    main(*sys.argv[1:])
