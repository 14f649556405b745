"""The program among failing disks, kills and limits: it says so in one line, and a file is the old or the new one.

usage: program_test.py [--kills N]
"""

import os
import random
import resource
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

PROGRAM, LAYER = os.environ["TESSARY_PROGRAM"], os.environ["TRIAL_LAYER"]
KILLS = 10

VERBS = {
    "info": "info demo.ply", "validate": "validate demo.ply", "sphere": "sphere demo.ply",
    "triangulate": "triangulate demo.ply -o out.obj", "quads": "quads demo.ply -o out.ply --crease-angle 20",
    "sample": "sample demo.ply --distance 0.05 -o out.ply --maps maps.npz", "view": "view demo.ply -o out.html",
    "voxels": "voxels demo.ply --cell 0.05 -o out.npz", "adjacency": "adjacency demo.ply -o out.npz",
    "triangulate to GLB": "triangulate demo.ply -o out.glb", "demo": "demo --resolution 32 --output out",
    "JSON": "info demo.ply --json", "help": "help quads", "stream": "triangulate demo.ply -o - --format ply",
}


class Case(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = Path(self.folder.name)
        subprocess.run([PROGRAM, "demo", "--resolution", "48", "--output", "made", "--quiet"], cwd=self.path,
                       check=True, stdout=subprocess.DEVNULL)
        (self.path / "made/demo.ply").rename(self.path / "demo.ply")
        subprocess.run(["rm", "-r", "made"], cwd=self.path, check=True)

    def names(self):
        return sorted(entry.name for entry in self.path.iterdir())

    def clear(self):
        subprocess.run("rm -rf -- out* maps*", shell=True, cwd=self.path, check=True)

    def run_program(self, command, fail="", trace="", limit=None):
        environment = dict(os.environ, LD_PRELOAD=LAYER, TRIAL_FAIL=fail, TRIAL_TRACE=trace)
        if not trace:
            del environment["TRIAL_TRACE"]
        return subprocess.run([PROGRAM] + command.split() + ["--quiet"], cwd=self.path, env=environment, text=True, errors="replace",
                              capture_output=True, timeout=120, preexec_fn=limit)

    def expect_failure(self, done, what):
        self.assertEqual(done.returncode, 3, (what, done.stderr))
        self.assertEqual(done.stderr.count("\n"), 1, (what, done.stderr))
        self.assertTrue(done.stderr.startswith("tessary"), (what, done.stderr))


class Disk(Case):
    WRITE = "triangulate demo.ply -o out.ply"

    def trace_of(self, command, fail=""):
        log = Path(self.folder.name + ".log")
        self.addCleanup(lambda: log.unlink(missing_ok=True))
        log.unlink(missing_ok=True)
        self.assertEqual(self.run_program(command, fail, str(log)).returncode, 0)
        steps = []
        for step in log.read_text().split():
            if step not in ("thread", "close") and steps[-1:] != [step]:
                steps.append(step)
        return steps

    def test_bytes_reach_the_disk_before_the_name_and_the_name_before_the_end(self):
        new = ["tmpfile", "write", "fsync", "linkat", "fsync-folder"]
        self.assertEqual(self.trace_of(self.WRITE), new)
        self.assertEqual(self.trace_of(self.WRITE + " --force"), new[:-1] + ["rename", "fsync-folder"])
        self.clear()
        named = ["tmpfile", "create", "write", "fsync"]
        self.assertEqual(self.trace_of(self.WRITE, "tmpfile 0"), named + ["link", "fsync-folder"])
        self.assertEqual(self.trace_of(self.WRITE + " --force", "tmpfile 0"), named + ["rename", "fsync-folder"])
        self.assertEqual(self.trace_of(self.WRITE + " --force --no-sync"), ["tmpfile", "write", "linkat", "rename"])

    def fail_each(self, call, command):
        """Fails the first, second, ... call until one is not made; how many were."""
        for n in range(1, 100):
            self.clear()
            old = "old" if "--force" in command else None
            if old:
                (self.path / "out.ply").write_text(old)
            names = self.names()
            done = self.run_program(command, f"{call} {n}")
            if done.returncode == 0:
                return n - 1
            self.expect_failure(done, f"{call} {n}")
            if call == "fsync-folder":  # the file is there, and whole
                self.assertIn("is written, but its folder cannot be", done.stderr)
                self.assertEqual(len(self.names()), len(names) + (not old))
                continue
            self.assertEqual(self.names(), names, f"{call} {n}")
            if old:
                self.assertEqual((self.path / "out.ply").read_text(), old)
        self.fail("it never ends")

    def test_whatever_fails_leaves_the_old_file(self):
        force = self.WRITE + " --force"
        made = {call: (self.fail_each(call, self.WRITE), self.fail_each(call, force))
                for call in ("write", "fsync", "close", "linkat", "rename", "fsync-folder")}
        self.assertGreater(made.pop("write")[0], 0)
        self.assertEqual(made, {"fsync": (1, 1), "close": (1, 1), "linkat": (1, 2), "rename": (0, 1),
                                "fsync-folder": (1, 1)})


class Kill(Case):
    def test_a_killed_program_leaves_the_old_file_or_the_new_one(self):
        """Only file systems without unnamed temporaries keep a part, under a name that says so."""
        command = "quads demo.ply -o out.ply --force"
        begin = time.perf_counter()
        self.assertEqual(self.run_program(command).returncode, 0)
        whole = time.perf_counter() - begin
        new, generator = (self.path / "out.ply").read_bytes(), random.Random(1)
        ends = {b"old": 0, new: 0}
        for trial in range(KILLS):
            (self.path / "out.ply").write_bytes(b"old")
            program = subprocess.Popen([PROGRAM] + command.split(), cwd=self.path, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
            time.sleep(whole * generator.uniform(0.3, 1.1))
            program.send_signal(signal.SIGKILL)
            program.wait()
            self.assertEqual(self.names(), ["demo.ply", "out.ply"], f"trial {trial}")
            content = (self.path / "out.ply").read_bytes()
            self.assertIn(content, ends, f"trial {trial}: {len(content)} bytes")
            ends[content] += 1
        print(f"{KILLS} kills: {ends[b'old']} old files, {ends[new]} new ones", file=sys.stderr)


class Limits(Case):
    def expect_all_or_nothing(self, done, before, what):
        """Whether the program had what it needs."""
        if done.returncode == 0:
            return True
        self.expect_failure(done, what)
        self.assertEqual(self.names(), before, what)
        return False

    def least_memory(self):
        """What the program needs to begin at all, in pages of a quarter MB."""
        for quarters in range(40, 4000, 4):
            if self.run_program("--version", limit=lambda: self.bound(quarters)).returncode == 0:
                return quarters
        self.fail("the program does not begin")

    @staticmethod
    def bound(quarters):
        resource.setrlimit(resource.RLIMIT_AS, (quarters << 18, quarters << 18))

    def test_too_little_memory_is_told_in_a_line(self):
        least = self.least_memory()
        for verb, command in VERBS.items():
            quarters, done = least, False
            while not done:
                self.clear()
                before = self.names()
                result = self.run_program(command, limit=lambda: self.bound(quarters))
                if verb == "demo" and result.returncode == 3:  # what it had written stays
                    self.clear()
                done = self.expect_all_or_nothing(result, before, f"{verb} in {quarters / 4} MB")
                quarters += max(1, quarters // STEPS)

    def test_too_few_threads_are_told_in_a_line(self):
        for verb, command in VERBS.items():
            for n in range(0, 4):
                self.clear()
                before = self.names()
                done = self.run_program(command + ("" if verb == "help" else " --threads 4"), f"thread {n}")
                if verb == "demo":
                    self.clear()
                self.expect_all_or_nothing(done, before, f"{verb} without thread {n}")


STEPS = 8

if __name__ == "__main__":
    if sys.argv[1:2] == ["--kills"]:
        KILLS, STEPS = int(sys.argv[2]), 60
        del sys.argv[1:3]
    unittest.main()
