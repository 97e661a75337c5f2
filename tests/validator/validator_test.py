"""What the validator of BIDS data sets says of the output of `tavmap bids`.

Usage: validator_test.py TAVMAP
"""

import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
VALIDATOR = HERE / "node_modules" / ".bin" / "bids-validator"
TAVMAP = ""

# What it may say, and why that stays.
EXPECTED_ERRORS = {
    "SUBJECT_FOLDERS": "it knows names of raw data alone, so that every file of a participant's folder is ignored",
}

CONFIGURATION = """
[settings]
surrogates = 40
fwe_draws = 20
discarded_time_points = 20
"""


def run(*words):
    return subprocess.run([str(word) for word in words], capture_output=True, text=True, check=False)


def told(folder):
    """The codes of errors and of warnings."""
    answer = run("node", VALIDATOR, folder, "--json")
    issues = json.loads(answer.stdout)["issues"]
    return {issue["key"] for issue in issues["errors"]}, {issue["key"] for issue in issues["warnings"]}


@unittest.skipUnless(shutil.which("node"), "node is not installed: run scripts/install-packages")
class Validator(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if not VALIDATOR.exists():
            raise RuntimeError(f"{VALIDATOR} is missing: run scripts/install-packages")
        cls.scratch = tempfile.TemporaryDirectory()
        folder = pathlib.Path(cls.scratch.name)
        cls.data, cls.output = folder / "data", folder / "out"
        configuration = folder / "configuration.toml"
        configuration.write_text(CONFIGURATION)
        atlas = cls.data / "derivatives/atlas/atlas-Simulated_space-MNI152NLin2009cAsym_dseg.nii.gz"
        cls.do("simulate", cls.data, "--bids", "--participants", 1, "--runs", 1, "--volumes", 80, "--grid", "14,14,12")
        cls.do("bids", cls.data, cls.output, "participant", "--config-file", configuration, "--atlas", atlas,
               "--labels", "Reference", "--seed", 3)
        cls.do("bids", cls.data, cls.output, "group")

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    @classmethod
    def do(cls, *words):
        result = run(TAVMAP, *words)
        if result.returncode != 0:
            raise RuntimeError(f"tavmap {words[0]} failed: {result.stderr}")

    def test_finds_no_error_in_the_output_but_those_with_a_reason(self):
        errors, warnings = told(self.output)
        self.assertEqual(errors, set(EXPECTED_ERRORS))
        self.assertEqual(warnings, set())

    def test_finds_nothing_in_a_simulated_data_set(self):
        self.assertEqual(told(self.data), (set(), set()))

    def test_would_find_names_that_the_standard_does_not_have(self):
        copy = pathlib.Path(self.scratch.name) / "copy"
        shutil.copytree(self.output, copy)
        (copy / ".bidsignore").unlink()
        self.assertIn("NOT_INCLUDED", told(copy)[0])


if __name__ == "__main__":
    TAVMAP = sys.argv.pop(1)
    unittest.main()
