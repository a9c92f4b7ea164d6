"""rgen preview: what its server refuses, and which files it serves.

SPDX-License-Identifier: MIT
"""

import socket
import urllib.parse

from cli_case import linux_only, native
from preview_case import PreviewCase


class Refusals(PreviewCase):

    def setUp(self):
        super().setUp()
        self.running = self.preview()

    def expect_refusal(self, answer, code):
        self.assertEqual(code, answer.code)
        self.assertNotIn(b"Health", answer.body)
        self.assertEqual("default-src 'none'; frame-ancestors 'none'",
                         answer.headers["content-security-policy"])

    def test_without_the_token(self):
        for path in ("/", "/view?format=html", "/files/?page=1", "//", "/x/", self.running.path[:-1],
                     self.running.path[:-2] + "/", self.running.path.upper() + "view"):
            with self.subTest(path):
                self.expect_refusal(self.running.ask("GET", path), 404)

    def test_of_another_host(self):
        port = self.running.host.split(":")[1]
        for host in ("example.org", f"example.org:{port}", "127.0.0.1", f"127.0.0.1:{int(port) - 1}",
                     f"127.0.0.1.example.org:{port}", f"[::1]:{port}", ""):
            with self.subTest(host):
                self.expect_refusal(
                    self.running.ask("GET", self.running.path, headers={"Host": host}), 403)

    def test_of_two_hosts(self):
        connection = self.running.connect()
        connection.putrequest("GET", self.running.path)
        connection.putheader("Host", "example.org")
        connection.endheaders()
        self.assertEqual(403, connection.getresponse().status)
        connection.close()

    def test_of_other_methods(self):
        for method in ("POST", "PUT", "DELETE", "PATCH", "OPTIONS", "TRACE"):
            with self.subTest(method):
                answer = self.running.ask(method, self.running.path, body=b"x")
                self.expect_refusal(answer, 405)
                self.assertEqual("GET, HEAD", answer.headers["allow"])

    def test_a_head_request_has_no_body(self):
        answer = self.running.ask("HEAD", self.running.path)
        self.assertEqual((200, b""), (answer.code, answer.body))

    def test_localhost_is_the_same_host(self):
        port = self.running.host.split(":")[1]
        answer = self.running.ask("GET", self.running.path, headers={"Host": f"localhost:{port}"})
        self.assertEqual(200, answer.code)

    def test_no_page_of_another_site_may_read_an_answer(self):
        for path in ("", "view?format=html", "files/?page=1", "nothing"):
            answer = self.running.ask("GET", self.running.path + path,
                                      headers={"Origin": "http://example.org"})
            self.assertEqual([], [name for name in answer.headers
                                  if name.startswith("access-control")])
            self.assertEqual("same-origin", answer.headers["cross-origin-resource-policy"])
            self.assertEqual("no-referrer", answer.headers["referrer-policy"])
            self.assertEqual("nosniff", answer.headers["x-content-type-options"])

    def test_the_policies(self):
        page = self.running.get().headers["content-security-policy"]
        self.assertIn("default-src 'none'; script-src 'self';", page)
        self.running.view()
        report = self.running.get("files/", page=1).headers["content-security-policy"]
        self.assertIn("default-src 'none'; style-src 'unsafe-inline'", report)
        self.assertNotIn("script-src", report)
        self.assertTrue(report.endswith("sandbox allow-same-origin"))

    def test_only_this_machine_is_answered(self):
        port = int(self.running.host.split(":")[1])
        with socket.socket() as other:
            other.settimeout(10)
            # Another address of this machine, which a server for all addresses would have.
            self.assertNotEqual(0, other.connect_ex(("127.0.0.2", port)))

    def test_endless_and_broken_requests(self):
        for text in (b"GET /" + b"a" * 20000 + b" HTTP/1.1\r\n\r\n", b"\r\n\r\n", b"x" * 5000 + b"\r\n",
                     b"GET / HTTP/1.1\r\nHost: a\r\nRange: bytes=" + b"0-1," * 1900 + b"0-1\r\n\r\n"):
            host, port = self.running.host.split(":")
            with socket.create_connection((host, int(port))) as connection:
                connection.sendall(text)
                self.assertRegex(connection.recv(65536), rb"^HTTP/1.1 (400|403|414|416) ")
        self.assertEqual(200, self.running.get().code)


class Files(PreviewCase):
    """Only files of reports below the data directory and the base are served."""

    def test_an_image_beside_the_data_directory(self):
        self.write("case/images/logo.png", b"\x89PNG")
        answer = self.preview().get("files/images/logo.png")
        self.assertEqual((200, b"\x89PNG", "image/png"),
                         (answer.code, answer.body, answer.headers["content-type"]))
        self.assertIn("sandbox", answer.headers["content-security-policy"])

    def test_an_image_below_the_base(self):
        self.write("base/logo.png", b"\x89PNG")
        self.assertEqual(200, self.preview("--base", "base").get("files/logo.png").code)

    def test_a_changed_image_is_a_change(self):
        self.write("case/logo.png", b"\x89PNG")
        preview = self.preview()
        self.assertEqual(200, preview.get("files/logo.png").code)
        events = preview.events()
        before = next(events)
        self.write("case/logo.png", b"\x89PNG changed")
        self.assertGreater(next(events), before)

    def test_files_that_are_not_for_reports(self):
        self.write("case/secret.txt", "secret")
        self.write("case/page.html", "secret")
        preview = self.preview()
        for name in ("secret.txt", "page.html", "health.json", ".rgen/config.xml", ".rgen"):
            self.assertEqual(404, preview.get("files/" + name).code, name)

    def test_paths_that_lead_out(self):
        self.write("outside.png", b"secret")
        self.write("case/inside/in.png", b"\x89PNG")
        absolute = urllib.parse.quote(native(self.folder / "outside.png"))
        preview = self.preview()
        for path in ("../outside.png", "%2e%2e/outside.png", "..%2foutside.png", "..%5coutside.png",
                     "inside/../../outside.png", "inside/%2e%2e/%2e%2e/outside.png", absolute,
                     "/" + absolute, "%00/../outside.png", "inside/in.png%00", "inside/in.png::$DATA",
                     "inside/in.png.", "nul.png", "C:outside.png", "./inside/in.png", "inside//in.png"):
            with self.subTest(path):
                answer = preview.ask("GET", preview.path + "files/" + path)
                self.assertEqual(404, answer.code)
                self.assertNotIn(b"secret", answer.body)

    @linux_only
    def test_a_link_that_leads_out(self):
        self.write("outside.png", b"secret")
        (self.folder / "case/link.png").symlink_to(self.folder / "outside.png")
        self.assertEqual(404, self.preview().get("files/link.png").code)
