"""The manual page and the completions that are made of the program's tables, as shells take them."""

import json
import os
import subprocess
import tempfile
import unittest
from pathlib import Path
from shutil import which

PROGRAM, FOLDER = os.environ["TESSARY_PROGRAM"], Path(os.environ["TESSARY_SHELL"])
TABLES = json.loads(subprocess.run([PROGRAM, "help", "--json"], capture_output=True, check=True).stdout)
VERBS = {verb["name"] for verb in TABLES["verbs"]}

BASH = """source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _tessary; printf '%s\\n' "${COMPREPLY[@]}" """

# A shell in a terminal of its own, where Tab is pressed behind a line until something is shown.
ZSH = """zmodload zsh/zpty; zpty it zsh -f -i; zpty -w it "PROMPT= fpath=($1 \\$fpath); autoload -Uz compinit; compinit -D -u;
zstyle ':completion:*' list-grouped false; LISTMAX=0; print ready"
zpty -r it line '*ready*ready*'; zpty -w -n it "$2"$'\\t\\t'; zpty -r it line "*$3*" """


def bash(*words):
    """What Tab offers behind these words."""
    made = subprocess.run(["bash", "-c", BASH, "bash", FOLDER / "tessary", *words], capture_output=True, text=True,
                          check=True)
    assert not made.stderr, made.stderr
    return set(made.stdout.split())


class Bash(unittest.TestCase):
    def test_completes_verbs_options_and_values_from_the_tables(self):
        self.assertEqual(bash("tessary", ""), VERBS)
        self.assertEqual(bash("tessary", "tri"), {"triangulate"})
        self.assertEqual(bash("tessary", "help", "tri"), {"triangulate"})
        for verb in TABLES["verbs"]:
            names = {name for option in verb["options"] for name in option["names"] if name.startswith("--")}
            self.assertLessEqual(names, bash("tessary", verb["name"], "--"))
            for option in verb["options"]:
                if option["choices"]:
                    self.assertEqual(bash("tessary", verb["name"], option["names"][0], ""), set(option["choices"]))
        self.assertEqual(bash("tessary", "triangulate", "--format", "=", "ply-a"), {"ply-ascii"})
        self.assertEqual(bash("tessary", "sample", "--seed", ""), set())

    def test_completes_files_with_blanks_in_their_names(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("roof top.obj", "roof.ply"):
                (Path(folder) / name).touch()
            self.assertEqual(bash("tessary", "info", f"{folder}/roof"),
                             {f"{folder}/roof", "top.obj", f"{folder}/roof.ply"})


class Others(unittest.TestCase):
    @unittest.skipUnless(which("fish"), "fish is not installed")
    def test_fish_completes_verbs_and_options(self):
        def fish(line):
            command = f"source {FOLDER / 'tessary.fish'}; complete -C '{line}'"
            made = subprocess.run(["fish", "-N", "-c", command], capture_output=True, text=True, check=True)
            return {each.split("\t")[0] for each in made.stdout.splitlines()}
        self.assertLessEqual(VERBS, fish("tessary "))
        self.assertEqual(fish("tessary triangulate --form"), {"--format"})
        self.assertEqual(fish("tessary triangulate --format ply-"), {"ply-ascii", "ply-big"})

    @unittest.skipUnless(which("zsh"), "zsh is not installed")
    def test_zsh_completes_verbs_and_values(self):
        for line, shown in (("tessary ", "triangulate*-- Split polygons"),
                            ("tessary triangulate --format ply-", "ply-big")):
            subprocess.run(["zsh", "-f", "-c", ZSH, "zsh", FOLDER, line, shown], check=True, timeout=120)

    @unittest.skipUnless(which("man"), "man is not installed")
    def test_the_manual_page_has_every_option_and_no_warnings(self):
        made = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", FOLDER / "tessary.1"], capture_output=True,
                              text=True, check=True, env={**os.environ, "MANWIDTH": "1000", "LC_ALL": "C.UTF-8"})
        self.assertEqual(made.stderr, "")
        for verb in TABLES["verbs"]:
            self.assertIn(f"tessary {verb['name']}", made.stdout)
            for option in verb["options"]:
                self.assertIn(" ".join(option["description"].split()), " ".join(made.stdout.split()))


if __name__ == "__main__":
    unittest.main()
