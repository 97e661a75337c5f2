#!/usr/bin/env python3
"""Plants one violation of every rule in a small tree and sees that it is found, there and nowhere else."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import folder_rules
import layer_rules
import lint
import style_rules

GOOD_HEADER = """// What it is.
#ifndef TAVMAP_SIMO_FIT_H
#define TAVMAP_SIMO_FIT_H

#include <vector>

int fit(const std::vector<double>& series);

#endif
"""

GOOD_TREE = {
    "CMakeLists.txt": "project(Small)\n",
    "simo/README.md": "# simo\n",
    "simo/fit.h": GOOD_HEADER,
    "simo/fit.cpp": '#include "simo/fit.h"\n\nint fit(const std::vector<double>& series) {\n  return series.empty() ? 0 : 1;\n}\n',
    "io/README.md": "# io\n",
    "io/read.cpp": '#include <unistd.h>\n\n#include "simo/fit.h"\n',
    "io/vtc_header.h": "// A record.\n#ifndef TAVMAP_IO_VTC_HEADER_H\n#define TAVMAP_IO_VTC_HEADER_H\n#endif\n",
    "hostapi/README.md": "# hostapi\n",
    "hostapi/records.cpp": '#include "io/vtc_header.h"\n',
    "tav/kernel/README.md": "# kernel\n",
    "tav/kernel/kernel_avx2.cpp": '#include "tav/kernel/body-inl.h"\n',
    "tav/kernel/body-inl.h": "// A body.\n#ifndef TAVMAP_TAV_KERNEL_BODY_INL_H\n#define TAVMAP_TAV_KERNEL_BODY_INL_H\n"
    "#include <immintrin.h>\n#endif\n",
    "tav/kernel/plan.cpp": "#include <vector>\n",
    "formats/README.md": "# formats\n",
    "formats/image.cpp": "#include <zlib.h>\n",
    "build/dev/generated.cpp": "\tnot ours  \n",
    "LICENCE": "Text of others. \n",
}


class Tree:
    """A temporary tree: the good one with some files replaced or added."""

    def __init__(self, changes):
        self._folder = tempfile.TemporaryDirectory()
        self.root = Path(self._folder.name)
        for path, text in {**GOOD_TREE, **changes}.items():
            target = self.root / path
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_text(text, encoding="utf-8", newline="")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._folder.cleanup()


class LintTest(unittest.TestCase):
    def found(self, changes):
        with Tree(changes) as tree:
            return [str(finding) for finding in lint.findings_of(tree.root)]

    def assert_found(self, where, what, changes):
        """Exactly one violation, at `where`, whose message contains `what`."""
        found = self.found(changes)
        self.assertEqual(len(found), 1, found)
        self.assertTrue(found[0].startswith(where + ": "), found[0])
        self.assertIn(what, found[0])

    def test_good_tree_has_no_violations(self):
        self.assertEqual(self.found({}), [])


class LayerRules(LintTest):
    def test_arrow_against_its_direction(self):
        self.assert_found("simo/up.cpp:1", 'simo may not include "io/vtc_header.h"',
                          {"simo/up.cpp": '#include "io/vtc_header.h"\n'})

    def test_host_never_meets_the_engine(self):
        self.assert_found("host/h.cpp:2", 'host may not include "simo/fit.h"',
                          {"host/README.md": "# host\n", "host/h.cpp": '#include <string>\n#include "simo/fit.h"\n'})

    def test_hostapi_reaches_one_header_of_io_only(self):
        self.assert_found("hostapi/more.cpp:1", "io/vtc_header.h",
                          {"io/other.h": GOOD_HEADER.replace("SIMO_FIT", "IO_OTHER"),
                           "hostapi/more.cpp": '#include "io/other.h"\n'})

    def test_kernel_includes_nothing_of_the_engine(self):
        self.assert_found("tav/kernel/plan.cpp:1", 'tav/kernel may not include "simo/fit.h"',
                          {"tav/kernel/plan.cpp": '#include "simo/fit.h"\n'})

    def test_folder_without_arrows(self):
        self.assert_found("nowhere:1", "without arrows", {"nowhere/README.md": "# nowhere\n", "nowhere/n.cpp": "int x;\n"})

    def test_include_that_is_not_rooted(self):
        self.assert_found("simo/fit.cpp:1", "rooted", {"simo/fit.cpp": '#include "fit.h"\n'})

    def test_foreign_library_in_the_core(self):
        self.assert_found("io/read.cpp:1", "<zlib.h>", {"io/read.cpp": "#include <zlib.h>\n"})

    def test_platform_header_in_the_kernel(self):
        self.assert_found("tav/kernel/plan.cpp:1", "<unistd.h>", {"tav/kernel/plan.cpp": "#include <unistd.h>\n"})

    def test_inline_functions_in_files_for_one_kind_of_cpu(self):
        body = GOOD_TREE["tav/kernel/body-inl.h"].replace("<immintrin.h>", "<algorithm>")
        self.assert_found("tav/kernel/body-inl.h:4", "<algorithm>", {"tav/kernel/body-inl.h": body})


class ArrowRules(LintTest):
    def test_arrows_in_a_circle(self):
        with mock.patch.dict(layer_rules.ARROWS, {"simo": {"io"}, "io": {"simo"}, "tav": set(), "plugin": set(),
                                                  "direction": set(), "formats": set()}):
            found = self.found({})
        self.assertEqual([text for text in found if "back to" in text], [
            "tests/lint/layer_rules.py:1: the arrows lead from io back to io",
            "tests/lint/layer_rules.py:1: the arrows lead from simo back to simo"])

    def test_reach_beyond_a_single_header(self):
        header = GOOD_TREE["io/vtc_header.h"].replace("#endif", '#include "simo/fit.h"\n#endif')
        self.assert_found("io/vtc_header.h:4", "hostapi reaches where no arrows lead from it: "
                          "hostapi/records.cpp > io/vtc_header.h > simo/fit.h", {"io/vtc_header.h": header})

    def test_reach_through_a_file_of_another_kind(self):
        self.assert_found("simo/body.inc:1", "simo/up.cpp > simo/body.inc > io/vtc_header.h",
                          {"simo/up.cpp": '#include "simo/body.inc"\n', "simo/body.inc": '#include "io/vtc_header.h"\n'})

    def test_reach_along_arrows_is_no_violation(self):
        self.assertEqual(self.found({"suitability/README.md": "# s\n",
                                     "suitability/s.cpp": '#include "direction/d.h"\n',
                                     "direction/README.md": "# d\n",
                                     "direction/d.h": "// D.\n#ifndef TAVMAP_DIRECTION_D_H\n#define TAVMAP_DIRECTION_D_H\n"
                                                      '#include "simo/fit.h"\n#endif\n'}), [])

    def test_link_without_an_arrow(self):
        self.assert_found("simo/CMakeLists.txt:2", "simo links tavmap_io",
                          {"simo/CMakeLists.txt": "# One.\ntavmap_library(simo\n  SOURCES fit.cpp\n  LINKS tavmap_io m)\n"})
        self.assert_found("simo/CMakeLists.txt:1", "simo links tavmap_io",
                          {"simo/CMakeLists.txt": "tavmap_library(simo SOURCES fit.cpp)\n"
                                                  "target_link_libraries(tavmap_simo PUBLIC tavmap_io)\n"})

    def test_arrow_without_its_link(self):
        text = "tavmap_library(tav\n  SOURCES a.cpp\n  LINKS tavmap_simo tavmap_io {})\n"
        self.assert_found("tav/CMakeLists.txt:1", "tav has an arrow to tav/kernel, but does not link tavmap_kernel",
                          {"tav/CMakeLists.txt": text.format("")})
        self.assertEqual(self.found({"tav/CMakeLists.txt": text.format("tavmap_kernel ZLIB::ZLIB")}), [])


class FolderRules(LintTest):
    def tree_of_shares(self, largest):
        """Five folders that hold 1,000 lines each, but for simo."""
        folders = ["io", "formats", "tav", "plugin", "host"]
        changes = {f"{folder}/README.md": "# folder\n" for folder in folders}
        for folder in folders:
            changes.update({f"{folder}/part{i}.cpp": "int x;\n" * 250 for i in range(4)})
        changes.update({f"simo/part{i}.cpp": "int x;\n" * 50 for i in range(largest // 50)})
        return changes

    def test_folder_that_outweighs_the_others(self):
        self.assert_found("simo:1", "at most a fifth", self.tree_of_shares(1300))
        self.assertEqual(self.found(self.tree_of_shares(1200)), [])

    def test_tests_weigh_nothing(self):
        tests = {f"tests/part{i}.cpp": "int x;\n" * 300 for i in range(20)}
        self.assertEqual(self.found({**self.tree_of_shares(1200), **tests, "tests/README.md": "# tests\n"}), [])

    def test_header_name_that_exists_twice(self):
        again = GOOD_HEADER.replace("SIMO_FIT", "TESTS_SIMO_FIT")
        self.assert_found("tests/simo/fit.h:1", "exists already: simo/fit.h",
                          {"tests/README.md": "# tests\n", "tests/simo/fit.h": again})


class StyleRules(LintTest):
    def test_long_file(self):
        self.assert_found("simo/long.cpp:401", "401 lines", {"simo/long.cpp": "int x;\n" * 401})
        self.assertEqual(self.found({"simo/long.cpp": "int x;\n" * 400}), [])

    def test_long_function(self):
        body = "  step();\n"
        for signature in ["void f() {\n", "bool C::f(int a,\n          int b) const {\n", "static int f(int a) {\n"]:
            first = signature.count("\n") + 1
            self.assertEqual(self.found({"simo/f.cpp": "\n" + signature + body * 60 + "}\n"}), [])
            self.assert_found(f"simo/f.cpp:{first}", "61 lines", {"simo/f.cpp": "\n" + signature + body * 61 + "}\n"})

    def test_long_class_is_no_function(self):
        self.assertEqual(self.found({"simo/c.cpp": "class C {\n" + "  int x;\n" * 100 + "};\n"}), [])

    def test_lambda_among_arguments_and_raw_text_are_no_long_functions(self):
        call = "void f() {\n  call(1,\n       [](int x) {\n" + "         x;\n" * 30 + "       });\n}\n\n"
        self.assertEqual(self.found({"simo/f.cpp": call + "void g() {\n  call([] {});\n" + "  x();\n" * 50 + "}\n"}), [])
        self.assertEqual(self.found({"simo/f.cpp": 'const char* f() {\n  return R"(' + "text\n" * 90 + ')";\n}\n'}), [])

    def test_citation_of_another_version(self):
        changes = {"CMakeLists.txt": "project(Small VERSION 1.2.3)\n", "CITATION.cff": "title: x\nversion: 1.2.2\n"}
        self.assert_found("CITATION.cff:2", "CMakeLists.txt builds version 1.2.3", changes)
        self.assertEqual(self.found(changes | {"CITATION.cff": "version: 1.2.3\n"}), [])

    def test_changelog_of_an_older_version(self):
        good = {"CMakeLists.txt": "project(Small VERSION 1.2.3)\n", "packaging/changelog": "tavmap (1.2.3) unstable\n",
                "packaging/README.md": "# packaging\n"}
        self.assertEqual(self.found(good), [])
        for entry in "tavmap (1.2.2) unstable\n\ntavmap (1.2.3) unstable\n", "":
            self.assert_found("packaging/changelog:1", "not of version 1.2.3", good | {"packaging/changelog": entry})

    def test_folder_without_readme(self):
        self.assert_found("study:1", "no README.md", {"study/s.cpp": "int x;\n"})
        self.assert_found("tests:1", "no README.md", {"tests/simo/s.cpp": "int x;\n"})

    def test_long_readme(self):
        self.assert_found("simo/README.md:41", "41 lines", {"simo/README.md": "text\n" * 41})
        self.assertEqual(self.found({"README.md": "text\n" * 41}), [])

    def test_include_guard(self):
        self.assert_found("simo/fit.h:1", "TAVMAP_SIMO_FIT_H", {"simo/fit.h": GOOD_HEADER.replace("SIMO_FIT", "FIT")})

    def test_header_without_comment(self):
        self.assert_found("simo/fit.h:1", "comment", {"simo/fit.h": GOOD_HEADER.replace("// What it is.\n", "")})

    def test_using_namespace_in_a_header(self):
        text = GOOD_HEADER.replace("int fit", "using namespace std;\nint fit")
        self.assert_found("simo/fit.h:7", "using namespace", {"simo/fit.h": text})
        self.assertEqual(self.found({"simo/use.cpp": "using namespace std;\n"}), [])

    def test_white_space(self):
        self.assert_found("simo/w.cpp:2", "white space", {"simo/w.cpp": "int x;\nint y; \n"})
        self.assert_found("simo/w.cpp:1", "a tab", {"simo/w.cpp": "\tint x;\n"})
        self.assert_found("simo/w.cpp:1", "carriage return", {"simo/w.cpp": "int x;\r\n"})
        self.assert_found("simo/w.cpp:1", "no line end", {"simo/w.cpp": "int x;"})

    def test_leftovers(self):
        self.assert_found("simo/t.cpp:1", "finish it", {"simo/t.cpp": "// TO" + "DO stub\n"})
        self.assert_found("simo/t.cpp:2", "merge conflict", {"simo/t.cpp": "int x;\n=======\n"})
        self.assert_found("simo/README.md:2", "one machine", {"simo/README.md": "# simo\nsee /ho" + "me/someone/notes\n"})
        self.assertEqual(self.found({"simo/t.cpp": 'auto name = "test-XX' + 'XXXX";\n'}), [])

    def test_randomness_outside_its_home(self):
        for call in ["rand()", "std::srand(1)", "time(nullptr)", "std::random_device{}"]:
            self.assert_found("simo/r.cpp:1", "randomness", {"simo/r.cpp": f"int x = {call};\n"})
        self.assertEqual(self.found({"simo/randomness.cpp": "int x = rand();\n"}), [])
        self.assertEqual(self.found({"simo/r.cpp": "int x = runtime(3); // as rand() does\n"}), [])

    def test_numerics_that_print(self):
        for call in ["std::cout << 1", 'printf("%d", 1)', 'std::fprintf(stderr, "x")']:
            self.assert_found("simo/p.cpp:1", "never print", {"simo/p.cpp": f"void f() {{ {call}; }}\n"})
        self.assertEqual(self.found({"simo/p.cpp": "int f() { return snprintf(buffer, 4, \"x\"); }\n"}), [])

    def test_fast_math(self):
        self.assert_found("CMakeLists.txt:1", "changes results", {"CMakeLists.txt": "add_compile_options(-ffa" + "st-math)\n"})


class Program(unittest.TestCase):
    def run_lint(self, root):
        return subprocess.run([sys.executable, "-B", lint.__file__, str(root)], capture_output=True, text=True, check=False)

    def test_exit_codes(self):
        with Tree({}) as tree:
            self.assertEqual(self.run_lint(tree.root).returncode, 0)
            self.assertEqual(self.run_lint(tree.root / "simo").returncode, 2)
        with Tree({"simo/w.cpp": "\tint x;\n"}) as tree:
            result = self.run_lint(tree.root)
            self.assertEqual(result.returncode, 1)
            self.assertIn("simo/w.cpp:1: a tab\n", result.stdout)

    def test_every_rule_has_a_planted_violation(self):
        tested = Path(__file__).read_text(encoding="utf-8")
        self.assertEqual(len(lint.RULES), 22, "a rule was added or removed: plant its violation here, then adapt this number")
        self.assertGreaterEqual(tested.count("assert_found("), len(lint.RULES))
        self.assertEqual(style_rules.MAX_FILE_LINES, 400)
        self.assertEqual(folder_rules.MAX_SHARE, 0.2)


if __name__ == "__main__":
    unittest.main()
