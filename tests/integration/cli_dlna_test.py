#!/usr/bin/env python3
"""Usage: cli_dlna_test.py QRA SERVER [TEST...]

The tool's commands on media servers, against a server of this machine in a network of its own.
"""
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

QRA, SERVER = sys.argv.pop(1), sys.argv.pop(1)
SUCCESS, USAGE, FAILED = 0, 1, 2
PATIENCE = 120
SKIPPED = 77  # as told to ctest
ATTIC = "uuid:5f0c7a10-0000-4000-8000-000000000001"
CELLAR = "uuid:5f0c7a10-0000-4000-8000-000000000002"


class Server:
    """A media server that ends with the object."""

    def __init__(self, *options):
        self.process = subprocess.Popen([SERVER, *options], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.process.stdout.readline()

    def tell(self, command):
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline()
        assert answer.startswith("ok"), f"{command}: {answer}"
        return answer[2:].strip()

    def end(self):
        self.process.stdin.close()
        self.process.wait(PATIENCE)
        self.process.stdout.close()


class DlnaTest(unittest.TestCase):
    def setUp(self):
        self.directory = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.directory)
        self.environment = {**os.environ, "XDG_DATA_HOME": str(self.directory / "data"),
                            "QRA_DATA_DIR": str(self.directory / "data"),
                            "QRA_APP_DIR": str(self.directory / "app")}
        self.server = Server("--name=Attic", "--id=" + ATTIC)
        self.addCleanup(self.server.end)

    def qra(self, *arguments, status=SUCCESS):
        result = subprocess.run([QRA, *map(str, arguments)], capture_output=True, text=True, env=self.environment,
                                timeout=PATIENCE)
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)
        return result

    def tiles(self, *arguments):
        output = self.qra("list", "--source", "SOURCE_DLNA", "--path", "Attic", "--json", *arguments).stdout
        return [json.loads(line) for line in output.splitlines()]

    def events(self, *arguments, status=SUCCESS):
        return [json.loads(line) for line in self.qra(*arguments, "--json", status=status).stdout.splitlines()]


class ListTest(DlnaTest):
    def shown_servers(self, *arguments):
        """What the tool shows; on a slow machine the servers that are found in its time may be none."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            if shown := self.qra("dlna", "servers", *arguments).stdout:
                return shown
        self.fail("no server was found")

    def test_servers_are_waited_for_as_long_as_the_user_says(self):
        self.server.tell("goodbye")
        looking = subprocess.Popen([QRA, "dlna", "servers", "--wait", "3600", "--json"], stdout=subprocess.PIPE,
                                   text=True, env=self.environment)
        self.addCleanup(looking.stdout.close)
        self.addCleanup(looking.kill)
        self.server.tell("hello")
        second = Server("--name=Cellar", "--id=" + CELLAR)
        self.addCleanup(second.end)
        found = [json.loads(looking.stdout.readline()) for _ in range(2)]
        self.assertEqual({server["name"] for server in found}, {"Attic", "Cellar"})
        self.assertEqual({server["event"] for server in found}, {"present"})

    def test_servers_are_shown_with_name_and_id(self):
        self.assertEqual(json.loads(self.shown_servers("--json")), {
            "event": "present", "id": ATTIC, "name": "Attic", "address": "127.0.0.1", "own_maker": False})
        self.assertEqual(self.shown_servers(), f"Attic  127.0.0.1  {ATTIC}\n")

    def test_servers_are_watched_as_they_come_and_go(self):
        watching = subprocess.Popen([QRA, "dlna", "servers", "--watch", "--json"], stdout=subprocess.PIPE, text=True,
                                    env=self.environment)
        self.addCleanup(watching.stdout.close)
        self.addCleanup(watching.kill)
        self.assertEqual(json.loads(watching.stdout.readline())["name"], "Attic")
        second = Server("--name=Cellar", "--id=" + CELLAR)
        self.addCleanup(second.end)
        came = json.loads(watching.stdout.readline())
        second.tell("goodbye")
        went = json.loads(watching.stdout.readline())
        watching.send_signal(signal.SIGTERM)
        self.assertEqual(watching.wait(PATIENCE), SUCCESS)
        self.assertEqual((came["event"], came["name"]), ("attached", "Cellar"))
        self.assertEqual((went["event"], went["name"]), ("detached", "Cellar"))

    def test_a_folder_is_listed_by_name_or_id_of_its_server(self):
        self.server.tell("generate films video 250")
        top = self.tiles("--mask", "6")
        self.assertIn("films", [tile["ID_QRA"] for tile in top])
        films = self.tiles("--folder-id", "films", "--mask", "6")
        self.assertEqual([tile["ID_QRA"] for tile in films], [f"films-{i}" for i in range(250)])
        self.assertTrue(all(tile["URL"].startswith("http://") for tile in films))
        by_id = self.qra("list", "--source", "SOURCE_DLNA", "--path", ATTIC, "--folder-id", "films").stdout
        self.assertIn("250 videos", by_id)


class ViewsTest(DlnaTest):
    def test_every_view_of_a_server_that_can_search_shows_its_content(self):
        self.server.tell("generate songs music 12")
        self.server.tell("generate photos image 12")
        self.server.tell("generate films video 12")
        for sort in ("ARTIST", "ALBUM", "GENRE"):
            groups = self.tiles("--content", "CONTENT-MUSIC", "--sort", "CATEGORY-" + sort)
            self.assertTrue(groups, sort)
            self.assertEqual({tile["MEDIA_TYPE"] for tile in groups}, {9}, sort)
            self.assertEqual(sum(tile["GROUP_ITEM_COUNT"] for tile in groups), 12, sort)
            shown = self.qra("list", "--source", "SOURCE_DLNA", "--path", "Attic", "--content", "CONTENT-MUSIC",
                             "--sort", "CATEGORY-" + sort).stdout
            self.assertIn(f"Attic  {len(groups)} groups", shown)
        for content, kind, sorts in (("MUSIC", 5, ("TRACK",)), ("IMAGE", 2, ("TITLE", "DATE")),
                                     ("VIDEO", 3, ("TITLE", "DATE"))):
            for sort in sorts:
                tiles = self.tiles("--content", "CONTENT-" + content, "--sort", "CATEGORY-" + sort)
                media = [tile for tile in tiles if tile["MEDIA_TYPE"] == kind]
                headers = [tile for tile in tiles if tile["MEDIA_TYPE"] == 9]
                self.assertEqual(len(media), 12, (content, sort))
                self.assertEqual(sum(tile["GROUP_ITEM_COUNT"] for tile in headers), 12, (content, sort))

    def test_a_search_finds_titles(self):
        self.server.tell("generate films video 12")
        self.server.tell("change films-3 title Moonlight")
        found = self.tiles("--sort", "CATEGORY-KEYWORD-SEARCH", "--keyword", "moon", "--mask", "4")
        self.assertEqual([tile["TITLE"] for tile in found], ["Moonlight"])


class FailureTest(DlnaTest):
    def test_failures_are_told(self):
        gone = self.qra("list", "--source", "SOURCE_DLNA", "--path", "Attic", "--folder-id", "nowhere", status=FAILED)
        self.assertIn("no such folder", gone.stderr)
        nobody = self.qra("list", "--source", "SOURCE_DLNA", "--path", "Nobody", status=FAILED)
        self.assertIn("no media server Nobody", nobody.stderr)
        self.qra("list", "--source", "SOURCE_DLNA", status=USAGE)
        self.qra("list", "--source", "SOURCE_DLNA", "--path", "Attic", "--uhd", status=USAGE)
        self.qra("dlna", "get", "Attic", status=USAGE)

    def test_a_failed_list_says_what_the_server_does(self):
        self.server.tell("generate films video 4")
        folder = ("list", "--source", "SOURCE_DLNA", "--path", "Attic", "--folder-id", "films")
        for switch, reason in (("Browse.error 501", "does not know such a request"),
                               ("Browse.error 709", "refuses the request"),
                               ("Browse.status 404", "refuses the request"),
                               ("Browse.broken-soap", "cannot be understood"),
                               ("Browse.empty-didl", "cannot be understood"),
                               ("Browse.cut", "cannot be reached, or breaks off"),
                               ("Browse.cut '' 1", "answers by now: try again")):
            self.server.tell("set " + switch)
            with self.subTest(switch):
                self.assertIn(reason, self.qra(*folder, status=FAILED).stderr)
            self.server.tell("clear")
        self.server.tell("set Browse.error 501")
        fetched = self.qra("dlna", "get", "Attic", "--folder-id", "films", "--select", "0", "--to", self.directory,
                           status=FAILED)
        self.assertIn("does not know such a request", fetched.stderr)

    def test_a_list_that_is_none_or_too_long_says_so(self):
        self.server.tell("generate films video 4")
        items = ("list", "--source", "SOURCE_DLNA", "--path", "Attic", "--folder-id")
        self.assertIn("that is no folder", self.qra(*items, "films-1", status=FAILED).stderr)
        self.environment["QRA_DLNA_MEMORY"] = "1"
        self.server.tell("set Browse.invent 20000")
        self.assertIn("QRA_DLNA_MEMORY", self.qra(*items, "films", status=FAILED).stderr)

    def test_a_view_or_search_that_the_server_cannot_give_says_so(self):
        plain = Server("--name=Cellar", "--id=" + CELLAR, "--no-search")
        self.addCleanup(plain.end)
        views = ("list", "--source", "SOURCE_DLNA", "--path", "Cellar", "--content", "CONTENT-MUSIC")
        self.assertIn("neither sorts what it has nor can search it",
                      self.qra(*views, "--sort", "CATEGORY-ARTIST", status=FAILED).stderr)
        self.assertIn("the server cannot search",
                      self.qra(*views, "--sort", "CATEGORY-KEYWORD-SEARCH", "--keyword", "a", status=FAILED).stderr)

    def test_a_server_that_ends_meanwhile_is_told_of(self):
        self.server.tell("generate films video 4")
        self.server.tell("set Browse.hold")
        listing = subprocess.Popen([QRA, "list", "--source", "SOURCE_DLNA", "--path", "Attic", "--folder-id", "films"],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env=self.environment)
        self.addCleanup(listing.kill)
        self.server.tell("await Browse 1")
        self.server.process.kill()
        _, told = listing.communicate(timeout=PATIENCE)
        self.assertEqual(listing.returncode, FAILED)
        self.assertRegex(told, "the server (is gone|cannot be reached)")

    def test_a_position_that_cannot_be_read_is_no_zero(self):
        self.server.tell("generate films video 4")
        bookmark = ("dlna", "bookmark", "Attic", "--folder-id", "films", "2")
        # What lists the folder, a page of it and the folder's own record with one child, is answered.
        self.server.tell("set Browse.error 701 -1 3")
        self.assertIn("the position cannot be read: the server has no such folder or file",
                      self.qra(*bookmark, status=FAILED).stderr)


class SilenceTest(DlnaTest):
    def test_a_server_that_does_not_answer_is_told_of(self):
        self.server.tell("generate films video 4")
        self.server.tell("set Browse.hold")
        silent = self.qra("list", "--source", "SOURCE_DLNA", "--path", "Attic", "--folder-id", "films", status=FAILED)
        self.assertIn("the server does not answer", silent.stderr)


class TransferTest(DlnaTest):
    def test_chosen_files_are_fetched_whole(self):
        self.server.tell("generate films video 4")
        self.server.tell("change films-1 title a/../b")
        self.server.tell("size films-1 300000")
        target = self.directory / "films"
        target.mkdir()
        arguments = ("dlna", "get", "Attic", "--folder-id", "films", "--select", "1-2", "--to", target)
        events = self.events(*arguments)
        self.assertEqual(events[0]["event"], "started")
        self.assertEqual(events[-1]["event"], "finished")
        self.assertEqual(events[-1]["files_done"], 2)
        self.assertEqual(len(list(target.iterdir())), 2)
        renamed, = target.glob("a_.._b.*")
        self.assertEqual(renamed.read_bytes(), bytes((i * 7 + i // 251) & 0xFF for i in range(300000)))
        again = self.events(*arguments, status=FAILED)
        self.assertEqual([event["event"] for event in again].count("file_failed"), 2)
        self.events(*arguments, "--overwrite")

    def test_a_file_and_a_fifo_are_sent(self):
        photo = self.directory / "sea.jpg"
        photo.write_bytes(b"\xff\xd8\xff" + b"x" * 5000)
        events = self.events("dlna", "put", "Attic", photo)
        self.assertEqual((events[-1]["event"], events[-1]["files_done"]), ("finished", 1))
        fifo = self.directory / "fifo"
        os.mkfifo(fifo)
        writer = subprocess.Popen(["sh", "-c", f"cat {photo} > {fifo}"])
        self.addCleanup(writer.kill)
        events = self.events("dlna", "put", "Attic", fifo, "--as", "live.jpg")
        self.assertEqual((events[-1]["event"], events[-1]["files_done"]), ("finished", 1))
        self.assertEqual(writer.wait(PATIENCE), 0)
        found = self.tiles("--sort", "CATEGORY-KEYWORD-SEARCH", "--keyword", "live", "--mask", "4")
        self.assertEqual([tile["TITLE"] for tile in found], ["live"])
        self.assertEqual(found[0]["SIZE"], 5003)
        failed = self.events("dlna", "put", "Attic", self.directory / "nowhere.jpg", status=FAILED)
        self.assertEqual(failed[-1]["event"], "failed")

    def test_a_position_is_kept_and_read(self):
        self.server.tell("generate films video 4")
        bookmark = ("dlna", "bookmark", "Attic", "--folder-id", "films", "2")
        self.assertEqual(self.qra(*bookmark).stdout, "0\n")
        self.assertEqual(self.qra(*bookmark, "--set", "95").stdout, "95\n")
        self.assertEqual(self.events(*bookmark), [{"id": "films-2", "seconds": 95}])
        self.qra("dlna", "bookmark", "Attic", "--folder-id", "films", "99", status=FAILED)


if __name__ == "__main__":
    if not os.environ.get("QRA_OWN_NETWORK"):
        print("skipped: the system gives no network of its own")
        sys.exit(SKIPPED)
    unittest.main()
