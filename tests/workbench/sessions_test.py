#!/usr/bin/env python3
"""Whole sessions of the plug-in over the built program's server, against `tavmap host` with the same answers as a script.

Usage: sessions_test.py PROGRAM PLUGIN
"""

import gzip
import json
import os
import shutil
import subprocess
import struct
import sys
import tempfile
import unittest
from pathlib import Path
from urllib.parse import quote

from bench_program import Bench, wait_until

PROGRAM = PLUGIN = ""
SEED = "5"
FILES = {"--anatomy": "anatomy.nii.gz", "--vtc": "run-1.vtc", "--vois": "dseg.nii.gz"}


def lines_of(script):
    lines = (line.partition("#")[0].strip() for line in script.read_text().splitlines())
    return [line for line in lines if line]


class Sessions(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.folder = Path(cls.scratch.name)
        cls.sim = cls.folder / "data" / "sim"
        cls.sim.parent.mkdir()
        subprocess.run([PROGRAM, "simulate", cls.sim, "--grid", "16,18,12", "--volumes", "80"], check=True,
                       capture_output=True)
        cls.answers = lines_of(cls.sim / "answers.txt")
        cls.untouched = cls.files()
        seeded = os.environ | {"TAV_TIME_BASE": SEED}  # stands for the clock, as --seed does
        cls.bench = Bench(PROGRAM, ["data", "--plugin", PLUGIN, *cls.data()], cls.folder, seeded)
        cls.addClassCleanup(cls.bench.end)
        cls.bench.sign_in()

    @classmethod
    def data(cls):
        return [word for option, name in FILES.items() for word in (option, cls.sim / name)]

    @classmethod
    def files(cls):
        return {str(path.relative_to(cls.sim)): path.read_bytes() for path in cls.sim.rglob("*") if path.is_file()}

    def made(self):
        """What a session has added or changed; it is taken away."""
        made = {name: data for name, data in self.files().items() if self.untouched.get(name) != data}
        for name in made:
            (self.sim / name).unlink()
        return made

    # By a script

    def host(self, answers):
        script, log = self.sim / "tried.txt", self.folder / "log.txt"
        script.write_text("".join(f"{line}\n" for line in answers))
        ended = subprocess.run([PROGRAM, "host", PLUGIN, *self.data(), "--seed", SEED, "--script", script,
                                "--log-file", log], capture_output=True, text=True)
        script.unlink()
        return ended, log.read_text(), self.made()

    def cancelled_at(self, dialog):
        """A whole script: what follows the cancel is cancelled too, or answered where the plug-in insists on it."""
        answers, insists = [*self.answers[:dialog], "cancel"], False
        while (closing := self.closing_after(answers)) is not None:
            if insists:
                return [*answers, *self.answers[dialog:]]
            answers.append(closing)
            insists = closing.startswith("message")
        return answers

    def closing_after(self, answers):
        """What closes the dialog after these answers; None: there is none."""
        left = "no answer is left for this dialog, which expects "
        wanted = self.host(answers)[0].stderr.partition(left)[2].splitlines()
        if not wanted:
            return None
        return f"message {wanted[1]}" if wanted[0].startswith('"message"') else "cancel"

    # In the page

    def state(self):
        return self.bench.json("/api/plugin")

    def wait_for_it(self):
        def settled():
            state = self.state()
            return state if state["state"] != "running" or state["question"] is not None else None

        return wait_until(settled, "the session asks or ends")

    def start(self, **more):
        self.assertEqual(self.bench.post("/api/plugin/start", more)[0], 204)
        return self.wait_for_it()

    def answer(self, question, line):
        """As a page sends this line of a script."""
        kind, _, value = line.partition(" ")
        answers = {"cancel": {"cancel": True}, "message": {"answer": True}, "yes": {"answer": True}, "no": {"answer": False}}
        place = {"folder": "data", "path": f"sim/{value}"}
        given = answers.get(kind) or {"answer": place if kind in ("open", "save") else value}
        reply = self.bench.post("/api/plugin/answer", {"question": question["id"]} | given)
        self.assertEqual(reply[0], 204, (line, question, reply))

    def in_page(self, answers, **more):
        state = self.start(**more)
        for line in answers:
            self.assertEqual(state["state"], "running", (line, state["message"]))
            self.answer(state["question"], line)
            state = self.wait_for_it()
        self.assertEqual((state["state"], state["question"]), ("ended", None))
        return state

    def end(self):
        self.assertEqual(self.bench.post("/api/plugin/end", {})[0], 204)
        return self.wait_for_it()

    # What holds

    def assert_same(self, answers):
        ended, log, files = self.host(answers)
        self.assertNotEqual(ended.returncode, 2, ended.stderr)
        state = self.in_page(answers)
        said = "".join(f"{block}\n" for block in state["log"])
        self.assertEqual((state["exitCode"], said), (ended.returncode, log))
        self.assertEqual(self.made(), files)
        return files

    def test_a_session_gives_what_the_script_gives(self):
        self.assertTrue(self.assert_same(self.answers))

    def test_a_cancel_at_every_dialog_gives_what_the_script_gives(self):
        for dialog in range(len(self.answers)):
            answers = self.cancelled_at(dialog)
            with self.subTest(dialog=dialog, answers=answers[dialog:]):
                self.assert_same(answers)

    def test_recorded_answers_are_a_script_for_the_same_session(self):
        state = self.in_page(self.answers, record=True)
        files = self.made()
        ended, _, again = self.host(lines_of(Path(state["recorded"])))
        self.assertEqual((ended.returncode, again), (0, files))

    def test_saved_maps_are_told(self):
        saved = self.in_page(self.answers)["maps"]
        self.assertEqual([(Path(maps["path"]).suffix, maps["problem"]) for maps in saved], [(".tav", "")])
        self.assertTrue(saved[0]["pictures"])
        for picture in saved[0]["pictures"]:
            status, headers, data = self.bench.get(f"/files/{quote(picture['folder'])}/{quote(picture['path'])}")
            self.assertEqual((status, headers["content-type"], data[1:4]), (200, "image/png", b"PNG"))
        place = saved[0]["place"]
        status, _, packed = self.bench.get(f"/api/maps?folder={quote(place['folder'])}&path={quote(place['path'])}")
        self.assertEqual(status, 200)
        self.assert_packs(packed, Path(saved[0]["path"]))
        status, _, anatomy = self.bench.get("/api/plugin/anatomy")
        self.assertEqual((status, anatomy), (200, (self.sim / "anatomy.nii.gz").read_bytes()))
        self.made()

    def assert_packs(self, packed, file):
        """Every map's values, as the image in the file has them: floats behind its header, map after map."""
        length = int.from_bytes(packed[:4], "little")
        header = json.loads(packed[4:4 + length])
        data = file.read_bytes()
        data = gzip.decompress(data) if data[:2] == b"\x1f\x8b" else data
        start = int(struct.unpack_from("<f", data, 108)[0])
        values = 4 * header["voxels"]
        self.assertTrue(header["maps"])
        self.assertEqual(len(header["arrays"]), len(header["maps"]))
        for number, array in enumerate(header["arrays"]):
            stored = data[start + number * values:start + (number + 1) * values]
            self.assertEqual(packed[array["offset"]:array["offset"] + values], stored, array)

    def test_a_list_goes_as_data(self):
        choices = self.start()["question"]["choices"]
        self.assertIn({"number": 1, "name": "Reference"}, choices)
        self.end()

    def test_wrong_answers_leave_the_question_open(self):
        question = self.start()["question"]
        for answer in ("none", "0.5", "", "99999", 1, None, {}):
            with self.subTest(answer=answer):
                body = {"question": question["id"], "answer": answer}
                self.assertEqual(self.bench.post("/api/plugin/answer", body)[0], 400)
        for body in ({}, {"question": question["id"] + 1, "cancel": True}, {"question": "x", "cancel": True}):
            with self.subTest(body=body):
                self.assertIn(self.bench.post("/api/plugin/answer", body)[0], [400, 409])
        self.assertEqual(self.state()["question"], question)
        self.end()

    def test_texts_are_of_one_line_as_scripts_hold_them(self):
        state = self.start(record=True)
        for line in self.answers:
            if state["question"]["kind"] == "text":
                break
            self.answer(state["question"], line)
            state = self.wait_for_it()
        for text in ("a\nb", "a\rb", "a\0b"):
            with self.subTest(text=text):
                body = {"question": state["question"]["id"], "answer": text}
                self.assertEqual(self.bench.post("/api/plugin/answer", body)[0], 400)
        self.end()

    def test_files_elsewhere_are_refused(self):
        outside = self.folder / "outside.vtc"
        shutil.copy(self.sim / "run-1.vtc", outside)
        state = self.start()
        for line in self.answers:
            if state["question"]["kind"] == "open":
                break
            self.answer(state["question"], line)
            state = self.wait_for_it()
        for path in ("../outside.vtc", str(outside), "sim/../../outside.vtc"):
            with self.subTest(path=path):
                body = {"question": state["question"]["id"], "answer": {"folder": "data", "path": path}}
                status, _, words = self.bench.post("/api/plugin/answer", body)
                self.assertEqual(status, 403, json.loads(words))
        self.end()
        self.made()

    def test_an_ended_session_leaves_room_for_another(self):
        self.start()
        self.assertEqual(self.bench.post("/api/plugin/start", {})[0], 409)
        self.assertNotEqual(self.end()["exitCode"], 0)
        self.assertEqual(self.start()["state"], "running")
        self.end()

    def test_ctrl_c_ends_a_session_that_waits(self):
        bench = Bench(PROGRAM, ["data", "--plugin", PLUGIN, "--work-folder", "other"], self.folder)
        bench.sign_in()
        self.assertEqual(bench.post("/api/plugin/start", {})[0], 204)
        self.assertEqual(bench.end(), 0)


if __name__ == "__main__":
    PROGRAM, PLUGIN = (os.path.abspath(sys.argv.pop(1)) for _ in range(2))
    unittest.main()
