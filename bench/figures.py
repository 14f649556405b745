#!/usr/bin/env python3
"""Makes a page of all figures that are kept in bench/results.

usage: figures.py FOLDER

FOLDER gets figures.md, which is bench/figures.md with its tables, and the pictures that it shows.
"""

import argparse
from pathlib import Path

from extra_tables import EXTRA_TABLES
from machine import facts_text
from pages import paste
from plots import pictures_of
from report import peer_table, summary_table
from rows import FAMILIES, read_kept, read_remarks
from scaling import scaling_table

HERE = Path(__file__).resolve().parent


def fill(page, folder):
    facts, rows = read_kept(HERE / "results/benchmarks.csv")
    paste(page, "machine", facts_text(facts))
    paste(page, "libraries", peer_table(rows, read_remarks(HERE / "remarks.txt")))
    for mark, table_of in EXTRA_TABLES.items():
        paste(page, mark, table_of(rows))
    pictures = pictures_of(rows, folder)
    for family in FAMILIES:
        of_family = [row for row in rows if row.family == family]
        if of_family and family != "starts":
            picture = f"![{family}]({family}.svg)\n\n" if family in pictures else ""
            paste(page, family, picture + summary_table(of_family))
    facts, rows = read_kept(HERE / "results/scaling.csv")
    paste(page, "scaling-machine", facts_text(facts))
    paste(page, "scaling", scaling_table(rows))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("folder", type=Path)
    folder = parser.parse_args().folder
    page = folder / "figures.md"
    page.write_text((HERE / "figures.md").read_text().replace("](../docs/", "]("))  # where the guides are
    fill(page, folder)


if __name__ == "__main__":
    main()
