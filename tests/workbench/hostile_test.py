#!/usr/bin/env python3
"""Requests that the workbench must refuse, each with its status, sent to the built program; it then still answers.

Usage: hostile_test.py PROGRAM
"""

import json
import os
import socket
import sys
import threading
import unittest
from pathlib import Path

from bench_program import Bench, parse, read_all
from hostile_bench import JSON, HostileBench


class Hostile(HostileBench):
    # Who asks

    def test_other_hosts(self):
        port = self.bench.port
        for host in ["evil.example", f"evil.example:{port}", "127.0.0.1", "localhost", f"127.0.0.1:{port + 1}",
                     f"127.0.0.1:{port}@evil.example", f"0.0.0.0:{port}", "", None]:
            with self.subTest(host=host):
                self.assert_refused(self.bench.ask("GET", "/", {"Host": host}), 403)
                self.assert_refused(self.bench.ask("GET", "/api/start", self.signed(Host=host)), 403)

    def test_two_hosts(self):
        data = f"GET / HTTP/1.1\r\nHost: {self.bench.host}\r\nHost: evil.example\r\n\r\n"
        self.assert_refused(parse(self.bench.raw(data.encode())), 403)

    def test_other_origins(self):
        body = json.dumps({"token": self.bench.token}).encode()
        for origin in ["http://evil.example", "null", "https://" + self.bench.host, "http://127.0.0.1",
                       f"http://localhost:{self.bench.port}", self.bench.host]:
            with self.subTest(origin=origin):
                self.assert_refused(self.bench.ask("POST", "/api/session", {"Origin": origin, **JSON}, body), 403)
                self.assert_refused(self.bench.ask("GET", "/api/start", self.signed(Origin=origin)), 403)
        own = self.signed(Origin="http://" + self.bench.host)
        self.assertEqual(self.bench.ask("GET", "/api/start", own)[0], 200)

    def test_no_session(self):
        for cookie in [None, "", "tavmap=1", f"tavmap_{self.bench.port}=" + "0" * 64, self.bench.cookie[:-1],
                       self.bench.cookie + "0", "x" + self.bench.cookie]:
            with self.subTest(cookie=cookie):
                for path in ["/api/start", "/api/files?folder=results&path=", "/files/results/page.html", "/api/runs",
                             "/api/results", "/api/runs/events", "/api/maps?folder=results&path=page.html",
                             "/api/results/underlays?folder=results&path=&name=x"]:
                    self.assert_refused(self.bench.ask("GET", path, {"Cookie": cookie}), 401)

    def test_wrong_token(self):
        for token in ["", "0" * 64, self.bench.token[:-1], self.bench.token + "0", self.bench.cookie]:
            with self.subTest(token=token):
                body = json.dumps({"token": token}).encode()
                self.assert_refused(self.bench.ask("POST", "/api/session", JSON, body), 403)
                headers = {"Cookie": self.bench.cookie, "X-Tavmap-Token": token, **JSON}
                self.assert_refused(self.bench.ask("POST", "/api/runs", headers, b"{}"), 403)
        without = {"X-Tavmap-Token": self.bench.token, **JSON}
        self.assert_refused(self.bench.ask("POST", "/api/runs", without, b"{}"), 401)

    def test_the_cookie_is_for_this_page_alone(self):
        body = json.dumps({"token": self.bench.token}).encode()
        cookie = self.bench.ask("POST", "/api/session", JSON, body)[1]["set-cookie"]
        for part in ["HttpOnly", "SameSite=Strict", "Path=/"]:
            self.assertIn(part, cookie)
        self.assertNotIn(self.bench.token, cookie)

    # What is asked

    def test_other_methods(self):
        for method in ["POST", "PUT", "DELETE", "PATCH", "OPTIONS", "HEAD"]:
            with self.subTest(method=method):
                status, _, body = self.bench.ask(method, "/api/start", self.signed(), b"{}" if method != "HEAD" else None)
                self.assertEqual(status, 405)
        self.assert_refused(self.bench.ask("GET", "/api/session", self.signed()), 405)
        self.assert_refused(self.bench.ask("BREW", "/", self.signed()), 400)

    def test_unknown_paths(self):
        for path in ["/api", "/api/", "/api/start/", "/nothing", "//", "/workbench.js/", "/etc/passwd", "/..", "/api/runs/x/y/z"]:
            with self.subTest(path=path):
                self.assert_refused(self.bench.get(path), 404)

    def test_what_is_no_request(self):
        for data in [b"\r\n\r\n", b"GET\r\n\r\n", b"GET / HTTP/9.9\r\n\r\n", b"\x16\x03\x01\x02\x00\x01\x00\r\n\r\n",
                     b"GET / HTTP/1.1\nHost: x\n\n", b"\x00" * 64 + b"\r\n\r\n"]:
            with self.subTest(data=data):
                status = parse(self.bench.raw(data))[0]
                self.assertIn(status, [None, 400, 403])
        self.assert_refused(self.bench.ask("GET", "http://evil.example/", self.signed()), 400)

    def test_no_reply_invites_other_sites(self):
        for path in ["/", "/api/start", "/nothing", "/files/results/page.html"]:
            with self.subTest(path=path):
                headers = self.bench.get(path)[1]
                self.assertNotIn("access-control-allow-origin", headers)
                self.assertIn("default-src 'none'", headers["content-security-policy"])

    # How much

    def test_huge_bodies(self):
        for length in [str(1 << 20), str(1 << 62), "9" * 40]:
            with self.subTest(length=length):
                answer = self.bench.ask("POST", "/api/runs", self.signed(**{"Content-Length": length}), b"x" * 100000)
                self.assert_refused(answer, 413)
        self.assert_refused(self.bench.ask("GET", "/api/start", self.signed(), b"x" * 10), 413)

    def test_bodies_of_unknown_length(self):
        for more in [{"Transfer-Encoding": "chunked"}, {}]:
            with self.subTest(more=more):
                self.assert_refused(self.bench.ask("POST", "/api/runs", self.signed(**more)), 411)
        for length in ["-1", "1x", "0x10", " ", "1, 1"]:
            with self.subTest(length=length):
                answer = self.bench.ask("POST", "/api/runs", self.signed(**{"Content-Length": length}), b"{}")
                self.assertIn(answer[0], [400, 411], answer)

    def test_bodies_of_another_kind(self):
        for kind in ["text/plain", "application/x-www-form-urlencoded", "multipart/form-data; boundary=x", None]:
            with self.subTest(kind=kind):
                headers = self.signed(**{"Content-Type": kind})
                self.assert_refused(self.bench.ask("POST", "/api/runs", headers, b'{"a":1}'), 415)
        zipped = self.signed(**{"Content-Encoding": "gzip"})
        self.assert_refused(self.bench.ask("POST", "/api/runs", zipped, b"{}"), 415)
        for body in [b"", b"[]", b"{", b"nonsense", b"\xff\xfe", b"[" * 60000]:
            with self.subTest(body=body[:10]):
                self.assert_refused(self.bench.ask("POST", "/api/runs", self.signed(), body), 400)

    def test_huge_heads(self):
        for head in [f"GET /{'a' * 100000} HTTP/1.1\r\n\r\n", f"GET / HTTP/1.1\r\nX: {'a' * 100000}\r\n\r\n",
                     "GET / HTTP/1.1\r\n" + "X: y\r\n" * 20000 + "\r\n", "a" * 1000000]:
            with self.subTest(head=head[:30]):
                self.assertIn(parse(self.bench.raw(head.encode()))[0], [None, 400, 414])

    def test_parts_asked_for_many_times(self):
        for ranges in ["0-0," * 1500 + "0-0", "0-", "5-1", "x"]:
            with self.subTest(ranges=ranges[:10]):
                status, headers, body = self.bench.ask("GET", "/files/results/page.html",
                                                       self.signed(Range="bytes=" + ranges))
                self.assertIn(status, [200, 400, 416])
                self.assertLess(len(body), 1000)

    # How many, how slowly

    def test_many_connections_at_once(self):
        idle = [self.bench.connect() for _ in range(200)]
        asked = self.bench.ask("GET", "/", {})
        self.assertIn(asked[0], [200, 501, 503, None])
        refused = 0
        for connection in idle:
            connection.setblocking(False)
            try:
                refused += connection.recv(100).startswith(b"HTTP/1.1 503")
            except (BlockingIOError, ConnectionResetError):
                pass
            connection.close()
        self.assertGreater(refused, 50)

    def test_slow_clients_do_not_keep_others_waiting(self):
        slow = [self.bench.connect() for _ in range(40)]
        for connection in slow:
            connection.sendall(b"GET / HT")
        self.assertEqual(self.bench.get("/api/start")[0], 200)
        for connection in slow:
            connection.close()

    def test_slow_clients_are_given_up(self):
        with self.bench.connect() as connection:
            connection.sendall(b"GET / HTTP/1.1\r\nHost: ")
            self.assertIn(parse(read_all(connection))[0], [None, 400])  # or the socket's own patience fails the test

    def test_two_hundred_requests_at_once(self):
        statuses = []
        asking = [threading.Thread(target=lambda: statuses.append(self.bench.get("/api/start")[0])) for _ in range(200)]
        for thread in asking:
            thread.start()
        for thread in asking:
            thread.join()
        self.assertIn(200, statuses)
        self.assertLessEqual(set(statuses), {200, 503})

    def test_bodies_that_never_come_keep_nobody_waiting(self):
        head = "".join(f"{name}: {value}\r\n" for name, value in self.signed(Host=self.bench.host).items())
        waiting = [self.bench.connect() for _ in range(20)]
        for connection in waiting:
            connection.sendall(f"POST /api/runs HTTP/1.1\r\n{head}Content-Length: 100\r\n\r\n{{".encode())
        self.assertEqual(self.bench.get("/api/start")[0], 200)
        for connection in waiting:
            connection.close()

    def test_clients_that_leave(self):
        for _ in range(100):
            connection = self.bench.connect()
            connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b"\1\0\0\0\0\0\0\0")
            connection.sendall(f"GET /api/runs/events HTTP/1.1\r\nHost: {self.bench.host}\r\n"
                               f"Cookie: {self.bench.cookie}\r\n\r\n".encode())
            connection.close()

    def test_it_listens_on_the_loopback_alone(self):
        hexadecimal = f"{self.bench.port:04X}"
        listening = [line.split()[1] for line in Path("/proc/net/tcp").read_text().splitlines()[1:]
                     if line.split()[3] == "0A" and line.split()[1].endswith(":" + hexadecimal)]
        self.assertEqual(listening, ["0100007F:" + hexadecimal])
        if Path("/proc/net/tcp6").exists():
            self.assertNotIn(f":{hexadecimal} 0000", Path("/proc/net/tcp6").read_text())

    def test_it_ends_while_clients_hang(self):
        other = Bench(self.PROGRAM, ["results", "--work-folder", "other"], self.folder)
        with other.connect() as hanging:
            hanging.sendall(b"GET / HT")
            self.assertEqual(other.end(), 0)

    def test_a_port_is_not_shared(self):
        with self.assertRaisesRegex(AssertionError, "cannot be taken"):
            Bench(self.PROGRAM, ["results", "--port", self.bench.port, "--work-folder", "other"], self.folder)

    def test_a_work_folder_has_one_workbench(self):
        with self.assertRaisesRegex(AssertionError, "process"):
            Bench(self.PROGRAM, ["results"], self.folder)


if __name__ == "__main__":
    HostileBench.PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
