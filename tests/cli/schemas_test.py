"""Holds real reports of every verb, and of every kind of failure, against the schemas that are installed."""

import json
import os
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path

import jsonschema

PROGRAM, FOLDER = os.environ["TESSARY_PROGRAM"], Path(os.environ["TESSARY_SCHEMAS"])
SCHEMAS = {path.stem: json.loads(path.read_text()) for path in FOLDER.glob("*.json")}

FILES = {
    "roof.obj": "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\ng top\nf 1/1 2/1 3/1 4/1\n",
    "cloud.ply": "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\nproperty float z\n"
                 "property uchar \x1b[m\nend_header\n1e38 0 0 1\n",
    "far.obj": "v -3e38 0 0\nv 3e38 0 0\nv 0 1 0\nf 1 2 3\n",
    "turned.obj": "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 -1 0\nf 1 2 3\nf 1 2 4\n",
    "empty.obj": "", "cut.ply": "ply\n", "torn.obj": "v 0 0 0\nf 1 2 3\n", "nan.obj": "v nan 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
}

REPORTS = [
    "info roof.obj", "info cloud.ply", "validate roof.obj", "validate turned.obj", "sphere roof.obj", "sphere far.obj",
    "triangulate roof.obj -o a.ply --maps a.npz", "quads roof.obj -o b.obj --crease-angle 30",
    "sample roof.obj -d 0.1 -o c.ply", "sample roof.obj -n 1 -o c.npz --maps c.json", "voxels roof.obj --cell 10% -o d.ply",
    "adjacency roof.obj -o e.json", "view roof.obj turned.obj -o f.html", "demo --resolution 8 -o demo", "help",
    "info roof.obj cloud.ply turned.obj", "triangulate roof.obj turned.obj -o out/ --jobs 2",
]

FAILURES = {
    "": "usage", "fold roof.obj": "usage", "info": "usage", "voxels roof.obj -o x.ply --cell 0": "usage",
    "quads roof.obj -o x.ply --crease-property top": "usage", "info none.obj": "not-found", "info .": "is-folder",
    "info empty.obj": "empty", "validate cut.ply": "malformed", "sphere torn.obj": "malformed",
    "triangulate roof.obj -o none/x.ply": "no-folder", "triangulate roof.obj -o turned.obj": "exists",
    "triangulate nan.obj -o x.ply": "point-not-finite", "quads turned.obj -o x.ply": "same-direction",
    "view none.obj -o x.html": "not-found", "demo -o roof.obj": "unwritable",
}


def checked(document):
    """The document, once its schema accepts it, and refuses it with more or less in it."""
    schema = SCHEMAS["failure" if "error" in document else document["verb"]]
    validator = jsonschema.Draft202012Validator(schema)
    validator.validate(document)
    for field in schema["required"]:
        assert not validator.is_valid({key: value for key, value in document.items() if key != field}), field
    assert not validator.is_valid({**document, "another": 1})
    return document


class Reports(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        for name, text in FILES.items():
            (Path(self.folder.name) / name).write_text(text)

    def run_program(self, line):
        return subprocess.run([PROGRAM, *line.split(), "--json"], cwd=self.folder.name, capture_output=True, text=True,
                              timeout=600)

    def test_every_report_is_what_its_schema_says(self):
        verbs = set()
        for line in REPORTS:
            ended = self.run_program(line)
            self.assertEqual(ended.returncode, 0, ended.stderr)
            several = ended.stdout.startswith('{"')
            for text in ended.stdout.splitlines() if several else [ended.stdout]:
                verbs.add(checked(json.loads(text))["verb"])
        self.assertEqual(verbs | {"failure"}, set(SCHEMAS))
        self.assertEqual(verbs, {verb["name"] for verb in json.loads(self.run_program("help").stdout)["verbs"]})

    def test_every_failure_is_told_on_one_line(self):
        for line, code in FAILURES.items():
            ended = self.run_program(line)
            document = checked(json.loads(ended.stdout))
            error = document["error"]
            self.assertEqual((error["code"], error["exit_code"]), (code, ended.returncode), line)
            self.assertEqual(ended.stdout.count("\n"), 1)
            self.assertTrue(ended.stderr.splitlines()[-1].endswith(": " + error["message"]), ended.stderr)

    def test_failures_say_where(self):
        for line, place in (("sphere torn.obj", {"line": 2}), ("validate cut.ply", {"line": 2}),
                            ("triangulate nan.obj -o x.ply", {"element": "point", "index": 0})):
            error = json.loads(self.run_program(line).stdout)["error"]
            self.assertLessEqual(place.items(), error["place"].items(), line)
            self.assertEqual(error["file"], line.split()[1])

    def test_so_is_the_end_by_a_signal(self):
        with subprocess.Popen([PROGRAM, "info", "-", "--json"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True) as program:
            program.stdin.write("v 0 0 0\n")
            program.stdin.flush()
            while b"tessary" not in Path(f"/proc/{program.pid}/cmdline").read_bytes() or \
                    not int(next(line for line in Path(f"/proc/{program.pid}/status").read_text().splitlines()
                                 if line.startswith("SigCgt")).split()[1], 16) & 1 << (signal.SIGINT - 1):
                pass
            program.send_signal(signal.SIGINT)
            document = checked(json.loads(program.stdout.read()))
        self.assertEqual(document["error"]["code"], "interrupted")


if __name__ == "__main__":
    unittest.main()
