#!/usr/bin/env python3
"""Draws angles in a terminal as they come, JSON lines on standard input, and tells how late each row was.

    instrument | kiv run Tg5.prm - --results angles,trust --format jsonl --quiet | live_chart.py

Rows that carry sent_s, the second of their sending by this machine's clock, have a delay. With --feed the script is
the instrument: it sends the rows of a table at a rate, sent_s added, again and again:

    live_chart.py --feed readings.csv --rate 1000 --seconds 60 |
        kiv run Tg5.prm - --results angles,trust --format jsonl --quiet | live_chart.py
"""

import argparse
import json
import sys
import time

WIDTH = 61  # characters
EVERY = 0.2  # seconds from line to line


def feed(path, rate, seconds, out):
    with open(path) as file:
        names, *rows = file.read().splitlines()
    out.write("sent_s," + names + "\n")
    start = time.time()
    for sent in range(int(rate * seconds)):
        time.sleep(max(0.0, start + sent / rate - time.time()))
        out.write(f"{time.time():.6f},{rows[sent % len(rows)]}\n")
        out.flush()


def chart(row, span):
    """A line with a letter for each angle; their signs turn where they leave the span of degrees."""
    cells = [" "] * WIDTH
    cells[WIDTH // 2] = "|"
    for letter, name in zip("xyz", ("rx_deg", "ry_deg", "rz_deg")):
        if row[name] is not None:
            place = round((row[name] / span + 1) / 2 * (WIDTH - 1))
            cells[min(max(place, 0), WIDTH - 1)] = letter
    return "".join(cells)


def show(lines, out, span):
    delays, shown = [], 0.0
    rows = 0
    for rows, line in enumerate(lines, 1):
        row, now = json.loads(line), time.time()
        if row.get("sent_s") is not None:
            delays.append(now - row["sent_s"])
        if now - shown >= EVERY:
            shown = now
            print(chart(row, span), f"{1000 * delays[-1]:8.1f} ms late" if delays else "", file=out, flush=True)
    print(f"{rows} rows", file=out)
    if delays:
        delays.sort()
        quantile = {share: 1000 * delays[int(share * (len(delays) - 1))] for share in (0.5, 0.95, 1)}
        print("delay in ms: median {:.2f}, 95 % {:.2f}, largest {:.2f}".format(*quantile.values()), file=out)


def main():
    arguments = argparse.ArgumentParser(description="Draws angles as they come.")
    arguments.add_argument("--span", type=float, default=60, help="degrees to either side")
    arguments.add_argument("--feed", metavar="READINGS", help="sends this table's rows instead")
    arguments.add_argument("--rate", type=float, default=1000, help="rows a second")
    arguments.add_argument("--seconds", type=float, default=60)
    given = arguments.parse_args()
    if given.feed:
        feed(given.feed, given.rate, given.seconds, sys.stdout)
    else:
        show(sys.stdin, sys.stdout, given.span)


if __name__ == "__main__":
    main()
