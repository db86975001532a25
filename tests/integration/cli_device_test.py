#!/usr/bin/env python3
"""Tests the commands of the tool that ask the content engine of devices and scans.

Usage: cli_device_test.py QRA ENGINE SILENT_ENGINE [TEST...]
"""
import json
import os
import signal
import sys
import unittest
from pathlib import Path

from cli_tool import FAILED, MISSING, SUCCESS, USAGE, ToolTest, png, wav

SILENT_ENGINE = sys.argv.pop(1)
IMAGE = 2


class UsageTest(ToolTest):
    def test_each_command_has_help(self):
        for command in ("devices", "check-device", "thumbs"):
            with self.subTest(command):
                self.assertIn(f"qra {command}", self.stdout(command, "--help"))

    def test_wrong_arguments_are_a_usage_error(self):
        for arguments in (["devices", "--type", "tape"], ["check-device"], ["check-device", ".", "--timeout", "0"],
                          ["thumbs"], ["thumbs", ".", "--count", "0"],
                          ["thumbs", ".", "--content", "smell"]):
            with self.subTest(arguments):
                self.assert_fails(USAGE, ".", *arguments)


class DevicesTest(ToolTest):
    def devices(self, *arguments, **environment):
        return [json.loads(line) for line in self.stdout("devices", "--json", *arguments, **environment).splitlines()]

    def start_watch(self, *arguments, **environment):
        return self.start_tool("devices", "--watch", "--type", "usb", *arguments, **environment)

    def line_of(self, watch):
        line = watch.stdout.readline().decode()
        self.assertNotEqual("", line, "nothing came")
        return line

    def event_of(self, watch):
        """The next event, with the place of the device that it is about."""
        event = json.loads(self.line_of(watch))
        return event["event"], event.get("mountPath")

    def test_attached_drive_is_a_device(self):
        self.qra("attach", self.tree)
        [drive] = self.devices("--type", "usb")
        self.assertEqual(("present", "usb", self.media_path()), (drive["event"], drive["type"], drive["mountPath"]))
        self.assertIn(drive["id"], self.stdout("storages"))
        self.assertIn(self.media_path(), self.stdout("devices"))

    def test_no_device_is_no_line(self):
        self.assertEqual("", self.stdout("devices", "--type", "usb"))

    def test_type_chooses_devices(self):
        names = {types: [device["name"] for device in self.devices("--type", types, QRA_ENGINE=SILENT_ENGINE)]
                 for types in ("usb", "ptp", "bd", "other", "usb,ptp")}
        self.assertEqual({"usb": ["Stick\x1b[2J"], "ptp": ["Camera"], "bd": ["Disc"], "other": ["Other"],
                          "usb,ptp": ["Stick\x1b[2J", "Camera"]}, names)

    def test_json_has_every_value(self):
        [camera] = self.devices("--type", "ptp", QRA_ENGINE=SILENT_ENGINE)
        self.assertEqual({"event": "present", "type": "ptp", "id": "c1", "name": "Camera", "mountPath": "",
                          "serialNumber": "", "vendor": "Acme", "partitionLabel": "", "fileSystem": "",
                          "totalSize": 0, "availableSize": 0, "deviceBus": 2, "deviceAddress": 7, "deviceIndex": 0},
                         camera)

    def test_text_shows_devices_with_their_sizes_and_no_control_characters(self):
        self.assertEqual("usb  Stick\\x1b[2J  /media/USBDrive1  NTFS  500 kB of 1.0 MB free\n"
                         "ptp  Camera  Acme  bus 2  device 7\nother  Other\nbd  Disc  /media/disc\n",
                         self.stdout("devices", QRA_ENGINE=SILENT_ENGINE))

    def test_watch_shows_what_is_there_and_what_comes_and_goes_until_it_is_interrupted(self):
        other = self.directory / "other"
        other.mkdir()
        self.qra("attach", self.tree)
        watch = self.start_watch("--json")
        self.assertEqual("present", json.loads(self.line_of(watch))["event"])
        self.qra("attach", other)
        came = json.loads(self.line_of(watch))
        self.assertEqual(("attached", self.media_path("USBDrive2")), (came["event"], came["mountPath"]))
        self.qra("detach", "USBDrive2")
        went = json.loads(self.line_of(watch))
        self.assertEqual(("detached", came["id"]), (went["event"], went["id"]))
        watch.send_signal(signal.SIGINT)
        rest, messages = watch.communicate(timeout=60)
        self.assertEqual((SUCCESS, b"", b""), (watch.returncode, rest, messages))

    def test_watch_in_words_begins_with_the_event(self):
        self.qra("attach", self.tree)
        watch = self.start_watch()
        self.assertRegex(self.line_of(watch), "^present  usb  ")
        self.kill_engine()
        self.assertEqual("the content engine ended\n", self.line_of(watch))
        self.assertEqual("the content engine is back\n", self.line_of(watch))
        self.assertRegex(self.line_of(watch), "^present  usb  ")
        self.qra("detach", "USBDrive1")
        self.assertRegex(self.line_of(watch), "^detached  usb  ")

    def test_watch_starts_an_engine_that_was_killed_and_goes_on(self):
        other = self.directory / "other"
        other.mkdir()
        self.qra("attach", self.tree)
        watch = self.start_watch("--json")
        present = ("present", self.media_path())
        self.assertEqual(present, self.event_of(watch))
        for _ in range(2):
            self.kill_engine()
            self.assertEqual([("engine-ended", None), ("engine-back", None), present],
                             [self.event_of(watch) for _ in range(3)])
        self.qra("attach", other)
        self.assertEqual(("attached", self.media_path("USBDrive2")), self.event_of(watch))

    def test_watch_waits_for_an_engine_that_somebody_else_starts(self):
        self.qra("attach", self.tree)
        watch = self.start_watch("--json")
        present = ("present", self.media_path())
        self.assertEqual(present, self.event_of(watch))
        engine = self.directory / "engine"
        engine.rename(self.directory / "moved")
        self.kill_engine()
        self.assertEqual(("engine-ended", None), self.event_of(watch))
        [bus] = self.temporary.glob("qra-bus-*/socket")
        (self.directory / "moved").rename(engine)
        self.assertEqual([self.media_path()], [device["mountPath"] for device in self.devices(
            "--type", "usb", DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={bus}")])
        self.assertEqual([("engine-back", None), present], [self.event_of(watch) for _ in range(2)])

    def test_watch_ends_with_the_bus(self):
        self.qra("attach", self.tree)
        watch = self.start_watch()
        self.line_of(watch)
        [bus] = Path(f"/proc/{watch.pid}/task/{watch.pid}/children").read_text().split()
        os.kill(int(bus), signal.SIGKILL)
        self.assertEqual(b"qra: the message bus ended\n", watch.stderr.read())
        self.assertEqual(MISSING, watch.wait(60))

    def test_watch_that_the_engine_refuses_fails(self):
        self.assert_fails(FAILED, "devices: this build does not serve", "devices", "--watch",
                          QRA_ENGINE=SILENT_ENGINE)

    def test_no_engine_is_a_missing_service(self):
        for options in ([], ["--watch"], ["--type", "bd"]):
            with self.subTest(options):
                self.assert_fails(MISSING, "the content engine does not answer", "devices", *options, QRA_ENGINE="")


class CheckDeviceTest(ToolTest):
    def test_check_scans_the_drive(self):
        png(self.tree / "a.png")
        self.qra("attach", self.tree)
        self.assertEqual(f"{self.media_path()} is scanned\n", self.stdout("check-device", self.tree))
        self.assertRegex(self.stdout("storages"), "^USBDrive1  scanned ")
        self.assertEqual(["a.png"], self.names(self.tree, "--no-scan", "--sort", "CATEGORY-TITLE"))

    def test_json_has_the_engines_answer(self):
        result = json.loads(self.stdout("check-device", self.tree, "--json"))
        self.assertEqual((0, self.media_path()), (result["event"], result["path"]))
        self.assertEqual(0, json.loads(result["text"])["error"])

    def test_folder_on_no_drive_is_attached_with_a_note(self):
        self.assertEqual(f"qra: attached {self.tree} as USBDrive1\n".encode(),
                         self.qra("check-device", self.tree).stderr)

    def test_scan_that_never_ends_is_given_up_with_a_message(self):
        self.qra("attach", self.tree)
        self.assert_fails(FAILED, "no answer within 1 seconds", "check-device", self.tree, "--timeout", "1",
                          QRA_ENGINE=SILENT_ENGINE)

    def test_missing_folder_and_missing_engine_are_told(self):
        self.assert_fails(FAILED, "No such file", "check-device", self.tree / "missing")
        self.qra("attach", self.tree)
        self.assert_fails(MISSING, "the content engine does not answer", "check-device", self.tree, QRA_ENGINE="")


class ThumbsTest(ToolTest):
    def setUp(self):
        super().setUp()
        for name in "abc":
            png(self.tree / f"{name}.png")
        (self.tree / "empty").mkdir()
        (self.tree / "outer" / "inner").mkdir(parents=True)
        self.qra("attach", self.tree)

    def expect_all(self):
        paths = [f"{self.media_path()}/{name}.png\n" for name in "abc"]
        self.assertEqual("".join(paths), self.stdout("thumbs", self.tree, "--count", "4"))
        self.assertEqual("".join(paths[:2]), self.stdout("thumbs", self.tree, "--count", "2"))
        self.assertEqual("empty\n", self.stdout("thumbs", self.tree / "empty", "--count", "4"))
        self.assertEqual("no media, only folders\n", self.stdout("thumbs", self.tree / "outer", "--count", "4"))

    def test_folders_that_were_not_scanned_are_answered(self):
        self.expect_all()

    def test_scanned_folders_are_answered(self):
        self.qra("scan", self.tree, "--recursive")
        self.expect_all()

    def test_scanned_folder_needs_no_engine(self):
        self.qra("scan", self.tree, "--recursive")
        self.assertIn("a.png", self.stdout("thumbs", self.tree, QRA_ENGINE=""))

    def test_content_type_chooses_media(self):
        wav(self.tree / "blues.wav")
        self.assertEqual(f"{self.media_path()}/blues.wav\n", self.stdout("thumbs", self.tree, "--content", "music"))
        self.assertIn("a.png", self.stdout("thumbs", self.tree, "--content", "CONTENT-IMAGE"))

    def test_json_is_the_answer_of_the_library(self):
        answer = json.loads(self.stdout("thumbs", self.tree, "--count", "1", "--json"))
        self.assertEqual({"qra_folder_thumbnail_error_code": 0, "qra_folder_thumbnail_type": 0,
                          "qra_folder_thumbnail_items": [f"{self.media_path()}/a.png"],
                          "qra_folder_thumbnail_itemstype": [str(IMAGE)]}, answer)

    def test_folder_that_cannot_be_scanned_fails(self):
        self.assert_fails(FAILED, "could not be read or scanned", "thumbs", self.tree, QRA_ENGINE="")
        result = self.qra("thumbs", self.tree, "--json", status=FAILED, QRA_ENGINE="")
        self.assertEqual({"qra_folder_thumbnail_error_code": 1}, json.loads(result.stdout))

    def test_scan_that_never_ends_is_given_up_with_a_message(self):
        self.assert_fails(FAILED, "no answer within 1 seconds", "thumbs", self.tree, "--timeout", "1",
                          QRA_ENGINE=SILENT_ENGINE)


if __name__ == "__main__":
    unittest.main()
