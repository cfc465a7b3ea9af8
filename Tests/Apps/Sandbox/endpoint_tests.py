"""What every endpoint answers to good and to bad requests."""

import base64
import http.client
import json
import sqlite3
import unittest

from sandbox import *


class WithoutTokenTests(SharedSandboxTest):
    def test_logs_in_and_checks_status_by_the_codes(self):
        rows = [
            ("as typed", {"zipCode": "05401", "accessCode": "K7M 2QX"}, 200, ""),
            ("without blanks", {"zipCode": "05401", "accessCode": "K7M2QX"}, 200, ""),
            ("lower case", {"zipCode": "05401", "accessCode": "k7m2qx"}, 200, ""),
            ("wrong code", {"zipCode": "05401", "accessCode": "K7M2QY"}, 401, "access code"),
            ("code of another property", {"zipCode": "05403", "accessCode": "K7M2QX"}, 401, ""),
            ("empty", {"zipCode": "", "accessCode": ""}, 401, ""),
            ("missing key", {"zipCode": "05401"}, 422, "accessCode: "),
            ("wrong type", {"zipCode": 5401, "accessCode": "K7M2QX"}, 422, "zipCode: "),
            ("no object", [], 422, ""),
            ("no JSON", b"zipCode=05401", 422, "JSON"),
            ("no body", b"", 422, "JSON"),
        ]
        for label, body, status, words in rows:
            for path in "/auth/mobile-login", "/kestroms/status-check":
                with self.subTest(label, path=path):
                    answer = self.call("POST", path, body)
                    if status != 200:
                        self.refused(answer, status, words)
                    elif path == "/auth/mobile-login":
                        login = answer.json()
                        self.assertEqual((login["organizationId"], login["kestromId"]), (ORGANIZATION, CASE))
                        self.assertEqual(self.call("GET", f"/kestroms/{CASE}", token=login["token"]).status, 200)
                    else:
                        self.assertEqual(answer.json(), {"status": "in_progress", "expiration": "2030-12-31 23:59:59"})

    def test_gives_the_brand_of_the_first_organization(self):
        brand = (EXAMPLES / "home-inspection.brand.json").read_bytes()
        for value in ORGANIZATION, f"{ORGANIZATION},{ORGANIZATION}", f"{ORGANIZATION}, other":
            self.assertEqual(self.call("GET", "/brand-configs/sdk", headers={"organizationId": value}).body, brand)
        self.refused(self.call("GET", "/brand-configs/sdk", headers={"organizationId": "other"}), 404)
        self.refused(self.call("GET", "/brand-configs/sdk"), 422, "organizationId")

    def test_refuses_what_it_does_not_have(self):
        for method, target, status, allowed in [
            ("GET", "/", 404, None),
            ("GET", "/auth", 404, None),
            ("GET", "/kestroms//answers", 404, None),
            ("GET", "/kestroms/a/b/answers", 404, None),
            ("GET", "/kestroms/%zz", 404, None),
            ("GET", "/auth/mobile-login", 405, "POST"),
            ("DELETE", f"/kestroms/{CASE}/answers", 405, "POST, GET"),
            ("HEAD", "/media/a.png", 405, "GET"),
        ]:
            with self.subTest(f"{method} {target}"):
                answer = self.call(method, target)
                self.assertEqual((answer.status, answer.headers["Allow"]), (status, allowed))
        self.refused(self.call("POST", "/kestroms/status-check", CODES, headers={"Content-Type": "text/plain"}), 415)


class TokenTests(SharedSandboxTest):
    def test_everything_else_needs_a_token_that_was_given_out(self):
        calls = [
            ("GET", f"/kestroms/{CASE}", None),
            ("POST", f"/kestroms/{CASE}/submit", {"status": "ready_for_review"}),
            ("POST", f"/kestroms/{CASE}/answers", answer_body()),
            ("GET", f"/kestroms/{CASE}/answers", None),
            ("GET", f"/bots/{BOT}/sequence", None),
            ("POST", PROFILE_PATH, PROFILE),
            ("POST", PROFILE_PATH, CONSENT),
            ("POST", GEOCODE_PATH, {"lat": 1, "lng": 1, "height": 400, "width": 400}),
            ("POST", EVENTS_PATH, {"events": []}),
            ("POST", UPLOAD_PATH, form(b"x")),
        ]
        for method, path, body in calls:
            for value in None, "", "Bearer", "Bearer ", f"Basic {self.token}", f"Bearer {self.token}x", self.token:
                with self.subTest(path=path, value=value):
                    headers = form_headers() if path == UPLOAD_PATH else {}
                    if value is not None:
                        headers["authorization"] = value
                    self.refused(self.call(method, path, body, headers=headers), 401, "token")
        self.assertEqual(self.call("GET", f"/kestroms/{CASE}/answers", token=self.token).json(), {"answers": []})
        self.assertEqual(list((self.sandbox.state / "media").iterdir()), [])

    def test_a_token_opens_its_own_case_only(self):
        invited = self.sandbox.token(INVITED_CODES)
        for method, path, body in [
            ("GET", "/kestroms/{}", None),
            ("POST", "/kestroms/{}/submit", {"status": "x"}),
            ("POST", "/kestroms/{}/answers", answer_body()),
            ("GET", "/kestroms/{}/answers", None),
        ]:
            with self.subTest(path):
                self.refused(self.call(method, path.format(CASE), body, token=invited), 403)
                self.refused(self.call(method, path.format("unknown"), body, token=invited), 404)
        self.refused(self.call("GET", "/bots/unknown/sequence", token=invited), 404)
        self.refused(self.call("POST", PROFILE_PATH, PROFILE, token=invited), 403)

    def test_gives_case_and_bot_as_they_were_seeded(self):
        for path, file in (f"/kestroms/{CASE}", "home-inspection.case.json"), (
            f"/bots/{BOT}/sequence",
            "home-inspection.json",
        ):
            answer = self.call("GET", path, token=self.token)
            self.assertEqual(answer.body, (EXAMPLES / file).read_bytes())
            self.assertEqual(answer.headers["Content-Type"], "application/json")


class AnswerTests(SandboxTest):
    def test_keeps_the_newest_answer_of_each_question_in_the_order_of_arrival(self):
        sandbox = self.start()
        token = sandbox.token(INVITED_CODES)
        path = f"/kestroms/{INVITED_CASE}/answers"
        bundle = {"mediaUrl": "https://a.example/m.tar", "thumbnailUrl": "https://a.example/t.jpeg"}
        place = {"address": "4 Quarry Road", "coords": {"lat": 44.5, "lng": -73.25}, "locationType": "precise"}
        sent = [
            answer_body("first", wasSynced=False),
            answer_body("list", value=["a", "b"], keyValue=[{"key": "1", "value": "a"}, {"key": "2", "value": "b"}]),
            answer_body("place", value=place, keyValue=place, locationType="precise",
                        location={"type": "Point", "coordinates": [-73.25, 44.5]}),
            answer_body("first", iterationId=1, context="cv.ok"),
            answer_body("bundle", value=bundle, keyValue=bundle, extra={"a": 1.5},
                        answeredAt="2025-02-03T11:15:00.5+02:00"),
            answer_body("first", value="No", answeredAt="2025-02-03T09:16:00.25Z"),
        ]
        for body in sent:
            self.assertEqual(sandbox.call("POST", path, body, token=token).status, 204)

        times = [(5, "16:00.250"), (1, "15:00.000"), (2, "15:00.000"), (3, "15:00.000"), (4, "15:00.500")]
        wanted = [{**sent[index], "answeredAt": f"2025-02-03T09:{time}Z"} for index, time in times]
        self.assertEqual(sandbox.call("GET", path, token=token).json(), {"answers": wanted})
        with sqlite3.connect(sandbox.state / "sandbox.db") as database:
            arrivals = [row[0] for row in database.execute("SELECT arrivals FROM answers ORDER BY number")]
        self.assertEqual(arrivals, [2, 1, 1, 1, 1])

    def test_names_the_path_of_what_does_not_fit(self):
        sandbox = self.start()
        path = f"/kestroms/{INVITED_CASE}/answers"
        token = sandbox.token(INVITED_CODES)
        for changes, words in [
            ({"value": ...}, "value"),
            ({"value": 1}, "value"),
            ({"keyValue": {"key": "a"}}, "keyValue"),
            ({"iterationId": "0"}, "iterationId"),
            ({"iterationId": 0.5}, "iterationId"),
            ({"messageId": None}, "messageId"),
            ({"location": {"type": "Point"}}, "location.coordinates"),
            ({"answeredAt": ...}, "answeredAt"),
            ({"answeredAt": 1700000000}, "answeredAt"),
            ({"answeredAt": "2025-02-30T09:15:00Z"}, "answeredAt"),
        ]:
            with self.subTest(str(changes)):
                self.refused(sandbox.call("POST", path, answer_body(**changes), token=token), 422, words)
        self.refused(sandbox.call("POST", path, [answer_body()], token=token), 422)
        self.refused(sandbox.call("POST", path, b"[" * 100000, token=token), 422)
        self.assertEqual(sandbox.call("GET", path, token=token).json(), {"answers": []})
        self.assertEqual(sandbox.call("GET", f"/kestroms/{INVITED_CASE}", token=token).json()["status"], "invited")

    def test_the_status_goes_with_the_work(self):
        sandbox = self.start()
        token = sandbox.token(INVITED_CODES)
        seeded = json.loads((EXAMPLES / "home-inspection.invited.case.json").read_text())

        def check(status):
            self.assertEqual(sandbox.call("POST", "/kestroms/status-check", INVITED_CODES).json()["status"], status)
            case = sandbox.call("GET", f"/kestroms/{INVITED_CASE}", token=token).json()
            self.assertEqual(list(case.items()), list({**seeded, "status": status}.items()))

        check("invited")
        sandbox.call("POST", f"/kestroms/{INVITED_CASE}/answers", answer_body(), token=token)
        check("in_progress")
        submit = f"/kestroms/{INVITED_CASE}/submit"
        self.refused(sandbox.call("POST", submit, {}, token=token), 422, "status")
        self.refused(sandbox.call("POST", submit, {"status": ""}, token=token), 422, "status")
        self.assertEqual(sandbox.call("POST", submit, {"status": "ready_for_review"}, token=token).status, 204)
        check("ready_for_review")
        sandbox.call("POST", f"/kestroms/{INVITED_CASE}/answers", answer_body(), token=token)
        check("ready_for_review")


class SmallBodyTests(SharedSandboxTest):
    def test_keeps_profiles_consents_and_events(self):
        user = {"id": CASE, "displayName": "Ada Brook", "email": "a@example.com",
                "properties": {"botId": BOT, "botName": "b", "organizationId": ORGANIZATION, "status": "in_progress"}}
        details = {"eventName": "question_asked", "timestamp": "2025-02-03T09:15:00Z",
                   "eventProperties": {"activeTime": 1.5, "phase": "a"},
                   "eventContext": {"device": {"manufacturer": "m"}, "location": {"latitude": 1.0, "longitude": 2}}}
        events = {"events": [{"eventDetails": [details, {**details, "eventContext": {}}], "eventUser": user}]}

        def broken_events(**changes):
            return {"events": [{"eventDetails": [{**details, **changes}], "eventUser": user}]}

        rows = [
            (PROFILE_PATH, PROFILE, "user_profiles", None, ""),
            (PROFILE_PATH, CONSENT, "consents", None, ""),
            (EVENTS_PATH, events, "events", None, ""),
            (PROFILE_PATH, {"organizationId": ORGANIZATION}, None, 422, "kestromId"),
            (PROFILE_PATH, {**PROFILE, "organizationId": "other"}, None, 403, ""),
            (PROFILE_PATH, {**CONSENT, "consentDate": "yesterday"}, None, 422, "consentDate"),
            (PROFILE_PATH, {"termsDocumentVersion": "3"}, None, 422, "consentDate"),
            (PROFILE_PATH, b"[]", None, 422, ""),
            (EVENTS_PATH, {}, None, 422, "events"),
            (EVENTS_PATH, {"events": [{"eventDetails": []}]}, None, 422, "events[0].eventUser"),
            (EVENTS_PATH, broken_events(timestamp=5), None, 422, "events[0].eventDetails[0].timestamp"),
            (EVENTS_PATH, broken_events(eventContext={"device": {}}), None, 422, "device.manufacturer"),
            (EVENTS_PATH, broken_events(eventProperties={"activeTime": "1"}), None, 422, "eventProperties.activeTime"),
        ]
        for path, body, table, status, words in rows:
            with self.subTest(path=path, body=body):
                answer = self.call("POST", path, body, token=self.token)
                if status:
                    self.refused(answer, status, words)
                    continue
                self.assertEqual((answer.status, answer.body), (204, b""))
                with sqlite3.connect(self.sandbox.state / "sandbox.db") as database:
                    stored = database.execute(f"SELECT case_id, body FROM {table}").fetchall()
                self.assertEqual([(row[0], json.loads(row[1])) for row in stored], [(CASE, body)])

    def test_finds_the_nearest_place(self):
        def geocode(lat, lng):
            body = {"lat": lat, "lng": lng, "height": 400.0, "width": 400.0}
            return self.call("POST", GEOCODE_PATH, body, self.token)

        def component(place, kind, form="long_name"):
            parts = place.json()["altLocationList"][0]["address_components"]
            return next(part[form] for part in parts if kind in part["types"])

        for label, lat, lng, city, country in [
            ("there", 44.4759, -73.2121, "Burlington", "US"),
            ("another country", 44, -79.5, "Toronto", "CA"),
            ("over the date line", 20, 170, "Honolulu", "US"),
            ("far north, where meridians meet", 89, -118, "Vancouver", "CA"),
        ]:
            with self.subTest(label):
                place = geocode(lat, lng)
                self.assertEqual(component(place, "locality"), city)
                self.assertEqual(component(place, "country", "short_name"), country)
        self.assertTrue(base64.b64decode(geocode(0, 0).json()["thumbnail"]).startswith(b"\x89PNG\r\n"))
        self.refused(geocode(90.5, 0), 422, "lat")
        self.refused(geocode(0, -181), 422, "lng")
        self.refused(geocode("0", 0), 422, "lat")
        self.refused(self.call("POST", GEOCODE_PATH, {"lat": 1, "lng": 1}, self.token), 422, "height")


class UploadTests(SharedSandboxTest):
    def upload(self, body, headers=None, host=HOST):
        return self.call("POST", UPLOAD_PATH, body, self.token, headers or form_headers(), host=host)

    def fetch(self, answer):
        self.assertEqual(answer.status, 200, answer.body)
        host, _, name = answer.json()["url"].removeprefix("https://").partition("/media/")
        return self.call("GET", "/media/" + name, host=host)

    def tearDown(self):
        self.assertEqual(list((self.sandbox.state / "media").glob("*.unfinished")), [])

    def test_gives_back_what_was_uploaded(self):
        contents = {
            "some": bytes(range(256)) * 3000,
            "nothing": b"",
            "almost a delimiter": b"\r\n--\r\n--C\r\n-\r\r\n--",
            "line ends": b"\r\n\r\n",
        }
        for label, content in contents.items():
            with self.subTest(label):
                self.assertEqual(self.fetch(self.upload(form(content))).body, content)
        for sent, extension, received in [
            ("png", "png", "image/png"),
            ("jpg", "jpg", "image/jpeg"),
            ("gif", "gif", "image/gif"),
            ("pdf", "pdf", "application/pdf"),
            ("plainText", "txt", "text/plain; charset=utf-8"),
            ("mp4", "mp4", "video/mp4"),
            ("tar", "tar", "application/x-tar"),
            ("image/jpeg", "jpeg", "image/jpeg"),
        ]:
            with self.subTest(sent):
                answer = self.upload(form(b"x", sent))
                self.assertEqual(self.fetch(answer).headers["Content-Type"], received)
                self.assertTrue(answer.json()["url"].endswith("." + extension))

    def test_takes_forms_of_other_clients_and_in_any_pieces(self):
        quoted = {"Content-Type": 'multipart/form-data; charset=utf-8; boundary="B"'}
        body = b"preamble\r\n" + form(b"\r\n--content") + b"\r\nepilogue"
        self.assertEqual(self.fetch(self.upload(body, quoted)).body, b"\r\n--content")
        head = f"POST {UPLOAD_PATH} HTTP/1.1\r\nHost: {HOST}\r\nauthorization: Bearer {self.token}\r\n"
        head += "Content-Type: multipart/form-data; boundary=B\r\nTransfer-Encoding: chunked\r\n\r\n"
        for size in 1, 3:
            pieces = [body[at : at + size] for at in range(0, len(body), size)]
            with self.sandbox.raw(head.encode()) as stream:
                for piece in pieces:
                    stream.sendall(b"%x\r\n%s\r\n" % (len(piece), piece))
                stream.sendall(b"0\r\n\r\n")
                response = http.client.HTTPResponse(stream)
                response.begin()
                self.assertEqual(self.fetch(Answer(response)).body, b"\r\n--content")

    def test_the_address_is_of_the_host_that_was_asked(self):
        for host in HOSTS + ["localhost", "127.0.0.1"]:
            self.assertTrue(self.upload(form(b"x"), host=host).json()["url"].startswith(f"https://{host}/media/"))
        for host in "elsewhere.example", f"{HOST}:1/a", "":
            answer = self.upload(form(b"x"), {**form_headers(), "Host": host})
            self.assertTrue(answer.json()["url"].startswith(f"https://{HOST}/media/"), host)

    def test_refuses_what_is_no_medium(self):
        for label, body, status in [
            ("another field", form(b"x", name="file"), 422),
            ("two parts", form(b"x")[:-5] + b"\r\n" + form(b"y"), 422),
            ("endless parts", b"".join(form(b"x")[:-2] + b"\r\n" for _ in range(1000)) + form(b"x"), 422),
            ("no closing delimiter", form(b"x")[:-2], 422),
            ("another boundary", form(b"x", boundary="C"), 422),
            ("a delimiter that goes on", form(b"x")[:-2] + b"x--", 422),
            ("no parts", b"--B--", 422),
            ("nothing", b"", 422),
            ("an endless part head", b"--B\r\nContent-Disposition: " + b"x" * 100000, 422),
            ("a part without a name", b"--B\r\nContent-Type: png\r\n\r\nx\r\n--B--", 422),
            ("a type without a form", form(b"x", "exe"), 415),
        ]:
            with self.subTest(label):
                before = sorted((self.sandbox.state / "media").iterdir())
                self.refused(self.upload(body), status)
                self.assertEqual(sorted((self.sandbox.state / "media").iterdir()), before)
        for content_type in "application/json", "multipart/form-data", "multipart/form-data; boundary=" + "B" * 71:
            self.refused(self.upload(form(b"x"), {"Content-Type": content_type}), 415)

    def test_no_name_leads_out_of_the_media(self):
        answer = self.upload(form(b"x", file_name="../../evil.jpeg"))
        self.assertNotIn("evil", answer.json()["url"])
        self.assertEqual([*self.sandbox.state.parent.rglob("evil*")], [])
        for name in "..", "../sandbox.db", "%2e%2e%2fsandbox.db", "..%2Fca.key", "%00", "x.png", "a%27--.png":
            with self.subTest(name):
                self.refused(self.call("GET", "/media/" + name), 404)


if __name__ == "__main__":
    unittest.main()
