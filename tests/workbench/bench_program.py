"""The built program's workbench, started for a test, and plain sockets to talk to it."""

import json
import os
import re
import signal
import socket
import subprocess
import time

PATIENCE = 30  # seconds; nothing here is timed


class Bench:
    """A running `tavmap workbench`; ends with the block that it was made for."""

    def __init__(self, program, arguments, folder, environment=None):
        command = [program, "workbench", *map(str, arguments), "--no-browser"]
        self.process = subprocess.Popen(
            command, cwd=folder, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            start_new_session=True)
        self.port, self.token = self._address()
        self.host = f"127.0.0.1:{self.port}"
        self.cookie = ""

    def _address(self):
        said = ""
        for line in self.process.stdout:
            said += line
            found = re.search(r"http://127\.0\.0\.1:(\d+)/#token=(\w+)", line)
            if found:
                return int(found.group(1)), found.group(2)
        self.process.communicate()
        raise AssertionError(f"the workbench did not start:\n{said}")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()

    def press_control_c(self):
        """As a terminal does: everything that runs in it is told."""
        os.killpg(self.process.pid, signal.SIGINT)
        return self.process.wait(PATIENCE)

    def end(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGINT)
        self.said = self.process.communicate(timeout=PATIENCE)[0]
        return self.process.returncode

    def connect(self):
        return socket.create_connection(("127.0.0.1", self.port), timeout=PATIENCE)

    def raw(self, data):
        """What is answered to these bytes; an end of the connection counts as the end."""
        with self.connect() as connection:
            try:
                connection.sendall(data)
            except (ConnectionResetError, BrokenPipeError):
                pass
            return read_all(connection)

    def ask(self, method, path, headers=None, body=None):
        """(status, headers, body) of a request as given: nothing is added but a host and a length."""
        headers = dict(headers or {})
        headers.setdefault("Host", self.host)
        if body is not None:
            headers.setdefault("Content-Length", str(len(body)))
        head = f"{method} {path} HTTP/1.1\r\n" + "".join(f"{k}: {v}\r\n" for k, v in headers.items() if v is not None)
        return parse(self.raw(head.encode("latin-1") + b"\r\n" + (body or b"")))

    def sign_in(self):
        status, headers, _ = self.ask("POST", "/api/session", {"Content-Type": "application/json"},
                                      json.dumps({"token": self.token}).encode())
        assert status == 204, status
        self.cookie = headers["set-cookie"].partition(";")[0]

    def get(self, path):
        return self.ask("GET", path, {"Cookie": self.cookie})

    def post(self, path, body):
        headers = {"Cookie": self.cookie, "X-Tavmap-Token": self.token, "Content-Type": "application/json"}
        return self.ask("POST", path, headers, json.dumps(body).encode())

    def json(self, path):
        status, _, body = self.get(path)
        assert status == 200, (path, status, body)
        return json.loads(body)


def read_all(connection):
    data = b""
    while True:
        try:
            piece = connection.recv(65536)
        except ConnectionResetError:
            return data
        if not piece:
            return data
        data += piece


def parse(data):
    if not data:
        return None, {}, b""
    head, _, body = data.partition(b"\r\n\r\n")
    lines = head.decode("latin-1").split("\r\n")
    headers = {name.lower(): value.strip() for name, _, value in (line.partition(":") for line in lines[1:])}
    return int(lines[0].split()[1]), headers, body


def wait_until(holds, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        value = holds()
        if value:
            return value
        time.sleep(0.05)
    raise AssertionError(f"waited in vain until {what}")
