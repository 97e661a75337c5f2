#!/usr/bin/env python3
"""Plants a fault of every kind in the documents of a small tree and sees that it is found, and nothing else."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import command_rules
import documents
import layer_rules
import name_rules

README = """# Small

`./check` runs every test but the `slow` ones. [A tour](HACKING.md#the-layers), [a picture](docs/picture.png),
[limits](help/limits.html#noise), [elsewhere](https://example.org/x).

```sh
cmake --preset dev && cmake --build build/dev --target small_test
ctest --test-dir build/dev -L simo -R '^small_test'      # or -L nothing, which is a comment
scripts/draw --check > docs/table.tsv
build/dev/app/tavmap run request.toml --jobs 4 \\
    --seed 1 | less
tavmap --version
```

    TAVMAP_KERNEL=scalar tests/simo/run_all

Left open: `NAME.cpp`, `docs/PAGE.md`, `fit`, `PREFIX_VOI.tav`, `.tav`, `a || b`.
"""

GOOD_TREE = {
    "README.md": README,
    "HACKING.md": "# A tour\n\n## The layers\n\n    simo/   fits\n    io/     files\n",
    "CMakePresets.json": '{"configurePresets": [{"name": "base", "hidden": true}, {"name": "dev"}],\n'
                         ' "buildPresets": [{"name": "dev"}], "testPresets": [{"name": "dev"}]}\n',
    "check": "#!/bin/sh\nrun_tests dev -LE slow\n",
    "scripts/draw": "#!/bin/sh\n[ \"$1\" = --check ]\n",
    "docs/table.tsv": "a\tb\n",
    "docs/picture.png": "not text",
    "help/limits.html": '<h2 id="noise">Noise</h2>\n',
    "simo/README.md": "# simo\n\n`fit.h` has `fitModel()` and `simo::Fit`. May include: `io`. Then `parts/`.\n\nLabel `simo`.\n",
    "simo/fit.h": "namespace simo { struct Fit; Fit fitModel(); }\n",
    "simo/parts/part.h": "// getenv TAVMAP_KERNEL\n",
    "io/README.md": "# io\n\nMay include: nothing of the project.\n",
    "app/CMakeLists.txt": "add_executable(tavmap main.cpp)\n",
    "tests/README.md": "# tests\n\n- `slow`: minutes\n- `fuzz`: replay\n",
    "tests/simo/run_all": "#!/bin/sh\n",
    "tests/simo/CMakeLists.txt": "tavmap_test(small_test\n  SOURCES a.cpp\n  LABELS simo slow\n  TIMEOUT 9)\n"
                                 'set_tests_properties(x PROPERTIES LABELS "fuzz" TIMEOUT 120)\n',
}

# As the real one, it answers an unknown verb's --help with its own.
PROGRAM = """#!/bin/sh
case "$1" in
  run) printf 'Usage: tavmap run [OPTIONS]\\n  -j,--jobs INT\\n  --seed UINT\\n' ;;
  worker) printf 'Usage: tavmap worker [OPTIONS]\\n  --report-to FD\\n' ;;
  *) printf 'Usage: tavmap [OPTIONS]\\n  --version  x\\n\\nSubcommands:\\n  run                     Compute\\n' ;;
esac
"""


class DocumentsTest(unittest.TestCase):
    def setUp(self):
        arrows = mock.patch.object(layer_rules, "ARROWS", {"simo": {"io"}, "io": set()})
        arrows.start()
        self.addCleanup(arrows.stop)

    def found(self, changes):
        with tempfile.TemporaryDirectory() as name:
            for path, text in {**GOOD_TREE, **changes}.items():
                target = Path(name, "tree", path)
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_text(text, encoding="utf-8")
            program = Path(name, "tavmap")
            program.write_text(PROGRAM, encoding="utf-8")
            program.chmod(0o755)
            return [str(finding) for finding in documents.findings_of(Path(name, "tree"), str(program))]

    def assert_found(self, text, *messages, path="docs/new.md", line=1, **changes):
        """A document of this text has exactly these faults, all at the line."""
        found = self.found({path: text, **changes})
        self.assertEqual(len(found), len(messages), found)
        for finding, message in zip(found, messages):
            self.assertTrue(finding.startswith(f"{path}:{line}: "), finding)
            self.assertIn(message, finding)

    def assert_passes(self, text, path="docs/new.md"):
        self.assertEqual(self.found({path: text}), [])

    def test_good_tree_has_no_faults(self):
        self.assertEqual(self.found({}), [])

    def test_paths(self):
        self.assert_found("See `simo/gone.h`.\n", "'simo/gone.h' is no file")
        self.assert_found("Text\n\n    scripts/gone --check\n", "'scripts/gone' is no file", line=3)
        self.assert_found("Run `./gone`.\n", "'./gone' is no file")
        self.assert_found("`simo/*.cpp`\n", "'simo/*.cpp'")
        self.assert_passes("`simo/*.h`, `simo/NAME.h`, `P_page.html`, `*_page.html`, `fit.h`, `/data/x`, `./check`\n")

    def test_bare_names_of_files_are_those_of_the_folder(self):
        self.assert_found("`fit.h`\n", "'fit.h' is no file", path="tests/simo/README.md")
        self.assert_passes("`part.h`, `parts/part.h`. May include: `io`.\n", path="simo/README.md")

    def test_folders(self):
        self.assert_found("`gone/`\n", "'gone/' is no folder")
        self.assert_passes("`parts/`, `scripts/`. May include: `io`.\n", path="simo/README.md")

    def test_links(self):
        self.assert_found("[x](gone.md)\n", "gone.md leads nowhere")
        self.assert_found("a\n![x](../docs/gone.png)\n", "gone.png leads nowhere", line=2)
        self.assert_found("[x](../HACKING.md#gone)\n", "no place '#gone'")
        self.assert_found("[x](../help/limits.html#gone)\n", "no place '#gone'")
        self.assert_found("# A\n[x](#b)\n", "no place '#b'", line=2)
        self.assert_passes("# A, b\n[x](#a-b), `[x](gone.md)`\n")

    def test_words(self):
        self.assert_found("`fitModels()` and `simo::Fit`\n", "'fitModels()'")
        self.assert_found("`simo::gone`\n", "'simo::gone'")
        self.assert_found("`gone_test`\n", "'gone_test'")
        self.assert_passes("`small_test`, `gone`, `a word_here`\n")

    def test_environment(self):
        self.assert_found("Set TAVMAP_GONE.\n", "TAVMAP_GONE occurs nowhere")

    def test_arrows(self):
        self.assert_found("May include: `io`. Tests: none.\n", "other layers than the arrows: none", path="io/README.md")
        self.assert_found("May include: nothing.\n", "arrows: io", path="simo/README.md")
        self.assert_passes("May include: `io/read.h`, zlib.\n".replace("read.h", "README.md"), path="simo/README.md")

    def test_tour(self):
        self.assert_found("# A tour\n\n## The layers\n\n    simo/\n", "names no io/", path="HACKING.md")

    def test_labels(self):
        self.assert_found("`ctest --test-dir build/dev -L gone`\n", "label 'gone'")
        self.assert_found("`ctest -LE 'slow|gone'`\n", "label 'gone'")
        self.assert_found("the label `gone`\n", "label 'gone'")
        self.assert_found("labels `simo`, `gone`\n", "label 'gone'")
        self.assert_found("`-L gone`\n", "label 'gone'")
        self.assert_passes("`ctest -L fuzz`, label `slow`, `ctest -L LABEL`, `-L simo`\n")

    def test_labels_and_folders_of_tests(self):
        self.assert_found("# tests\n\n`fuzz`\n", "'slow' is no folder's name", path="tests/README.md")
        self.assert_found(GOOD_TREE["tests/README.md"], "no test bears the label 'io'", path="tests/README.md",
                          **{"tests/io/CMakeLists.txt": "tavmap_test(io_test LABELS fuzz)\n"})

    def test_names_of_tests(self):
        self.assert_found("`ctest -R '^gone'`\n", "matches '^gone'")
        self.assert_found("`ctest -R \"small_test|gone test\"` and `ctest -R gone`\n", "matches 'gone'")

    def test_presets(self):
        self.assert_found("`cmake --preset gone`\n", "no configure preset 'gone'")
        self.assert_found("`cmake --preset base`\n", "no configure preset 'base'")
        self.assert_found("`cmake --build --preset gone`\n", "no build preset 'gone'")
        self.assert_found("`ctest --preset gone`\n", "no test preset 'gone'")
        self.assert_found("The `gone` preset\n", "no preset 'gone'")

    def test_what_is_built(self):
        self.assert_found("`cmake --build build/gone`\n", "no preset 'gone'")
        self.assert_found("`build/dev/app/gone`\n", "in app makes 'gone'")
        self.assert_found("`build/dev/io/tavmap`\n", "in io makes 'tavmap'")
        self.assert_found("`cmake --build build/dev --target gone`\n", "target 'gone'")
        self.assert_passes("`build/dev/tests/simo/small_test`, `build/dev/bench/*/`, `build/PRESET/app`\n")

    def test_options_of_scripts(self):
        self.assert_found("`scripts/draw --gone`\n", "scripts/draw knows no option '--gone'")
        self.assert_found("```\nscripts/draw [--gone]\n```\n", "knows no option '--gone'", line=2)

    def test_claims_of_every_test(self):
        self.assert_found("`./check` runs every\ntest.\n", "labelled 'slow'")
        self.assert_found("It runs all tests.\n", "labelled 'slow'")
        self.assert_passes("It runs all tests but `slow` ones.\n")

    def test_verbs_and_their_options(self):
        self.assert_found("`tavmap gone file`\n", "no verb 'gone'")
        self.assert_found("```\nbuild/dev/app/tavmap run x \\\n  --gone\n```\n", "tavmap run has no option '--gone'", line=2)
        self.assert_found("`tavmap run -x`\n", "no option '-x'")
        self.assert_found("`tavmap run --report-to 3`\n", "no option '--report-to'")
        self.assert_found("`tavmap --gone`\n", "no option '--gone'")
        self.assert_passes("`tavmap worker JOB --report-to FD`, `tavmap VERB --anything`, `tavmap run --seed=1`\n")

    def test_options_on_their_own(self):
        self.assert_found("With `--gone` it\n", "'--gone' is an option of nothing")
        self.assert_passes("With `--jobs`, `--seed 3` and `--check`\n")

    def test_every_rule_is_tested(self):
        self.assertEqual(len(name_rules.RULES) + len(command_rules.RULES), 15,
                         "a rule was added or removed: plant its fault here, then adapt this number")


class Program(unittest.TestCase):
    def test_exit_codes(self):
        script = documents.__file__
        with tempfile.TemporaryDirectory() as name:
            run = lambda *more: subprocess.run([sys.executable, "-B", script, name, *more], capture_output=True, text=True,
                                               check=False)
            self.assertEqual(run().returncode, 2)
            Path(name, "README.md").write_text("`docs/x.md` and `simo/`\n", encoding="utf-8")
            result = run()
            self.assertEqual(result.returncode, 1)
            self.assertIn("README.md:1: 'simo/' is no folder", result.stdout)
            Path(name, "README.md").write_text("# Small\n", encoding="utf-8")
            self.assertEqual(run().returncode, 0)
            self.assertIn("lists no verbs", run("/bin/true").stderr)


if __name__ == "__main__":
    unittest.main()
