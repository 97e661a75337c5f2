#!/usr/bin/env python3
"""Files, maps and reports that the workbench must not give, asked of the built program; it then still answers.

Usage: hostile_files_test.py PROGRAM
"""

import os
import sys
import unittest
from urllib.parse import quote

from hostile_bench import HostileBench


class HostileFiles(HostileBench):
    def test_ways_out_of_the_folders(self):
        secret = str(self.folder / "secret.txt")
        for path in ["../secret.txt", "%2e%2e/secret.txt", "%2e%2e%2fsecret.txt", "inner/../../secret.txt", "..",
                     "inner/..%2f..%2fsecret.txt", quote(secret, safe=""), "%2fetc%2fpasswd", "/etc/passwd",
                     "link.txt", "out/secret.txt", "out", ".hidden", "inner/./table.tsv"]:
            with self.subTest(path=path):
                answer = self.bench.get("/files/results/" + path)
                self.assert_refused(answer, 403)
                self.assertNotIn(b"secret\n", answer[2])
                listed = self.bench.get(f"/api/files?folder=results&path={path}")
                self.assertEqual(listed[0], 403, listed)

    def test_maps_and_underlays_of_elsewhere(self):
        (self.folder / "secret.tav").write_text("secret")
        for path in ["../secret.tav", "%2e%2e/secret.tav", "out/secret.tav", "/etc/passwd", ".hidden"]:
            with self.subTest(path=path):
                self.assert_refused(self.bench.get(f"/api/maps?folder=results&path={path}"), 403)
                self.assert_refused(self.bench.get(f"/api/results/underlays?folder=results&path={path}&name=x"), 403)
        for path in ["pipe", "inner", "none.tav"]:
            self.assert_refused(self.bench.get(f"/api/maps?folder=results&path={path}"), 404)
        self.assert_refused(self.bench.get("/api/maps?folder=results&path=page.html"), 400)
        for name in ["", "../results/page", "none"]:
            self.assert_refused(self.bench.get(f"/api/results/underlays?folder=results&path=&name={name}"), 404)

    def test_names_that_no_file_has(self):
        self.assert_refused(self.bench.get("/files/results/page.html%00.txt"), 400)
        self.assert_refused(self.bench.get("/files/results/%0d%0aSet-Cookie:x"), 400)
        self.assert_refused(self.bench.get("/api/files?folder=results&path=inner%00/../.."), 403)
        for path in ["%252e%252e/secret.txt", "..%5csecret.txt%20", "none.txt", "inner/none.txt"]:
            with self.subTest(path=path):
                self.assertIn(self.bench.get("/files/results/" + path)[0], [403, 404])
        self.assert_refused(self.bench.get("/files/none/page.html"), 404)
        self.assert_refused(self.bench.get("/files/%2e%2e/secret.txt"), 404)

    def test_what_is_no_file(self):
        for path in ["pipe", "inner", ""]:
            with self.subTest(path=path):
                self.assert_refused(self.bench.get("/files/results/" + path), 404)

    def test_lists_have_no_ways_out(self):
        entries = self.bench.json("/api/files?folder=results&path=")["entries"]
        self.assertEqual([entry["name"] for entry in entries], ["alias.tsv", "inner", "page.html"])

    def test_users_files_have_no_rights(self):
        status, headers, body = self.bench.get("/files/results/page.html")
        self.assertEqual((status, body), (200, b"<script>document.title = 'ran'</script>"))
        self.assertIn("sandbox allow-scripts", headers["content-security-policy"])
        self.assertNotIn("allow-same-origin", headers["content-security-policy"])
        self.assertEqual(headers["x-content-type-options"], "nosniff")

    # Reports that their own index links to: pages without the cookie's rights, at an address that nobody guesses

    def index_address(self):
        folders = self.bench.json("/api/results")["folders"]
        return "/" + next(folder["index"] for folder in folders if folder["path"] == "inner/study")

    def test_reports_below_an_index_need_no_cookie_and_have_no_rights(self):
        address = self.index_address()
        for path in [address, address.replace("index.html", "sub.html")]:
            status, headers, body = self.bench.ask("GET", path)
            self.assertEqual((status, body), (200, b"<p>page</p>"))
            self.assertIn("sandbox allow-scripts", headers["content-security-policy"])
            self.assertNotIn("allow-same-origin", headers["content-security-policy"])
        self.assertEqual(self.bench.ask("GET", address, {"Host": "evil.example"})[0], 403)
        self.assertEqual(self.bench.ask("GET", address, {"Origin": "null"})[0], 403)
        self.assertEqual(self.bench.ask("POST", address, self.signed(), b"{}")[0], 405)

    def test_an_index_opens_nothing_but_pages_below_it(self):
        base = self.index_address().removesuffix("index.html")
        for path in ["../above.html", "%2e%2e/above.html", "../../page.html", ".hid/page.html", "out.html",
                     "made_seed-V1_tavmap.json", "/etc/passwd", "%2fetc%2fpasswd"]:
            with self.subTest(path=path):
                self.assert_refused(self.bench.ask("GET", base + path), 403)
        self.assert_refused(self.bench.ask("GET", base + "none.html"), 404)

    def test_keys_of_reports_cannot_be_made_up(self):
        key = self.index_address().split("/")[2]
        self.assertGreaterEqual(len(key), 64)
        for other in ["", "0" * 64, key[:-1], key + "0", self.bench.token, self.bench.cookie.partition("=")[2]]:
            with self.subTest(key=other):
                self.assert_refused(self.bench.ask("GET", f"/reports/{other}/index.html"), 404)
        self.assertNotIn(key, [self.bench.token, self.bench.cookie.partition("=")[2]])

    def test_links_within_are_followed(self):
        self.assertEqual(self.bench.get("/files/results/alias.tsv")[::2], (200, b"a\tb\n"))


if __name__ == "__main__":
    HostileBench.PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
