#!/usr/bin/env python3
"""Plants files that are laid out wrongly and sees that they, and no others, are named."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import formatting

STYLE = "BasedOnStyle: Google\n"
GOOD = "int fit(int x) { return x; }\n"
BAD = "int fit(int x) {return x;}\n"


class FormattingTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.write(".clang-format", STYLE)
        self.write("simo/fit.cpp", GOOD)

    def write(self, name, text):
        target = self.root / name
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(text, encoding="utf-8")

    def git(self, *arguments):
        subprocess.run(["git", "-C", str(self.root), *arguments], check=True, capture_output=True)

    def check(self):
        return subprocess.run([sys.executable, "-B", formatting.__file__, str(self.root)],
                              capture_output=True, text=True, check=False)

    def test_good_tree_passes(self):
        result = self.check()
        self.assertEqual((result.returncode, result.stdout), (0, "1 files, 0 to be laid out anew\n"))

    def test_wrong_files_are_named_with_the_command_that_mends_them(self):
        self.write("simo/bad.cpp", GOOD + BAD)
        self.write("io/bad.h", BAD)
        result = self.check()
        self.assertEqual(result.returncode, 1)
        self.assertIn("simo/bad.cpp:2: not laid out", result.stdout)
        self.assertIn("clang-format -i io/bad.h simo/bad.cpp\n", result.stdout)
        self.assertNotIn("fit.cpp", result.stdout)

    def test_the_command_mends(self):
        self.write("simo/bad.cpp", BAD)
        command = self.check().stdout.split("To mend them:")[1].splitlines()[0]
        subprocess.run(command.split(), cwd=self.root, check=True)
        self.assertEqual(self.check().returncode, 0)

    def test_results_of_builds_and_other_files_are_not_looked_at(self):
        self.write("build/dev/made.cpp", BAD)
        self.write("simo/notes.txt", BAD)
        self.assertEqual(self.check().returncode, 0)

    def test_a_repository_is_checked_as_far_as_it_is_tracked(self):
        self.git("init")
        self.git("add", "simo/fit.cpp")
        self.write("simo/scratch.cpp", BAD)
        self.assertEqual(self.check().returncode, 0)
        self.git("add", "simo/scratch.cpp")
        self.assertEqual(self.check().returncode, 1)

    def test_a_deleted_file_is_no_fault(self):
        self.git("init")
        self.write("simo/gone.cpp", BAD)
        self.git("add", "simo")
        (self.root / "simo/gone.cpp").unlink()
        self.assertEqual(self.check().returncode, 0)

    def test_nothing_to_check_is_an_error(self):
        (self.root / "simo/fit.cpp").unlink()
        self.assertEqual(self.check().returncode, 2)
        self.write("simo/fit.cpp", GOOD)
        (self.root / ".clang-format").unlink()
        self.assertEqual(self.check().returncode, 2)

    def test_a_style_that_cannot_be_read_is_no_pass(self):
        self.write(".clang-format", "BasedOnStyle: [\n")
        self.assertNotEqual(self.check().returncode, 0)


if __name__ == "__main__":
    unittest.main()
