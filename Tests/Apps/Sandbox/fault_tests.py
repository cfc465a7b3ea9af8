"""What a faults file does to calls, and what the request log tells of them."""

import http.client
import json
import os
import socket
import ssl
import subprocess
import time
import unittest

from sandbox import *

STATUS_PATH = "/kestroms/status-check"


class FaultTests(SandboxTest):
    def check(self, sandbox, connection=None):
        return sandbox.call("POST", STATUS_PATH, CODES, connection=connection)

    def test_rules_hit_the_calls_that_they_name(self):
        sandbox = self.start(faults=[
            {"endpoint": "statusCheck", "call": 2, "status": 503},
            {"endpoint": "statusCheck", "call": [3, 5], "status": 500, "body": {"statusCode": 500}},
            {"endpoint": "statusCheck", "call": "all", "status": 418, "text": "<tea>", "headers": {"X-Tea": "1"}},
            {"endpoint": "mobileLogin", "call": 1, "status": 302, "headers": {"Location": "/elsewhere"}},
            {"endpoint": "getConfiguration", "call": "all", "status": 200, "text": "{",
             "headers": {"content-type": "a/b"}},
        ])
        connection = sandbox.connection()
        answers = [self.check(sandbox, connection) for _ in range(5)]
        self.assertEqual([answer.status for answer in answers], [418, 503, 500, 418, 500])
        self.assertEqual([answer.body for answer in answers[:3]], [b"<tea>", b"", b'{"statusCode":500}'])
        self.assertEqual(answers[0].headers["X-Tea"], "1")
        self.assertEqual(answers[0].headers["Content-Type"], "text/plain; charset=utf-8")
        connection.close()
        redirect = sandbox.call("POST", "/auth/mobile-login", CODES)
        self.assertEqual((redirect.status, redirect.headers["Location"]), (302, "/elsewhere"))
        self.assertTrue(sandbox.token())
        brand = sandbox.call("GET", "/brand-configs/sdk")
        self.assertEqual((brand.body, brand.headers.get_all("Content-Type")), (b"{", ["a/b"]))

    def test_what_was_handled_before_the_fault_is_kept(self):
        answers = f"/kestroms/{CASE}/answers"
        rules = [
            ({"status": 500}, "http", False),
            ({"status": 500, "handle": True}, "http", True),
            ({"drop": "beforeBody"}, "reset", False),
            ({"drop": "afterBody"}, "reset", False),
            ({"drop": "afterBody", "handle": True}, "reset", True),
            ({"drop": "duringResponse"}, "half a head", True),
            ({"drop": "duringResponse", "status": 500, "body": [1, 2, 3]}, "cut", False),
            ({"garbage": True}, "garbage", False),
            ({"garbage": True, "handle": True}, "garbage", True),
            ({"drop": "afterResponse"}, "reset after", True),
            ({"drop": "afterResponse", "status": 500}, "reset after", False),
        ]
        faults = [{"endpoint": "submitAnswer", "call": i + 1, **rule} for i, (rule, _, _) in enumerate(rules)]
        sandbox = self.start(faults=faults)
        token = sandbox.token()
        # Python's client takes half a head for a whole one, and the reset of an encrypted connection for its end.
        wanted = {"http": None, "reset": (ConnectionError, ssl.SSLEOFError), "half a head": None,
                  "cut": http.client.IncompleteRead, "garbage": http.client.BadStatusLine, "reset after": None}
        kept = []
        for index, (rule, outcome, isKept) in enumerate(rules):
            with self.subTest(str(rule)):
                connection = sandbox.connection()
                failure = None
                try:
                    sandbox.call("POST", answers, answer_body(f"m{index}"), token, connection=connection)
                    if outcome == "reset after":
                        with socket.socket(fileno=os.dup(connection.sock.fileno())) as plain:
                            plain.settimeout(20)
                            self.assertRaises(ConnectionResetError, plain.recv, 1)
                except (OSError, http.client.HTTPException) as error:
                    failure = error
                connection.close()
                if wanted[outcome]:
                    self.assertIsInstance(failure, wanted[outcome])
                else:
                    self.assertIsNone(failure)
                kept += [f"m{index}"] if isKept else []
                history = sandbox.call("GET", answers, token=token).json()["answers"]
                self.assertEqual([answer["messageId"] for answer in history], kept)
        logged = [entry for entry in sandbox.log() if entry["endpoint"] == "submitAnswer"]
        self.assertEqual([entry["status"] for entry in logged],
                         [500, 500, None, None, None, 204, 500, None, None, 204, 500])
        self.assertEqual([entry["fault"] for entry in logged], faults)
        self.assertEqual([entry["body"] is None for entry in logged],
                         [rule.get("drop") == "beforeBody" for rule, _, _ in rules])

    def test_cuts_an_answer_in_its_middle(self):
        rule = {"call": "all", "drop": "duringResponse"}
        sandbox = self.start(faults=[{**rule, "endpoint": "getBot"}, {**rule, "endpoint": "media"}])
        token = sandbox.token()
        content = bytes(range(256)) * 4000
        url = sandbox.call("POST", UPLOAD_PATH, form(content), token, form_headers()).json()["url"]
        bot = (EXAMPLES / "home-inspection.json").read_bytes()
        for path, whole in (f"/bots/{BOT}/sequence", bot), (url.removeprefix(f"https://{HOST}"), content):
            with self.assertRaises(http.client.IncompleteRead) as caught:
                sandbox.call("GET", path, token=token)
            half = len(whole) // 2
            self.assertEqual((caught.exception.partial, caught.exception.expected), (whole[:half], len(whole) - half))

    def test_tells_consents_and_profiles_apart(self):
        sandbox = self.start(faults=[{"endpoint": "submitUserConstent", "call": 2, "status": 500},
                                     {"endpoint": "saveUserProfile", "call": 1, "drop": "beforeBody"}])
        token = sandbox.token()
        outcomes = []
        for body in CONSENT, PROFILE, CONSENT, PROFILE:
            try:
                outcomes.append(sandbox.call("POST", PROFILE_PATH, body, token).status)
            except ConnectionError:
                outcomes.append("reset")
        self.assertEqual(outcomes, [204, "reset", 500, 204])

    def test_delays_a_reset_too(self):
        for drop in "beforeBody", "afterBody":
            sandbox = self.start(faults=[{"endpoint": "statusCheck", "call": 1, "delay": 0.05, "drop": drop}])
            begin = time.monotonic()
            self.assertRaises((http.client.RemoteDisconnected, OSError), self.check, sandbox)
            self.assertGreaterEqual(time.monotonic() - begin, 0.05)
            sandbox.stop()

    def test_delays_an_answer_but_not_what_is_done_nor_the_end(self):
        sandbox = self.start(faults=[{"endpoint": "statusCheck", "call": 1, "delay": 0.05},
                                     {"endpoint": "submitAnswer", "call": "all", "delay": 3600}])
        token = sandbox.token()
        begin = time.monotonic()
        self.assertEqual(self.check(sandbox).status, 200)
        self.assertGreaterEqual(time.monotonic() - begin, 0.05)

        path = f"/kestroms/{CASE}/answers"
        waiting = sandbox.connection()
        waiting.request("POST", path, json.dumps(answer_body()), {"authorization": f"Bearer {token}"})
        while not sandbox.call("GET", path, token=token).json()["answers"]:
            pass
        sandbox.stop()
        self.assertRaises((http.client.RemoteDisconnected, OSError), waiting.getresponse)
        waiting.close()

    def test_refuses_rules_that_say_nothing_clear(self):
        bare = {"endpoint": "statusCheck", "call": 1}
        good = {**bare, "status": 500}
        rows = [
            ("no JSON", "[", ""),
            ("no list", "{}", "not a list"),
            ("no rule", [1], "[0]: not an object"),
            ("no endpoint", [{"call": 1, "status": 500}], '"endpoint" is missing'),
            ("no call", [{"endpoint": "media", "status": 500}], '"call" is missing'),
            ("the second rule", [good, {**good, "endpoint": "statuscheck"}], "[1].endpoint"),
            ("call 0", [{**good, "call": 0}], "[0].call"),
            ("no calls", [{**good, "call": []}], "[0].call"),
            ("call of text", [{**good, "call": [1, "2"]}], "[0].call"),
            ("status", [{**good, "status": 100}], "[0].status"),
            ("unknown key", [{**good, "delays": 1}], "[0].delays"),
            ("two bodies", [{**good, "body": 1, "text": ""}], "[0].text"),
            ("body without status", [{**bare, "body": 1}], "status"),
            ("body with 204", [{**good, "status": 204, "body": 1}], "[0].status"),
            ("split header", [{**good, "headers": {"A": "b\r\nC: d"}}], "[0].headers"),
            ("length", [{**good, "headers": {"content-length": "1"}}], "[0].headers"),
            ("delay", [{**good, "delay": -1}], "[0].delay"),
            ("drop", [{**good, "drop": "now"}], "[0].drop"),
            ("answer of a dropped call", [{**good, "drop": "afterBody"}], "[0].status"),
            ("handled before the body", [{**bare, "drop": "beforeBody", "handle": True}], "[0].handle"),
            ("no answer at all", [{**bare, "handle": False, "delay": 1}], "[0].handle"),
            ("no fault", [bare], "nothing goes wrong"),
        ]
        file = self.directory / "faults.json"
        for label, content, words in rows:
            with self.subTest(label):
                file.write_text(content if isinstance(content, str) else json.dumps(content))
                ended = subprocess.run([PROGRAM, "--state", self.directory / "state", "--faults", file],
                                       capture_output=True, text=True, timeout=20)
                self.assertEqual((ended.returncode, ended.stdout), (1, ""))
                self.assertIn(str(file) + ": ", ended.stderr)
                self.assertIn(words, ended.stderr)


class RequestLogTests(SandboxTest):
    def test_tells_everything_that_arrived(self):
        sandbox = self.start()
        token = sandbox.token()
        upload = form(b"123", "tar", file_name='a"b.tar').replace(b'a"b', rb"a\"b")
        requests = [
            ("GET", f"/kestroms/{CASE}?a=%20b", None, {"X-One": "1", "x-Two": "\u00fc"}, "kestromObject", 200, None,
             "none"),
            ("POST", STATUS_PATH, b'{"b": [1.50, null]}', {}, "statusCheck", 422, {"b": [1.5, None]}, "json"),
            ("POST", STATUS_PATH, b"a\tb", {}, "statusCheck", 422, "a\tb", "text"),
            ("POST", STATUS_PATH, b"\xff\x00", {}, "statusCheck", 422, "/wA=", "base64"),
            ("POST", STATUS_PATH, b"x" * 100000, {}, "statusCheck", 422, "x" * 65536, "text"),
            ("PUT", "/nowhere", b"{}", {}, None, 404, {}, "json"),
            ("POST", UPLOAD_PATH, upload, form_headers(), "uploadMedia", 200, None, "none"),
        ]
        for method, target, body, headers, *_ in requests:
            sandbox.call(method, target, body, token, headers)
        log = sandbox.log()
        self.assertEqual([entry["number"] for entry in log], list(range(1, len(requests) + 2)))
        self.assertEqual((log[0]["endpoint"], log[0]["body"]), ("mobileLogin", CODES))
        calls = {}
        for entry, (method, target, body, headers, endpoint, status, logged, kind) in zip(log[1:], requests):
            with self.subTest(target):
                calls[endpoint] = calls.get(endpoint, 0) + 1
                self.assertEqual((entry["method"], entry["target"], entry["host"]), (method, target, HOST))
                self.assertEqual((entry["endpoint"], entry["status"]), (endpoint, status))
                self.assertEqual(entry["call"], calls[endpoint] if endpoint else 0)
                self.assertEqual((entry["body"], entry["bodyForm"]), (logged, kind))
                self.assertEqual(entry["bodySize"], len(body or b""))
                self.assertEqual(entry.get("raw"), body.decode() if kind == "json" else None)
                self.assertIn(["authorization", f"Bearer {token}"], entry["headers"])
                self.assertRegex(entry["time"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$")
        names = [name for name, _ in log[1]["headers"]]
        self.assertLess(names.index("X-One"), names.index("x-Two"))
        self.assertEqual(log[-1]["parts"], [{"name": "media", "fileName": 'a"b.tar', "contentType": "tar", "size": 3}])

    def test_goes_on_behind_the_last_whole_line(self):
        sandbox = self.start()
        sandbox.call("POST", STATUS_PATH, CODES)
        sandbox.stop()
        with open(sandbox.state / "requests.jsonl", "a") as file:
            file.write('{"number":9,"ti')
        sandbox = self.start()
        sandbox.call("POST", STATUS_PATH, CODES)
        self.assertEqual([entry["number"] for entry in sandbox.log()], [1, 1])


if __name__ == "__main__":
    unittest.main()
