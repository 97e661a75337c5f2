#!/usr/bin/env python3
"""Runs over the built program's server: started, watched, cancelled, resumed, and found by a restarted workbench.

Usage: runs_test.py PROGRAM
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from bench_program import Bench, wait_until

PROGRAM = ""
EXAMPLE = Path(__file__).resolve().parents[2] / "examples" / "oneback-small"
ENDED = ["done", "failed", "cancelled", "interrupted"]


class Runs(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.TemporaryDirectory()
        self.folder = Path(self.scratch.name)
        shutil.copytree(EXAMPLE, self.folder / "study")
        self.request = self.folder / "study" / "study.toml"
        example = subprocess.run([PROGRAM, "run", "--example"], capture_output=True, text=True, check=True).stdout
        self.request.write_text(example)

    def tearDown(self):
        self.scratch.cleanup()

    def bench(self, *more):
        bench = Bench(PROGRAM, [self.request, *more], self.folder)
        bench.sign_in()
        return bench

    def start(self, bench):
        place = {"folder": "study", "path": self.request.name}
        return bench.post("/api/runs", {"request": place})

    def run_of(self, bench):
        runs = bench.json("/api/runs")["runs"]
        self.assertEqual(len(runs), 1)
        return runs[0]

    def wait_for(self, bench, *states):
        return wait_until(lambda: (run := self.run_of(bench))["state"] in states and run, f"the run is {states}")

    def test_a_run_is_done_and_its_results_are_listed(self):
        with self.bench() as bench:
            self.assertEqual(self.start(bench)[0], 201)
            run = self.wait_for(bench, *ENDED)
            self.assertEqual((run["state"], run["progress"]), ("done", 1), run)
            self.assertTrue(run["outputs"]["report"])
            outputs = run["outputs"]
            path = "/".join(part for part in [outputs["path"], outputs["report"]] if part)
            self.assertEqual(bench.get(f"/files/{outputs['folder']}/{path}")[0], 200)
            listed = bench.json(f"/api/results/list?folder={outputs['folder']}&path={outputs['path']}")
            self.assertTrue(listed["requests"][0]["references"])
            self.assertNotIn("problem", listed["requests"][0])
            self.assertEqual(bench.post(f"/api/runs/{run['id']}/resume", {})[0], 409)
            self.assertEqual(bench.post(f"/api/runs/{run['id']}/cancel", {})[0], 409)

    def test_a_cancelled_run_is_resumed(self):
        with self.bench() as bench:
            self.start(bench)
            self.assertEqual(self.start(bench)[0], 409)
            self.assertEqual(bench.post("/api/runs/1/cancel", {})[0], 204)
            run = self.wait_for(bench, *ENDED)
            self.assertEqual(run["state"], "cancelled", run)
            self.assertEqual(bench.post("/api/runs/1/resume", {})[0], 204)
            self.assertEqual(self.wait_for(bench, "done", "failed")["state"], "done")
            self.assertEqual(bench.post("/api/runs/2/cancel", {})[0], 404)

    def test_a_restarted_workbench_finds_interrupted_runs(self):
        with self.bench() as bench:
            self.start(bench)
            self.wait_for(bench, "running")
            self.assertEqual(bench.end(), 0)
        with self.bench() as bench:
            self.assertEqual(self.run_of(bench)["state"], "interrupted")
            self.assertEqual(bench.post("/api/runs/1/resume", {})[0], 204)
            self.assertEqual(self.wait_for(bench, "done", "failed")["state"], "done")

    def test_control_c_interrupts_runs_as_well(self):
        with self.bench() as bench:
            self.start(bench)
            run = self.wait_for(bench, "running", "done")
            wait_until(lambda: self.run_of(bench)["progress"] > 0, "it has begun")
            self.assertEqual(bench.press_control_c(), 0)
        with self.bench() as bench:
            self.assertEqual(self.run_of(bench)["state"], "interrupted", run)

    def test_a_failed_run_says_why(self):
        with self.bench() as bench:
            text = self.request.read_text()
            (self.folder / "study" / "bad.toml").write_text(text.replace("[settings]", "[settings]\nnonsense = 1", 1))
            answer = bench.post("/api/runs", {"request": {"folder": "study", "path": "bad.toml"}})
            self.assertEqual(answer[0], 400, answer)
            self.assertIn(b"nonsense", answer[2])

    def test_nothing_is_written_elsewhere(self):
        with self.bench() as bench:
            elsewhere = self.folder / "elsewhere"
            text = self.request.read_text()
            lines = [line for line in text.splitlines() if not line.startswith(("folder", "work_folder"))]
            (self.folder / "study" / "away.toml").write_text(f'folder = "{elsewhere}"\n' + "\n".join(lines))
            answer = bench.post("/api/runs", {"request": {"folder": "study", "path": "away.toml"}})
            self.assertEqual(answer[0], 403, answer)
            self.assertFalse(elsewhere.exists())

    # A run that takes a while, beside a short one.

    def request_named(self, name, surrogates=100):
        text = self.request.read_text().replace('folder = "results"', f'folder = "{name}-results"', 1)
        text = text.replace("[settings]", f"[settings]\nsurrogates = {surrogates}", 1)
        (self.folder / "study" / f"{name}.toml").write_text(text)
        return {"request": {"folder": "study", "path": f"{name}.toml"}}

    def states(self, bench):
        return [run["state"] for run in bench.json("/api/runs")["runs"]]

    def test_two_run_at_once_and_others_wait(self):
        with self.bench() as bench:
            for name in ("one", "two", "three"):
                self.assertEqual(bench.post("/api/runs", self.request_named(name, 10000))[0], 201)
            wait_until(lambda: self.states(bench)[:2] == ["running", "running"], "two run")
            self.assertEqual(self.states(bench)[2], "queued")
            self.assertEqual(bench.post("/api/runs/3/cancel", {})[0], 204)
            self.assertEqual(self.states(bench)[2], "cancelled")
            for run in (1, 2):
                self.assertEqual(bench.post(f"/api/runs/{run}/cancel", {})[0], 204)
            wait_until(lambda: self.states(bench) == ["cancelled"] * 3, "all are cancelled")

    def test_runs_of_a_killed_workbench_are_interrupted_and_resumed(self):
        with self.bench() as bench:
            self.assertEqual(bench.post("/api/runs", self.request_named("long", 10000))[0], 201)
            wait_until(lambda: self.run_of(bench)["progress"] > 0, "the run is at work")
            bench.process.kill()
        self.request_named("long")
        with self.bench() as bench:
            self.assertEqual(self.run_of(bench)["state"], "interrupted")
            self.assertEqual(bench.post("/api/runs/1/resume", {})[0], 204)
            self.assertEqual(self.wait_for(bench, "done", "failed")["state"], "done")

    def test_the_maps_are_those_of_tavmap_run(self):
        with self.bench() as bench:
            self.assertEqual(bench.post("/api/runs", self.request_named("page"))[0], 201)
            self.assertEqual(self.wait_for(bench, *ENDED)["state"], "done")
        made = self.folder / "study" / "page-results"
        seed = json.loads(next(made.glob("*_tavmap.json")).read_text())["Seed"]
        self.request_named("command")
        subprocess.run([PROGRAM, "run", "command.toml", "--seed", str(seed), "--quiet"], check=True,
                       cwd=self.folder / "study")
        images = sorted(path.name for path in made.glob("*_statmap.nii.gz"))
        self.assertTrue(images)
        for name in images:
            with self.subTest(name=name):
                other = self.folder / "study" / "command-results" / name
                self.assertEqual((made / name).read_bytes(), other.read_bytes())

    def test_data_that_cannot_be_read_fail_a_run_with_their_name(self):
        with self.bench() as bench:
            request = self.request_named("broken")
            (self.folder / "study" / "bold_small.nii.gz").write_bytes(b"no image")
            self.assertEqual(bench.post("/api/runs", request)[0], 201)
            run = self.wait_for(bench, *ENDED)
            self.assertEqual(run["state"], "failed")
            self.assertIn("bold_small.nii.gz", "\n".join([run["message"], *run["lines"]]))

    def test_events_tell_a_run_from_its_start_to_its_end(self):
        with self.bench() as bench, bench.connect() as stream:
            stream.sendall(f"GET /api/runs/events HTTP/1.1\r\nHost: {bench.host}\r\nCookie: {bench.cookie}\r\n\r\n".encode())
            heard = stream.recv(65536)
            self.assertEqual(bench.post("/api/runs", self.request_named("told"))[0], 201)
            while b'"done"' not in heard:
                heard += stream.recv(65536)
            self.assertIn(b'"running"', heard)


if __name__ == "__main__":
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
