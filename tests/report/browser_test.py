"""Reports of made-up outputs and of a group in a browser: the tests of web/browser-tests over them, over the fixture, and their sides.

Usage: browser_test.py TAVMAP WRITE_SAMPLES NODE
"""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

from numbers_test import run_of_group

WEB = Path(__file__).resolve().parents[2] / "web"


def main():
    tavmap, write_samples, node = sys.argv[1:]
    with tempfile.TemporaryDirectory(prefix="tavmap-browser-") as name:
        samples = Path(name) / "samples"
        subprocess.run([write_samples, samples], check=True)
        subprocess.run([tavmap, "report", samples], check=True, stdout=subprocess.DEVNULL)
        pages = [samples / kind / "sample_report.html" for kind in ("oblique", "nasty", "nothing")]
        pages.append(samples / "index.html")
        pages += run_of_group(tavmap, Path(name))
        environment = dict(
            os.environ, TAVMAP_SAMPLES=str(samples), TAVMAP_REPORTS=":".join(str(page) for page in pages)
        )
        for script in ("build.mjs", "fixtures/make.mjs", "browser-tests/run.mjs"):
            subprocess.run([node, script], cwd=WEB, check=True, env=environment)


if __name__ == "__main__":
    main()
