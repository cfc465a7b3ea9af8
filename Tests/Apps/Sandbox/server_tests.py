"""The connection itself, many at once, and what lasts from one start to the next."""

import http.client
import json
import os
import shutil
import signal
import socket
import sqlite3
import ssl
import subprocess
import threading
import unittest

from sandbox import *


def post(path, body, *lines):
    head = [f"POST {path} HTTP/1.1", f"Host: {HOST}", *lines, "", ""]
    return "\r\n".join(head).encode() + body


def read_answer(stream):
    response = http.client.HTTPResponse(stream)
    response.begin()
    return Answer(response)


MULTIPART = "Content-Type: multipart/form-data; boundary=B"
CODES_TEXT = json.dumps(CODES).encode()


class ConnectionTests(SharedSandboxTest):
    def exchange(self, text):
        with self.sandbox.raw(text) as stream:
            return read_answer(stream)

    def test_answers_requests_of_any_form_on_one_connection(self):
        status = "/kestroms/status-check"
        length = f"Content-Length: {len(CODES_TEXT)}"
        chunks = b"3;a=b\r\n%s\r\n" % CODES_TEXT[:3]
        chunks += b"%x\r\n%s\r\n0\r\nT: 1\r\n\r\n" % (len(CODES_TEXT[3:]), CODES_TEXT[3:])
        one = post(status, CODES_TEXT, length)
        with self.sandbox.raw(one + one) as stream:
            both = stream.makefile("rb")
            for _ in range(2):
                length_line = [both.readline() for _ in range(4)][2]
                self.assertIn(b"in_progress", both.read(int(length_line.split()[1])))
            stream.sendall(post(status, chunks, "Transfer-Encoding: chunked"))
            self.assertEqual(read_answer(stream).json()["status"], "in_progress")
            stream.sendall(post(status, b"", length, "Expect: 100-continue"))
            self.assertEqual(stream.recv(1000), b"HTTP/1.1 100 Continue\r\n\r\n")
            for at in range(len(CODES_TEXT)):
                stream.sendall(CODES_TEXT[at : at + 1])
            self.assertEqual(read_answer(stream).json()["status"], "in_progress")
            stream.sendall(post(status, CODES_TEXT, length, "Connection: close"))
            self.assertEqual(read_answer(stream).status, 200)
            self.assertEqual(stream.recv(1), b"")

    def test_refuses_what_is_too_large_or_no_http(self):
        status = "/kestroms/status-check"
        chunk = b"100000\r\n" + b" " * 0x100000 + b"\r\n"
        for label, text, wanted in [
            ("no HTTP", b"\x16\x03 nonsense\r\n\r\n", 400),
            ("a bad header", b"GET / HTTP/1.1\r\nbad header\r\n\r\n", 400),
            ("a bad length", post(status, b"", "Content-Length: -1"), 400),
            ("two lengths", post(status, b"", "Content-Length: 1", "Content-Length: 2"), 400),
            ("length and chunks", post(status, b"0\r\n\r\n", "Content-Length: 5", "Transfer-Encoding: chunked"), 400),
            ("a bad chunk", post(status, b"x\r\n", "Transfer-Encoding: chunked"), 400),
            ("a long head", b"GET / HTTP/1.1\r\nA: " + b"a" * 100000 + b"\r\n\r\n", 431),
            ("a long target", b"GET /" + b"a" * 100000 + b" HTTP/1.1\r\n\r\n", 431),
            ("a long body", post(status, b"x", "Content-Length: 99999999999"), 413),
            ("a long upload", post(UPLOAD_PATH, b"x", MULTIPART, "Content-Length: 999999999",
                                    f"authorization: Bearer {self.token}"), 413),
            ("an upload of nobody's", post(UPLOAD_PATH, b"x", MULTIPART, "Content-Length: 999"), 401),
            ("many chunks", post(status, chunk * 6, "Transfer-Encoding: chunked"), 413),
        ]:
            with self.subTest(label):
                self.refused(self.exchange(text), wanted)
        self.assertEqual(self.call("POST", status, CODES).status, 200)

    def test_a_body_that_is_cut_changes_nothing(self):
        body = json.dumps(answer_body()).encode()
        upload = form(b"x" * 100000)
        answers = f"/kestroms/{CASE}/answers"
        for path, text, kind in (answers, body, "Content-Type: application/json"), (UPLOAD_PATH, upload, MULTIPART):
            lines = [f"authorization: Bearer {self.token}", kind, f"Content-Length: {len(text)}"]
            with self.sandbox.raw(post(path, text[:-1], *lines)) as stream:
                stream.shutdown(socket.SHUT_WR)
                while stream.recv(1000):
                    pass
            entry = self.sandbox.log()[-1]
            self.assertEqual((entry["target"], entry["status"]), (path, None))
            self.assertEqual(entry["bodySize"], len(text) - 1)
            if path == answers:
                self.assertEqual((entry["bodyForm"], entry["body"]), ("text", body.decode()[:-1]))
        self.assertEqual(self.call("GET", f"/kestroms/{CASE}/answers", token=self.token).json(), {"answers": []})
        self.assertEqual(list((self.sandbox.state / "media").glob("*.jpeg")), [])

    def test_clients_that_do_not_trust_it_or_speak_no_tls_do_no_harm(self):
        with socket.create_connection(("127.0.0.1", self.sandbox.port)) as plain:
            plain.sendall(b"GET / HTTP/1.1\r\n\r\n")
        with socket.create_connection(("127.0.0.1", self.sandbox.port)) as plain:
            context = ssl.create_default_context()
            self.assertRaises(ssl.SSLError, context.wrap_socket, plain, server_hostname=HOST)
        for host in HOSTS + ["localhost", "127.0.0.1"]:
            self.assertEqual(self.call("POST", "/kestroms/status-check", CODES, host=host).status, 200)
        self.assertRaises(ssl.CertificateError, self.call, "GET", "/", host="other.example")

    def test_serves_a_hundred_clients_at_once(self):
        everybody = threading.Barrier(100)
        outcomes = []

        def client(number):
            connection = self.sandbox.connection()
            connection.connect()
            everybody.wait(20)
            path = f"/kestroms/{INVITED_CASE}/answers"
            for iteration in range(3):
                body = answer_body(f"m{number}", iterationId=iteration)
                outcomes.append(self.call("POST", path, body, token, connection=connection).status)
            connection.close()

        token = self.sandbox.token(INVITED_CODES)
        threads = [threading.Thread(target=client, args=(number,)) for number in range(100)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(outcomes, [204] * 300)
        history = self.call("GET", f"/kestroms/{INVITED_CASE}/answers", token=token).json()["answers"]
        self.assertEqual(len({(answer["messageId"], answer["iterationId"]) for answer in history}), 300)
        self.assertEqual([entry["number"] for entry in self.sandbox.log()], list(range(1, len(self.sandbox.log()) + 1)))


class StateTests(SandboxTest):
    def run_program(self, *arguments):
        command = [PROGRAM, *map(str, arguments)]
        return subprocess.run(command, capture_output=True, text=True, timeout=20, cwd=self.directory)

    def test_a_restart_and_a_kill_keep_everything(self):
        first = self.start()
        token = first.token(INVITED_CODES)
        case = f"/kestroms/{INVITED_CASE}"
        self.assertEqual(first.call("POST", case + "/answers", answer_body(), token).status, 204)
        name = first.call("POST", UPLOAD_PATH, form(b"123"), token, form_headers()).json()["url"].rpartition("/")[2]
        authority = (first.state / "ca.pem").read_bytes()
        certificate = (first.state / "server.pem").read_bytes()
        (first.state / "media" / "left.unfinished").write_bytes(b"half")
        first.process.send_signal(signal.SIGKILL)
        first.process.wait()

        second = self.start()
        self.assertEqual(second.call("GET", case, token=token).json()["status"], "in_progress")
        self.assertEqual(len(second.call("GET", case + "/answers", token=token).json()["answers"]), 1)
        self.assertEqual(second.call("GET", "/media/" + name).body, b"123")
        self.assertEqual([file.name for file in (second.state / "media").iterdir()], [name])
        self.assertEqual((second.state / "ca.pem").read_bytes(), authority)
        self.assertEqual((second.state / "server.pem").read_bytes(), certificate)
        second.stop()
        third = self.start()
        self.assertEqual(third.call("GET", case, token=token).json()["status"], "in_progress")

    def test_keys_are_private_and_broken_certificates_are_made_anew(self):
        sandbox = self.start()
        for file in "ca.key", "server.key", "requests.jsonl", "sandbox.db":
            self.assertEqual((sandbox.state / file).stat().st_mode & 0o777, 0o600, file)
        sandbox.stop()
        authority = (sandbox.state / "ca.pem").read_bytes()
        for file, staysTrusted in ("server.pem", True), ("server.key", True), ("ca.key", False), ("ca.pem", False):
            with self.subTest(file):
                (sandbox.state / file).write_bytes(b"broken")
                again = self.start()
                self.assertEqual(again.call("POST", "/kestroms/status-check", CODES).status, 200)
                again.stop()
                self.assertEqual((sandbox.state / "ca.pem").read_bytes() == authority, staysTrusted)

    def test_one_server_at_a_time_uses_a_directory(self):
        sandbox = self.start()
        ended = self.run_program("--state", sandbox.state, "--seed", EXAMPLES / "sandbox.json")
        self.assertEqual((ended.returncode, ended.stdout), (1, ""))
        self.assertIn("another kestrom-sandbox", ended.stderr)
        ended = self.run_program("--state", "other", "--seed", EXAMPLES / "sandbox.json", "--port", sandbox.port)
        self.assertEqual(ended.returncode, 1)
        self.assertIn(f"127.0.0.1:{sandbox.port}", ended.stderr)

    def test_tells_where_it_listens_and_ends_when_told(self):
        os.mkdir(self.directory / "examples")
        for file in EXAMPLES.glob("*.json"):
            shutil.copy(file, self.directory / "examples")
        for number in signal.SIGTERM, signal.SIGINT:
            with subprocess.Popen([PROGRAM], stdout=subprocess.PIPE, text=True, cwd=self.directory) as process:
                line = process.stdout.readline()
                authority = self.directory / ".kestrom-sandbox" / "ca.pem"
                self.assertRegex(line, rf"^listening on 127\.0\.0\.1:\d+, certificate authority {authority}\n$")
                process.send_signal(number)
                self.assertEqual((process.wait(20), process.stdout.read()), (0, ""))

    def test_a_shell_can_evaluate_a_directory_of_any_name(self):
        self.directory = self.directory / "it's $HOME"
        self.directory.mkdir()
        self.assertEqual(self.start().request_log, self.directory / "state" / "requests.jsonl")

    def test_wrong_usage_is_told_apart(self):
        for arguments, status in [
            (["--help"], 0),
            (["--port", "65536"], 2),
            (["--port", "-1"], 2),
            (["--nonsense"], 2),
            (["extra"], 2),
            (["--seed"], 2),
            (["--seed", "missing.json"], 1),
            (["--faults", "missing.json"], 1),
        ]:
            with self.subTest(arguments):
                self.assertEqual(self.run_program(*arguments).returncode, status)

    def test_seeds_are_checked_and_stay_in_their_folder(self):
        seeds = self.directory / "seeds"
        shutil.copytree(EXAMPLES, seeds)
        (self.directory / "outside.json").write_text("{}")
        (seeds / "link.json").symlink_to(self.directory / "outside.json")
        (seeds / "broken.json").write_text("{")
        case = json.loads((seeds / "home-inspection.case.json").read_text())
        (seeds / "twin.case.json").write_text(json.dumps({**case, "_id": "twin"}))
        (seeds / "botless.case.json").write_text(json.dumps({**case, "bot": {"_id": "none", "name": ""}}))
        (seeds / "nameless.case.json").write_text(json.dumps({**case, "customer": {"email": "", "lastName": ""}}))
        good = json.loads((seeds / "sandbox.json").read_text())

        def with_case(file):
            return {**good, "cases": good["cases"] + [{"file": file, "expiration": ""}]}

        rows = [
            ({**good, "bots": [{"id": "a", "file": "../outside.json"}]}, "outside the folder"),
            ({**good, "bots": [{"id": "a", "file": "link.json"}]}, "outside the folder"),
            ({**good, "brands": [{"id": "a", "file": str(self.directory / "outside.json")}]}, "outside the folder"),
            ({**good, "brands": [{"id": "a", "file": "broken.json"}]}, "broken.json: "),
            ({**good, "bots": [{"id": "a", "file": "missing.json"}]}, "missing.json: no such file"),
            ({**good, "bots": [{"id": "a"}]}, "bots[0].file"),
            (with_case("twin.case.json"), "twin.case.json: another case"),
            (with_case("botless.case.json"), "botless.case.json: bot._id"),
            (with_case("nameless.case.json"), "nameless.case.json: customer.firstName"),
            ([], "object"),
        ]
        for number, (seed, words) in enumerate(rows):
            with self.subTest(words):
                (seeds / "sandbox.json").write_text(json.dumps(seed))
                ended = self.run_program("--state", f"state{number}", "--seed", seeds / "sandbox.json")
                self.assertEqual(ended.returncode, 1)
                self.assertIn(words, ended.stderr)

    def test_a_damaged_database_is_told(self):
        os.mkdir(self.directory / "state")
        (self.directory / "state" / "sandbox.db").write_bytes(b"no database" * 1000)
        ended = self.run_program("--state", "state", "--seed", EXAMPLES / "sandbox.json")
        self.assertEqual(ended.returncode, 1)
        self.assertIn("database", ended.stderr)


if __name__ == "__main__":
    unittest.main()
