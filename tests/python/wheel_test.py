"""What pip installs works away from the folder that it was built in, with the libraries that came with it."""

import os
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).parents[2]
SCRIPT = """
import tessary as ts
assert ts.demo_mesh(8).triangulate().sample(count=50).point_count > 40
print(open("/proc/self/maps").read())
"""


def test_pip_installs_what_works(tmp_path):
    command = [sys.executable, "-m", "pip", "install", "-q", "--no-build-isolation", "--no-index", "--no-deps",
               "--root-user-action=ignore", "--target", str(tmp_path), str(ROOT)]
    subprocess.run(command, check=True)
    environment = {**os.environ, "PYTHONPATH": str(tmp_path)}
    maps = subprocess.run([sys.executable, "-c", SCRIPT], env=environment, check=True, capture_output=True, text=True,
                          cwd=tmp_path).stdout
    loaded = {Path(line.split()[-1]) for line in maps.splitlines() if "/lib" in line and ".so" in line}
    ours = {path.parent for path in loaded if path.name.startswith(("libtessary", "libkorvane", "libtbb.so"))}
    assert ours == {tmp_path / "tessary"}
