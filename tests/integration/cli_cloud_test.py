#!/usr/bin/env python3
"""Tests the commands of the tool that browse accounts of the content engine, on the delivered engine.

Usage: cli_cloud_test.py QRA ENGINE [TEST...]
"""
import http.server
import json
import os
import re
import signal
import subprocess
import threading
import unittest

from cli_tool import FAILED, MISSING, USAGE, ToolTest, png, wav

FOLDER, IMAGE, MUSIC = 1, 2, 5


class CloudToolTest(ToolTest):
    """With an account "cloud" on a WebDAV server that serves `self.tree`, once it is started."""

    def setUp(self):
        super().setUp()
        (self.directory / "own").mkdir(mode=0o700)
        self.environment["QRA_ACCOUNTS"] = str(self.directory / "own" / "accounts")

    def add_account(self, name, address, *options, **keywords):
        self.qra("account", "add", name, "--plugin", "webdav", "--address", address, *options, **keywords)

    def start_server(self, *options):
        """rclone on a free port; gives its address."""
        server = subprocess.Popen(
            ["rclone", "serve", "webdav", self.tree, "--addr", "127.0.0.1:0", "--config", self.directory / "rclone.conf",
             *options], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)
        self.addCleanup(server.stderr.close)
        timer = threading.Timer(60, server.kill)
        timer.start()
        self.addCleanup(timer.cancel)
        for line in server.stderr:
            if found := re.search(r"http://127\.0\.0\.1:\d+/", line):
                timer.cancel()
                return found.group()
        self.fail("rclone has not started")

    def start_cloud(self):
        self.add_account("cloud", self.start_server())

    def start_scripted_server(self, respond):
        """A server whose every question is answered by respond(handler, number); the account "cloud" is on it."""
        numbers = iter(range(1000))

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_PROPFIND(self):
                self.rfile.read(int(self.headers["Content-Length"] or 0))
                try:
                    respond(self, next(numbers))
                except OSError:
                    pass  # the engine has gone

            def log_message(self, *_):
                pass

        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        server.daemon_threads = True
        server.block_on_close = False
        thread = threading.Thread(target=server.serve_forever)
        thread.start()
        self.addCleanup(thread.join)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        self.add_account("cloud", f"http://127.0.0.1:{server.server_port}/")

    def cloud(self, *arguments):
        return self.tiles("--source", "CloudSource", "--plugin", "cloud", *arguments)

    def assert_list_fails(self, status, message, *arguments, **environment):
        self.assert_fails(status, message, "list", "--source", "CloudSource", *arguments, **environment)


def multistatus(names):
    """The answer of a server for its top with those pictures, without its end."""
    responses = ('<D:response><D:href>/</D:href><D:propstat><D:prop><D:resourcetype><D:collection/></D:resourcetype>'
                 '</D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>')
    for name in names:
        responses += (f'<D:response><D:href>/{name}</D:href><D:propstat><D:prop><D:resourcetype/>'
                      '<D:getcontenttype>image/png</D:getcontenttype></D:prop><D:status>HTTP/1.1 200 OK</D:status>'
                      '</D:propstat></D:response>')
    return f'<?xml version="1.0" encoding="utf-8"?><D:multistatus xmlns:D="DAV:">{responses}'.encode()


MULTISTATUS_END = b"</D:multistatus>"


class UsageTest(CloudToolTest):
    def test_wrong_arguments_are_a_usage_error(self):
        for arguments, message in ((["list"], "PATH"),
                                   (["list", "--source", "CloudSource"], "--plugin"),
                                   (["list", ".", "--source", "NoSuchSource"], "--plugin"),
                                   (["list", ".", "--plugin", "cloud"], "--plugin"),
                                   (["list", ".", "--timeout", "5"], "--timeout"),
                                   (["list", "--source", "CloudSource", "--plugin", "a", "--timeout", "0"], "--timeout"),
                                   (["detail", "a.png"], "--plugin"), (["detail", "--plugin", "a"], "ITEM_ID"),
                                   (["detail", "--plugin", "a", ""], "ITEM_ID"),
                                   (["like", "a.png"], "--plugin"), (["comment", "--plugin", "a", "a.png"], "TEXT"),
                                   (["list", "--source", "CloudSource", "--plugin", "a", "--mask", "4"], "--mask"),
                                   (["list", "--source", "CloudSource", "--plugin", "a", "--no-scan"], "--no-scan")):
            with self.subTest(arguments):
                self.assert_fails(USAGE, message, *arguments)


class ListTest(CloudToolTest):
    def test_folder_is_walked_by_the_ids_of_its_folders_and_back(self):
        (self.tree / "Holiday 1" / "Küste").mkdir(parents=True)
        png(self.tree / "Holiday 1" / "Küste" / "sea.png")
        wav(self.tree / "red.wav")
        self.start_cloud()
        top = self.cloud()
        self.assertEqual([("Holiday 1", FOLDER), ("red.wav", MUSIC)],
                         [(item["DISPLAY_NAME"], item["MEDIA_TYPE"]) for item in top])
        [inner] = self.cloud(top[0]["ID_QRA"])
        self.assertEqual("Küste", inner["DISPLAY_NAME"])
        [picture] = self.cloud(inner["ID_QRA"])
        self.assertEqual(("sea.png", IMAGE), (picture["DISPLAY_NAME"], picture["MEDIA_TYPE"]))
        self.assertEqual(top, self.cloud())

    def test_grid_shows_tiles_with_their_kinds_sizes_and_times(self):
        (self.tree / "Music").mkdir()
        wav(self.tree / "red.wav")
        os.utime(self.tree / "red.wav", (1620295200, 1620295200))
        self.start_cloud()
        lines = self.stdout("list", "--source", "CloudSource", "--plugin", "cloud").splitlines()
        self.assertEqual("cloud:/  2 items", lines[0])
        self.assertRegex(lines[2], "0 . Music")
        self.assertRegex(lines[3], "folder")
        self.assertRegex("\n".join(lines[6:]), r"1 . red\.wav\s+16 kB\s+2021-05-06 10:00")

    def test_empty_folder_says_so(self):
        (self.tree / "Empty").mkdir()
        self.start_cloud()
        self.assertEqual("cloud:/Empty  nothing to show\n",
                         self.stdout("list", "--source", "CloudSource", "--plugin", "cloud", "Empty"))
        self.assertEqual([], self.cloud("Empty"))

    def test_list_of_several_sections_is_complete_and_in_order(self):
        for number in range(450):
            (self.tree / f"p{number:03}.png").touch()
        self.start_cloud()
        names = [item["DISPLAY_NAME"] for item in self.cloud()]
        self.assertEqual(450, len(names))
        self.assertEqual([f"p{number:03}.png" for number in range(450)], sorted(names))
        self.assertEqual(names[390:415], [item["DISPLAY_NAME"] for item in self.cloud("--offset", "390",
                                                                                      "--limit", "25")])
        by_title = [item["DISPLAY_NAME"] for item in self.cloud("--sort", "CATEGORY-FOLDER-TITLE")]
        self.assertEqual([f"p{number:03}.png" for number in range(450)], by_title)

    def test_word_and_content_type_choose_items(self):
        (self.tree / "blue.png").touch()
        (self.tree / "red.png").touch()
        (self.tree / "red.mp3").touch()
        self.start_cloud()
        self.assertEqual({"red.png", "red.mp3"}, {item["TITLE"] for item in self.cloud("--keyword", "red")})
        self.assertEqual({"blue.png", "red.png"},
                         {item["TITLE"] for item in self.cloud("--content", "CONTENT-IMAGE")})

    def test_other_sources_of_the_engine_show_the_same(self):
        (self.tree / "Music").mkdir()
        wav(self.tree / "red.wav")
        self.start_cloud()
        self.assertEqual(["Music", "red.wav"],
                         [item["TITLE"] for item in self.tiles("--source", "OtherSource", "--plugin", "cloud")])


class DetailTest(CloudToolTest):
    def setUp(self):
        super().setUp()
        (self.tree / "Holiday 1").mkdir()
        png(self.tree / "Holiday 1" / "Küste 100%.png")
        os.utime(self.tree / "Holiday 1" / "Küste 100%.png", (1620295200, 1620295200))
        png(self.tree / "other.png")
        self.start_cloud()

    def test_detail_tells_of_the_item_whose_id_a_list_told(self):
        [item] = self.cloud("Holiday 1")
        [line] = self.stdout("detail", "--plugin", "cloud", item["ID_QRA"], "--json").splitlines()
        detail = json.loads(line)
        self.assertEqual(item, {name: detail[name] for name in item})
        self.assertIn("ETAG", detail)

    def test_text_has_a_line_for_each_value(self):
        [item] = self.cloud("Holiday 1")
        text = self.stdout("detail", "--plugin", "cloud", item["ID_QRA"])
        size = (self.tree / "Holiday 1" / "Küste 100%.png").stat().st_size
        self.assertRegex(text, rf"(?m)^SIZE +{size}$")
        self.assertRegex(text, r"(?m)^MODIFIED_TIME +2021-05-06 10:00$")
        self.assertRegex(text, r"(?m)^MIME_TYPE +image/png$")
        self.assertRegex(text, r"(?m)^THUMBNAIL_PATH$")

    def test_likes_and_comments_show_in_the_detail(self):
        [item] = self.cloud("Holiday 1")
        medium = ["--plugin", "cloud", item["ID_QRA"]]

        def detail():
            return json.loads(self.stdout("detail", *medium, "--json"))

        self.assertEqual((False, []), (detail()["LIKE"], detail()["COMMENTS"]))
        self.qra("like", *medium)
        for text in ("schön", "-"):
            self.qra("comment", *medium, "--", text)
        self.assertEqual((True, ["schön", "-"]),
                         (detail()["LIKE"], [comment["TEXT"] for comment in detail()["COMMENTS"]]))
        self.assertIn("schön", self.stdout("detail", *medium))
        self.qra("like", *medium, "--off")
        self.assertFalse(detail()["LIKE"])

    def test_act_that_the_engine_refuses_tells_why(self):
        [item] = self.cloud("Holiday 1")
        self.assert_fails(FAILED, "comment is empty", "comment", "--plugin", "cloud", item["ID_QRA"], "")

    def test_folder_has_no_detail_and_takes_no_like(self):
        # Not even one that holds a single medium.
        for arguments in (["detail"], ["like"], ["comment", "--", "well"]):
            with self.subTest(arguments):
                command, *rest = arguments
                self.assert_fails(FAILED, "Holiday 1 is no medium", command, "--plugin", "cloud", "Holiday 1", *rest)

    def test_item_that_is_not_there_is_told(self):
        self.assert_fails(FAILED, "404", "detail", "--plugin", "cloud", "nothing.png")

    def test_unknown_account_and_missing_engine_are_told(self):
        self.assert_fails(FAILED, "account nobody", "detail", "--plugin", "nobody", "a.png")
        self.assert_fails(MISSING, "engine does not answer", "detail", "--plugin", "cloud", "a.png", QRA_ENGINE="")


class FailureTest(CloudToolTest):
    def test_reasons_of_the_engine_are_told(self):
        self.add_account("wrong", self.start_server("--user", "anna", "--pass", "secret"), "--user", "anna",
                         "--password-stdin", standard_input=b"guess\n")
        self.assert_list_fails(FAILED, r"does not accept the user name or the password \(401\)", "--plugin", "wrong")

    def test_server_that_is_not_there_is_told(self):
        self.add_account("dead", "http://127.0.0.1:1/")
        self.assert_list_fails(FAILED, "nothing listens", "--plugin", "dead", "--json")

    def test_folder_that_is_not_there_is_told(self):
        self.start_cloud()
        self.assert_list_fails(FAILED, "404", "--plugin", "cloud", "Nowhere")

    def test_unknown_account_is_told(self):
        self.assert_list_fails(FAILED, "account nobody: there is no account nobody", "--plugin", "nobody")

    def test_account_of_a_kind_that_the_engine_does_not_know_is_told(self):
        self.qra("account", "add", "old", "--plugin", "gopher", "--address", "http://127.0.0.1:1/")
        self.assert_list_fails(FAILED, "account old: The engine knows no service of the kind gopher", "--plugin", "old")

    def test_missing_engine_is_told(self):
        self.add_account("cloud", "http://127.0.0.1:1/")
        self.assert_list_fails(MISSING, "content engine does not answer", "--plugin", "cloud", QRA_ENGINE="")

    def test_wait_has_an_end(self):
        self.start_scripted_server(lambda *_: threading.Event().wait(120))
        self.assert_list_fails(FAILED, "no answer within 2 seconds", "--plugin", "cloud", "--timeout", "2")

    def test_interrupt_ends_the_wait(self):
        asked = threading.Event()

        def respond(*_):
            asked.set()
            threading.Event().wait(120)

        self.start_scripted_server(respond)
        tool = self.start_tool("list", "--source", "CloudSource", "--plugin", "cloud")
        self.assertTrue(asked.wait(60))
        tool.send_signal(signal.SIGINT)
        self.assertIn("interrupted", tool.stderr.read().decode())
        self.assertEqual(FAILED, tool.wait(60))

    def test_end_of_the_engine_before_the_first_section_is_told(self):
        asked = threading.Event()

        def respond(*_):
            asked.set()
            threading.Event().wait(120)

        self.start_scripted_server(respond)
        tool = self.start_tool("list", "--source", "CloudSource", "--plugin", "cloud", "--timeout", "100")
        self.assertTrue(asked.wait(60))
        self.kill_engine()
        self.assertIn("engine ended", tool.stderr.read().decode())
        self.assertEqual(MISSING, tool.wait(60))

    def test_first_section_is_shown_before_the_rest_and_stays_when_the_engine_ends(self):
        names = [f"p{number}.png" for number in range(1000)]
        held = threading.Event()
        self.addCleanup(held.set)

        def respond(handler, number):
            handler.send_response(207)
            handler.send_header("Content-Type", "application/xml")
            handler.end_headers()
            if number == 0:
                # More than the engine holds back, and less than there is.
                handler.wfile.write(multistatus(names[:700]))
                held.wait(120)
            else:
                # Beside it the engine counts what there will be.
                handler.wfile.write(multistatus(names) + MULTISTATUS_END)

        self.start_scripted_server(respond)
        tool = self.start_tool("list", "--source", "CloudSource", "--plugin", "cloud", "--json", "--timeout", "100")
        shown = [json.loads(tool.stdout.readline())["DISPLAY_NAME"] for _ in range(200)]
        self.kill_engine()
        rest = [json.loads(line)["DISPLAY_NAME"] for line in tool.stdout]
        self.assertEqual(names[:len(shown) + len(rest)], shown + rest)
        self.assertLess(len(rest), 800)
        self.assertIn("engine ended", tool.stderr.read().decode())
        self.assertEqual(MISSING, tool.wait(60))


if __name__ == "__main__":
    unittest.main()
