"""Runs the sandbox server as a user does and talks to it with Python's own HTTP client."""

import http.client
import json
import os
import shlex
import shutil
import socket
import ssl
import subprocess
import tempfile
import unittest
from pathlib import Path

PROGRAM = os.environ["KESTROM_SANDBOX"]
SOURCE = Path(os.environ["KESTROM_SOURCE"])
EXAMPLES = SOURCE / "examples"
HOSTS = os.environ["KESTROM_API_HOSTS"].split(",")
HOST = HOSTS[1]

CASE = "64f0c1a2b3d4e5f60718293a"
INVITED_CASE = "64f0c1a2b3d4e5f60718293b"
BOT = "64f0c1a2b3d4e5f607182900"
ORGANIZATION = "5f1d7a9e0c2b4d0017a3c8e1"
CODES = {"zipCode": "05401", "accessCode": "K7M2QX"}
INVITED_CODES = {"zipCode": "05403", "accessCode": "R4T9WB"}

PROFILE_PATH = "/integrations/firebase/user-profile"
UPLOAD_PATH = "/integrations/firebase/upload-media"
EVENTS_PATH = "/integrations/analytics/fullstory/batched-events"
GEOCODE_PATH = "/integrations/geolocations/geocode"

CONSENT = {"termsDocumentVersion": "3", "consentDate": "2025-02-03T09:15:00Z", "termsDocumentDate": ""}
PROFILE = {"organizationId": ORGANIZATION, "kestromId": CASE}


def answer_body(message="intro.hello", **changes):
    body = {
        "value": "Yes",
        "keyValue": {"key": "true", "value": "Yes"},
        "iterationId": 0,
        "messageId": message,
        "moduleId": "intro",
        "type": "boolean",
        "locationType": "none",
        "answeredAt": "2025-02-03T09:15:00Z",
    }
    body.update(changes)
    return {key: value for key, value in body.items() if value is not ...}


def form(content, content_type="jpeg", name="media", file_name="a.jpeg", boundary="B"):
    """The form as the kit writes it: no line end behind the closing delimiter."""
    head = f'--{boundary}\r\nContent-Disposition: form-data; name="{name}"; filename="{file_name}"\r\n'
    head += f"Content-Type: {content_type}\r\n\r\n"
    return head.encode() + content + f"\r\n--{boundary}--".encode()


def form_headers(boundary="B"):
    return {"Content-Type": f"multipart/form-data; boundary={boundary}"}


class Answer:
    def __init__(self, response):
        self.status = response.status
        self.headers = response.headers
        self.body = response.read()

    def json(self):
        return json.loads(self.body)


class Connection(http.client.HTTPSConnection):
    """Goes to the server's address whatever the host's name; name and certificate are checked all the same."""

    def __init__(self, sandbox, host):
        super().__init__(host, timeout=20, context=sandbox.context)
        self._port = sandbox.port

    def connect(self):
        plain = socket.create_connection(("127.0.0.1", self._port), timeout=20)
        self.sock = self._context.wrap_socket(plain, server_hostname=self.host)


class Sandbox:
    def __init__(self, state, faults=None, seed=None):
        self.state = Path(state)
        command = [PROGRAM, "--state", str(state), "--seed", str(seed or EXAMPLES / "sandbox.json"), "--print-env"]
        if faults is not None:
            file = self.state.with_suffix(".faults.json")
            file.write_text(json.dumps(faults))
            command += ["--faults", str(file)]
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        variables = {}
        for line in self.process.stdout:
            if line == "# ready\n":
                break
            name, _, value = line.partition("=")
            variables[name] = shlex.split(value)[0]
        else:
            raise AssertionError("no server: " + self.process.communicate()[1])
        self.port = int(variables["KESTROM_CONNECT_TO"].rpartition(":")[2])
        self.request_log = Path(variables["KESTROM_REQUEST_LOG"])
        self.context = ssl.create_default_context(cafile=variables["KESTROM_CACERT"])
        self.tokens = {}

    def stop(self):
        self.process.terminate()
        _, errors = self.process.communicate(timeout=20)
        if self.process.returncode != 0 or errors:
            raise AssertionError(f"ended with {self.process.returncode}: {errors}")

    def connection(self, host=HOST):
        return Connection(self, host)

    def call(self, method, path, body=None, token=None, headers=None, connection=None, host=HOST):
        """`body` is bytes, or a value that is sent as JSON."""
        headers = dict(headers or {})
        if body is not None and not isinstance(body, bytes):
            body = json.dumps(body).encode()
            headers.setdefault("Content-Type", "application/json")
        if token:
            headers["authorization"] = f"Bearer {token}"
        used = connection or self.connection(host)
        try:
            used.request(method, path, body, headers)
            return Answer(used.getresponse())
        finally:
            if not connection:
                used.close()

    def token(self, codes=None):
        codes = codes or CODES
        key = codes["accessCode"]
        if key not in self.tokens:
            self.tokens[key] = self.call("POST", "/auth/mobile-login", codes).json()["token"]
        return self.tokens[key]

    def raw(self, text=b""):
        """A socket on which `text` was sent."""
        connection = self.connection()
        connection.connect()
        connection.sock.sendall(text)
        return connection.sock

    def log(self):
        return [json.loads(line) for line in self.request_log.read_text().splitlines()]


class SandboxTest(unittest.TestCase):
    """A directory for each test, and servers that are stopped behind it."""

    def setUp(self):
        self.directory = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.directory)

    def start(self, **options):
        sandbox = Sandbox(self.directory / "state", **options)
        self.addCleanup(lambda: sandbox.process.poll() is None and sandbox.stop())
        self.addCleanup(sandbox.process.stderr.close)
        self.addCleanup(sandbox.process.stdout.close)
        return sandbox

    def refused(self, answer, status, words=""):
        """Refusals are all of one form."""
        self.assertEqual(answer.status, status, answer.body)
        body = answer.json()
        self.assertEqual(body["statusCode"], status)
        self.assertTrue(body["error"])
        self.assertIn(words, body["message"])


class SharedSandboxTest(SandboxTest):
    """One server for all tests of a class."""

    @classmethod
    def setUpClass(cls):
        cls.shared = tempfile.mkdtemp()
        cls.sandbox = Sandbox(Path(cls.shared) / "state")
        cls.token = cls.sandbox.token()
        cls.call = staticmethod(cls.sandbox.call)

    @classmethod
    def tearDownClass(cls):
        cls.sandbox.stop()
        shutil.rmtree(cls.shared)
