"""Reports and comparisons made from rows that are written out here, and a program's check of hashes."""

import contextlib
import io
import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from xml.etree import ElementTree

import compare
import extra_tables
import figures
import pages
import report
import rows

PROGRAM = os.environ.get("BENCHMARK_PROGRAM", "")
SOLVER_ROW = "Multicollider solve/mixed/63"


def benchmark(name, milliseconds=4.0, label="unit=triangle | hash=00ff", **figures):
    return {"name": f"{name}/iterations:1/manual_time", "label": label,
            "elements": int(name.split("/")[2]), "median_ms": milliseconds,
            "low_ms": 0.9 * milliseconds, "high_ms": 1.1 * milliseconds, **figures}


class InAFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, file, *benchmarks):
        content = {"context": {"date": "2026-01-02", "threads": "4"}, "benchmarks": benchmarks}
        (self.folder / file).write_text(json.dumps(content))

    def run_quietly(self, main, *arguments):
        """The exit code, and what was said."""
        said = io.StringIO()
        before, sys.argv = sys.argv, ["script", *map(str, arguments)]
        try:
            with contextlib.redirect_stderr(said), contextlib.redirect_stdout(said):
                return main(), said.getvalue()
        finally:
            sys.argv = before

    def report(self, *arguments):
        code, _ = self.run_quietly(report.main, self.folder, self.folder, *arguments)
        return code, (self.folder / "report.md").read_text()


class Report(InAFolder):
    def test_rows_become_tables_and_pictures(self):
        self.write("topology.json", benchmark("addDual/grid/1000", 0.5),
                   benchmark("addDual/grid/100000", per_s=2.5e7, B_per_element=12.0),
                   benchmark("addDual/grid/100000/threads:1", 10.0))
        self.write("peers_topology.json",
                   benchmark("addDual/grid/100000/beside:LIB fast", 5.0, other_ms=1.0, ratio=5.0),
                   benchmark("addDual/grid/100000/beside:LIB", 3.0, other_ms=6.0, ratio=0.5))
        _, found = rows.read_folder(self.folder)
        code, text = self.report()
        self.assertEqual(code, 0)
        self.assertIn("| addDual/grid/100000 | 4.00 ms | 10 % | 25.0 M triangles |", text)
        self.assertRegex(text, r"LIB fast \| 4.00 ms \| 1.00 ms \| 5.00 \|.*\*\*behind\*\*")
        self.assertRegex(text, r"LIB \| 4.00 ms \| 6.00 ms \| 0.50 \| the same work \|  \|")
        self.assertIn("| 500 µs | 4.00 ms |  |  |  |  | 2.50 | 12.0 |", report.summary_table(found))
        picture = ElementTree.parse(self.folder / "topology.svg")
        words = [element.text for element in picture.iter() if element.tag.endswith("text")]
        self.assertLessEqual({"addDual", "ns per triangle, by number of triangles", "grid", "LIB fast"},
                             set(words))
        # 500 ns for each of 1000, 40 for 100000, between the 10 and the 500 of the scale
        lines = [element.get("d") for element in picture.iter() if element.get("class") == "o"]
        self.assertIn("M36 34L272 109", lines)

    def test_figures_are_kept_for_the_pages_and_stay_where_they_are_not_measured_again(self):
        for folder in ("bench/results", "docs/pictures"):
            (self.folder / folder).mkdir(parents=True)
        page = self.folder / "docs/benchmarks.md"
        page.write_text("".join(f"<!-- {mark} -->\nold\n<!-- end of {mark} -->\n" for mark in ("machine", "main")))
        beside = benchmark("addDual/grid/100000/beside:LIB", 3.0, other_ms=6.0, ratio=0.5)
        self.write("topology.json", benchmark("addDual/grid/100000", 3.0), beside)
        report.keep_for_docs(self.folder, {"revision": "one", "date": "then"}, rows.read_folder(self.folder)[1])
        self.write("topology.json", benchmark("addDual/grid/100000", 2.0))
        report.keep_for_docs(self.folder, {"revision": "two", "date": "now"}, rows.read_folder(self.folder)[1])
        self.assertIn("| grid, 100 000 | 3.00 ms | LIB | 6.00 ms | 2.00 |", page.read_text())
        self.assertRegex(page.read_text(), "revision: two\n[^<]*measured before: 1 rows, at one on then")
        self.assertIn("2.0  LIB", (self.folder / "docs/pictures/benchmarks.svg").read_text())

    def test_all_kept_figures_have_their_place_on_the_page_of_the_site(self):
        code, _ = self.run_quietly(figures.main, self.folder)
        page = (self.folder / "figures.md").read_text()
        self.assertIsNone(code)
        self.assertNotRegex(page, r"<!-- ([\w-]+) -->\s*<!-- end of \1 -->")
        _, kept = rows.read_kept(Path(figures.__file__).parent / "results/benchmarks.csv")
        self.assertGreater(len(kept), 400)
        self.assertEqual([row.kernel for row in kept if f"`{row.kernel}`" not in page], [])

    def test_starts_and_quoted_figures_have_tables_of_their_own(self):
        self.write("starts.json", benchmark("addDual/start 0/10", 3.0, ratio=0.5),
                   benchmark("addDual/start 64/10", 2.0))
        self.write("topology.json", benchmark("constructDualMesh/torus random/8000000", 100.0),
                   benchmark("populateAdjacentTri/torus random/8000000", 226.6))
        _, found = rows.read_folder(self.folder)
        self.assertIn("| `addDual` | 3.00 ms (0.50) | 2.00 ms | 1.50 |",
                      extra_tables.starts_table(found))
        self.assertIn("random, 8 000 000 | 327 ms | 1.63 s | 0.20 |", extra_tables.quoted_table(found))
        self.assertEqual(extra_tables.small_table(found), "")

    def test_a_failed_row_is_named_and_fails(self):
        wrong = {"name": "addDual/grid/1", "error_occurred": True, "error_message": "wrong hash"}
        self.write("topology.json", wrong)
        code, text = self.report()
        self.assertEqual(code, 1)
        self.assertIn("- addDual/grid/1: wrong hash", text)

    def test_what_is_no_report_is_refused(self):
        (self.folder / "topology.json").write_text('{"context": {}, "benchmarks": [{"name": "x"}]}')
        code, said = self.run_quietly(report.main, self.folder, self.folder)
        self.assertEqual((code, "not named kernel/input/size" in said), (2, True))
        with self.assertRaises(rows.NotRows):  # a page without the mark
            pages.paste(self.folder / "topology.json", "machine", "")

    def test_remarks_stand_beside_rows_that_fit(self):
        (self.folder / "remarks.txt").write_text("# a :: b\nf*/beside:A :: why\n")
        (pattern, text), = rows.read_remarks(self.folder / "remarks.txt")
        self.assertEqual(text, "why")
        self.assertTrue(pattern.fullmatch("f/x (1)/10/beside:A"))
        self.assertFalse(pattern.fullmatch("f/x/10/beside:AB"))


class Compare(unittest.TestCase):
    def line(self, base, change, label="unit=t | hash=1"):
        both = [[rows.parse_row("solver", benchmark("k/i/1", time, text)) for time in times]
                for times, text in ((base, "unit=t | hash=1"), (change, label))]
        return compare.line_of("k/i/1", *both)

    def test_a_change_counts_where_no_rounds_overlap(self):
        self.assertEqual(self.line([4, 5, 6], [8, 9, 10])[1:],
                         ["5.00 ms (4.00 ms – 6.00 ms)", "9.00 ms (8.00 ms – 10.0 ms)", "1.80",
                          "**slower**"])
        self.assertEqual(self.line([8, 9, 10], [4, 5, 6])[4], "faster")
        self.assertEqual(self.line([4, 5, 8], [6, 7, 9])[4], "")
        self.assertEqual(self.line([4], [4], "hash=2")[4], "**other output**")


@unittest.skipUnless(PROGRAM, "the benchmarks are not built")
class Hashes(InAFolder):
    def run_with(self, *arguments):
        file = self.folder / "hashes.txt"
        return subprocess.run([PROGRAM, f"--hashes={file}", "--copy=0", "--alone",
                               "--row-seconds=0", f"--benchmark_filter={SOLVER_ROW}/", *arguments],
                              capture_output=True, text=True, check=False)

    def test_a_missing_hash_and_a_wrong_one_fail_until_the_right_one_is_recorded(self):
        missing = self.run_with()
        self.assertEqual(missing.returncode, 1)
        self.assertIn(f"{SOLVER_ROW}: no hash is recorded", missing.stderr)
        self.assertEqual(self.run_with("--record").returncode, 0)
        self.assertEqual(self.run_with().returncode, 0)
        (self.folder / "hashes.txt").write_text(f"{'0' * 16} {SOLVER_ROW}\n")
        wrong = self.run_with()
        self.assertEqual(wrong.returncode, 1)
        self.assertIn("is not the recorded one", wrong.stderr)


if __name__ == "__main__":
    unittest.main()
