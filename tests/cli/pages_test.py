"""The commands on the pages of the documentation, in blocks marked ```sh, do what they say: nothing fails."""

import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

PAGES = sorted((Path(__file__).parents[2] / "docs").glob("*.md"))
PROGRAM = Path(os.environ["TESSARY_PROGRAM"])


class Pages(unittest.TestCase):
    def test_commands(self):
        environment = {**os.environ, "PATH": f"{PROGRAM.parent}:{os.environ['PATH']}"}
        blocks = {page.name: re.findall(r"^```sh\n(.*?)^```", page.read_text(), re.DOTALL | re.MULTILINE) for page in PAGES}
        self.assertGreater(sum(map(len, blocks.values())), 4)
        for name, commands in blocks.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                script = "tessary demo --quiet --resolution 16 -o demo >/dev/null && cp demo/demo.obj roof.obj\n"
                ended = subprocess.run(["bash", "-e", "-c", script + "".join(commands)], cwd=folder, env=environment,
                                       capture_output=True, text=True, check=False)
                self.assertEqual(ended.returncode, 0, ended.stderr)


if __name__ == "__main__":
    unittest.main()
