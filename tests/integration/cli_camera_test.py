#!/usr/bin/env python3
"""Tests the commands of the tool for cameras, and its list of devices, with virtual cameras.

Usage: cli_camera_test.py QRA ENGINE VIRTUAL_CAMERA_FOLDER [TEST...]
"""
import json
import os
import subprocess
import sys
import threading
import unittest
from pathlib import Path

from cli_tool import FAILED, QRA, USAGE, ToolTest, png

CAMERA_LIBRARY = sys.argv.pop(1)
PROJECT = Path(__file__).resolve().parents[2]
THUMBNAIL = bytes([0xFF, 0xD8, 0xFF, 0xDB, 0, 4, 0, 1, 0xFF, 0xD9])


def jpeg(path):
    exif = b"Exif\0\0" + THUMBNAIL
    path.write_bytes(b"\xff\xd8\xff\xe1" + (len(exif) + 2).to_bytes(2, "big") + exif +
                     bytes([0xFF, 0xC0, 0, 11, 8, 0, 30, 0, 40, 1, 1, 0x11, 0, 0xFF, 0xD9]))


class CameraTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.cameras = self.directory / "cameras"
        self.cameras.mkdir()
        self.target = self.directory / "target"
        self.target.mkdir()
        self.environment.update(
            QRA_VIRTUAL_CAMERAS=str(self.cameras), LD_LIBRARY_PATH=CAMERA_LIBRARY,
            LSAN_OPTIONS=f"suppressions={PROJECT}/tests/sanitizers/lsan.supp:print_suppressions=0")
        (self.tree / "DCIM").mkdir()
        jpeg(self.tree / "DCIM" / "sea.jpg")
        png(self.tree / "top.png")
        (self.tree / "film.mp4").write_bytes(bytes(range(256)) * 4000)
        os.utime(self.tree / "film.mp4", (1600000000, 1600000000))

    def plug(self, *lines, name="camera", device=5):
        text = "".join(f"{line}\n" for line in (f"device = {device}", f"storage = {self.tree}", *lines))
        (self.cameras / f"{name}.new").write_text(text)
        (self.cameras / f"{name}.new").rename(self.cameras / f"{name}.camera")

    def pull(self, name="camera"):
        (self.cameras / f"{name}.camera").unlink()

    def json_lines(self, *arguments):
        return [json.loads(line) for line in self.stdout(*arguments, "--json").splitlines()]

    def id_of(self, path):
        return str({one["path"]: one["id"] for one in self.json_lines("camera", "files", "--recursive")}[path])

    def copied(self):
        return sorted(os.listdir(self.target))


class CameraUsageTest(CameraTest):
    def test_each_command_has_help(self):
        for command in ("list", "files", "get", "thumb"):
            with self.subTest(command):
                self.assertIn(f"qra camera {command}", self.stdout("camera", command, "--help"))

    def test_wrong_arguments_are_a_usage_error(self):
        self.plug()
        for arguments in ([], ["get"], ["get", "1"], ["get", "x", "--to", "."], ["thumb"], ["files", "--bus", "256"],
                          ["get", "1", "--to", str(self.tree / "top.png")]):
            with self.subTest(arguments):
                self.assert_fails(USAGE, ".", "camera", *arguments)


class CameraListTest(CameraTest):
    def test_cameras_are_told_by_their_places(self):
        self.assertEqual([], self.json_lines("camera", "list"))
        self.plug("vendor = Acme", "model = Zoom 3", "serial = 77", "bus = 2")
        self.assertEqual([{"bus": 2, "device": 5, "vendor": "Acme", "model": "Zoom 3", "serialNumber": "77"}],
                         self.json_lines("camera", "list"))
        self.assertEqual("bus 2  device 5  Acme  Zoom 3\n", self.stdout("camera", "list"))

    def test_files_have_their_ids_paths_and_sizes(self):
        self.plug()
        self.assertEqual(["DCIM", "film.mp4", "top.png"],
                         [one["path"] for one in self.json_lines("camera", "files")])
        everything = {one["path"]: one for one in self.json_lines("camera", "files", "--recursive")}
        self.assertEqual(["DCIM", "DCIM/sea.jpg", "film.mp4", "top.png"], sorted(everything))
        self.assertEqual((40, 30, 14), tuple(everything["DCIM/sea.jpg"][key] for key in ("width", "height", "type")))
        self.assertEqual(1024000, everything["film.mp4"]["size"])
        self.assertEqual(["sea.jpg"], [one["path"] for one in self.json_lines(
            "camera", "files", "--folder-id", str(everything["DCIM"]["id"]))])
        self.assertRegex(self.stdout("camera", "files", "--recursive"), r"(?m)^\d+  DCIM/sea.jpg  \d+ B  40x30  ")

    def test_a_folder_that_vanishes_during_the_walk_is_left_out(self):
        self.plug("fault = refuse GetObjectHandles 2 0x2009")
        self.assertEqual(["DCIM", "film.mp4", "top.png"],
                         [one["path"] for one in self.json_lines("camera", "files", "--recursive")])
        self.assert_fails(FAILED, "folder 4711 cannot be listed: the camera has no such file",
                          "camera", "files", "--folder-id", "4711")

    def test_a_camera_that_is_pulled_during_the_walk_fails_it(self):
        self.plug("fault = unplug GetObjectHandles 2")
        self.assert_fails(FAILED, "the camera was pulled out", "camera", "files", "--recursive")

    def test_of_several_cameras_one_has_to_be_named(self):
        self.plug(name="first", device=5)
        self.plug(name="second", device=6)
        self.assert_fails(USAGE, "--device", "camera", "files")
        self.assert_fails(FAILED, "no such camera: bus 3 device 9;", "list", "--source", "SOURCE_PTP", "--bus", "3",
                          "--device", "9")
        self.assert_fails(FAILED, "no such camera: device 9;", "camera", "files", "--device", "9")
        self.assertIn("top.png", self.stdout("camera", "files", "--bus", "1", "--device", "6"))

    def test_cameras_are_devices_and_go(self):
        self.plug("model = Zoom 3", "vendor = Acme")
        [camera] = self.json_lines("devices", "--type", "ptp")
        self.assertEqual(("present", "ptp", "Zoom 3", "Acme", 1, 5), tuple(
            camera[key] for key in ("event", "type", "name", "vendor", "deviceBus", "deviceAddress")))
        self.assertEqual("ptp  Zoom 3  Acme  bus 1  device 5\n", self.stdout("devices", "--type", "ptp"))
        watch = subprocess.Popen([QRA, "devices", "--watch", "--type", "ptp", "--json"], env=self.environment,
                                 stdout=subprocess.PIPE, stdin=subprocess.DEVNULL)
        timer = threading.Timer(60, watch.kill)
        timer.start()
        try:
            self.assertEqual("present", json.loads(watch.stdout.readline())["event"])
            self.pull()
            self.assertEqual("detached", json.loads(watch.stdout.readline())["event"])
            self.plug("model = Zoom 4", device=6)
            came = json.loads(watch.stdout.readline())
            self.assertEqual(("attached", "Zoom 4", 6), (came["event"], came["name"], came["deviceAddress"]))
        finally:
            timer.cancel()
            watch.terminate()
            watch.wait()
            watch.stdout.close()


class CameraGetTest(CameraTest):
    def test_files_are_copied_with_their_bytes_names_and_times(self):
        self.plug()
        ids = [self.id_of(path) for path in ("film.mp4", "DCIM/sea.jpg")]
        shown = self.stdout("camera", "get", *ids, "--to", str(self.target))
        self.assertEqual(f"{self.target}/film.mp4\n{self.target}/sea.jpg\n", shown)
        self.assertEqual((self.tree / "film.mp4").read_bytes(), (self.target / "film.mp4").read_bytes())
        self.assertEqual(1600000000, (self.target / "film.mp4").stat().st_mtime)

    def test_nothing_is_replaced(self):
        self.plug()
        (self.target / "film.mp4").write_text("mine")
        [copied] = self.json_lines("camera", "get", self.id_of("film.mp4"), "--to", str(self.target))
        self.assertEqual(str(self.target / "film (2).mp4"), copied["file"])
        self.assertEqual("mine", (self.target / "film.mp4").read_text())

    def test_a_name_that_leads_elsewhere_stays_in_the_folder(self):
        self.plug("fault = name GetObjectInfo 0 ../../evil")
        self.qra("camera", "get", "3", "--to", str(self.target))
        self.assertEqual([".._.._evil"], self.copied())

    def test_what_cannot_be_copied_is_told_and_the_rest_is_copied(self):
        self.plug()
        result = self.qra("camera", "get", "4711", self.id_of("top.png"), self.id_of("DCIM"), "--to", str(self.target),
                          status=FAILED)
        self.assertIn("4711: the camera has no such file", result.stderr.decode())
        self.assertIn(f"{self.id_of('DCIM')}: is a folder", result.stderr.decode())
        self.assertIn("2 files were not fetched", result.stderr.decode())
        self.assertEqual(["top.png"], self.copied())

    def test_a_camera_that_is_pulled_in_the_middle_leaves_what_is_whole(self):
        self.plug("fault = sever GetObject 2")
        ids = [self.id_of(path) for path in ("top.png", "film.mp4", "DCIM/sea.jpg")]
        result = self.qra("camera", "get", *ids, "--to", str(self.target), status=FAILED)
        self.assertIn("film.mp4: the camera was pulled out", result.stderr.decode())
        self.assertEqual(["top.png"], self.copied())
        self.assert_fails(FAILED, "no camera is connected", "camera", "files")

    def test_thumbnails_are_files_too(self):
        self.plug()
        self.qra("camera", "thumb", self.id_of("DCIM/sea.jpg"), "--to", str(self.target))
        self.assertEqual(THUMBNAIL, (self.target / f"thumb-{self.id_of('DCIM/sea.jpg')}.jpg").read_bytes())
        self.qra("camera", "thumb", self.id_of("film.mp4"), "--to", str(self.target), status=FAILED)
        self.assertEqual(1, len(self.copied()))


class CameraTilesTest(CameraTest):
    """The agent's own lists, through the real service."""

    def plug(self, *lines, **place):
        super().plug(f"log = {self.directory}/log", *lines, **place)

    def tiles_of(self, *arguments):
        return [tile for tile in self.tiles("--source", "SOURCE_PTP", "--bus", "1", "--device", "5", *arguments)
                if "DISPLAY_NAME" in tile]

    def bytes_of(self, operation):
        lines = (self.directory / "log").read_text().splitlines()
        return sum(int(line.split()[-2]) for line in lines if line.startswith(operation + " "))

    def add_360(self):
        corpus = PROJECT / "tests" / "corpus"
        (self.tree / "pan.jpg").write_bytes((corpus / "ptp_image" / "note_big_endian.jpg").read_bytes())
        film = (corpus / "ptp_video" / "stitched.mp4").read_bytes()
        (self.tree / "pan.mp4").write_bytes((1000008).to_bytes(4, "big") + b"mdat" + bytes(1000000) + film)

    def test_a_folder_and_all_pictures_in_a_row(self):
        self.plug()
        self.assertEqual(["DCIM", "film.mp4", "top.png"],
                         [tile["DISPLAY_NAME"] for tile in self.tiles_of("--folder-id", "0")])
        row = {tile["DISPLAY_NAME"]: tile for tile in self.tiles_of()}
        self.assertEqual(["sea.jpg", "top.png"], sorted(row))
        self.assertEqual((40, 30), (row["sea.jpg"]["WIDTH"], row["sea.jpg"]["HEIGHT"]))

    def test_shots_all_around_are_marked_and_their_films_are_not_fetched(self):
        self.add_360()
        self.plug("model = XQ-T410")
        tiles = {tile["DISPLAY_NAME"]: tile.get("IS_360") for tile in self.tiles_of("--folder-id", "0")}
        self.assertEqual((True, True, False), (tiles["pan.jpg"], tiles["pan.mp4"], tiles["film.mp4"]))
        self.assertLess(self.bytes_of("GetPartialObject"), 2000)
        self.assertLess(self.bytes_of("GetObject"), 2000)

    def test_other_models_are_not_asked_for_a_byte_of_their_files(self):
        self.add_360()
        self.plug()
        self.assertEqual({None, False}, {tile.get("IS_360") for tile in self.tiles_of("--folder-id", "0")})
        self.assertEqual((0, 0), (self.bytes_of("GetPartialObject"), self.bytes_of("GetObject")))

    def test_a_camera_without_ranges_gives_a_film_once(self):
        self.add_360()
        self.plug("model = XQ-T410", "ranges = no")
        self.assertEqual(1, len([tile for tile in self.tiles_of("--folder-id", "0")
                                 if tile["DISPLAY_NAME"] == "pan.mp4" and tile["IS_360"]]))
        self.assertLess(self.bytes_of("GetObject"), 2100000)

    def test_a_camera_that_is_pulled_during_the_list_fails_it(self):
        self.plug("fault = unplug GetObjectInfo 2")
        self.assert_fails(FAILED, ".", "list", "--source", "SOURCE_PTP", "--bus", "1", "--device", "5", "--folder-id",
                          "0")
        self.assertEqual([], self.json_lines("camera", "list"))


class CameraDemoTest(CameraTest):
    def test_demo_shows_the_card_copies_from_it_and_pulls_the_camera(self):
        done = subprocess.run(["scripts/demo-camera"], cwd=PROJECT, capture_output=True, text=True, timeout=300, env=dict(
            self.environment, QRA_DEMO_TOOL=os.path.abspath(QRA), QRA_DEMO_MEDIA=str(self.tree),
            QRA_VIRTUAL_CAMERA_LIBRARY=CAMERA_LIBRARY))
        self.assertEqual(0, done.returncode, done.stderr)
        for shown in ("ptp  Virtual Camera", "bus 1  device 1", "DCIM/sea.jpg", "/film.mp4"):
            self.assertIn(shown, done.stdout)
        self.assertIn("the camera was pulled out", done.stderr)
        self.assertEqual([], os.listdir(self.temporary))


if __name__ == "__main__":
    unittest.main()
