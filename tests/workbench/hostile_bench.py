"""The built program's workbench over a folder of traps, for tests of what it must refuse."""

import json
import os
import tempfile
import time
import unittest
from pathlib import Path

from bench_program import PATIENCE, Bench

JSON = {"Content-Type": "application/json"}


class HostileBench(unittest.TestCase):
    PROGRAM = ""

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        folder = Path(cls.scratch.name)
        (folder / "secret.txt").write_text("secret")
        results = folder / "results"
        (results / "inner").mkdir(parents=True)
        (results / "page.html").write_text("<script>document.title = 'ran'</script>")
        (results / "inner" / "table.tsv").write_text("a\tb\n")
        study = results / "inner" / "study"
        (study / ".hid").mkdir(parents=True)
        for page in [study / "index.html", study / ".hid" / "page.html", study / "sub.html", results / "inner" / "above.html"]:
            page.write_text("<p>page</p>")
        (study / "made_seed-V1_tavmap.json").write_text("{}")
        (study / "out.html").symlink_to(results / "page.html")
        (results / ".hidden").write_text("hidden")
        (results / "link.txt").symlink_to(folder / "secret.txt")
        (results / "out").symlink_to(folder)
        (results / "alias.tsv").symlink_to(results / "inner" / "table.tsv")
        os.mkfifo(results / "pipe")
        cls.folder = folder
        cls.bench = Bench(cls.PROGRAM, ["results"], folder)
        cls.bench.sign_in()

    @classmethod
    def tearDownClass(cls):
        code = cls.bench.end()
        cls.scratch.cleanup()
        assert code == 0, f"ended with {code}: {cls.bench.said}"

    def assert_refused(self, answer, status):
        self.assertEqual(answer[0], status, answer)
        self.assertIn("message", json.loads(answer[2]), answer)

    def tearDown(self):
        """It still answers; connections of the test may be being closed for a moment."""
        end = time.monotonic() + PATIENCE
        while (status := self.bench.get("/api/start")[0]) in (503, None) and time.monotonic() < end:
            time.sleep(0.05)
        self.assertEqual(status, 200, "it still answers")

    def signed(self, **more):
        return {"Cookie": self.bench.cookie, "X-Tavmap-Token": self.bench.token, **JSON, **more}
