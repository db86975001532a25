#!/usr/bin/env python3
"""Tests `qra copy` and `qra delete` on real folders, with a real media database.

Usage: cli_batch_test.py QRA ENGINE MAKE_RECORDING [TEST...]
"""
import json
import os
import resource
import signal
import subprocess
import sys
import unittest

from cli_tool import FAILED, QRA, SUCCESS, USAGE, TerminalRun, ToolTest, have_own_mounts, png, wav

MAKE_RECORDING = sys.argv.pop(1)
MANY = 3000


def sparse(path, size):
    """A film that takes no space, whatever its size."""
    with open(path, "wb") as file:
        file.write(b"\0\0\0\x18ftypmp42" + b"\0" * 12)
        file.truncate(size)


def many_pictures(folder, count):
    """As many as take a job more than a moment, in no space."""
    png(folder / "many_0.png")
    for number in range(1, count):
        os.link(folder / "many_0.png", folder / f"many_{number}.png")


class JobTest(ToolTest):
    """Has a folder with media, and another one to copy to."""

    def setUp(self):
        super().setUp()
        self.target = self.directory / "target"
        self.target.mkdir()
        (self.tree / "Sub").mkdir()
        png(self.tree / "IMG_1.png", 4, 3)
        png(self.tree / "IMG_2.png", 8, 3)
        png(self.tree / "IMG_3.png", 16, 3)
        wav(self.tree / "song.wav")
        sparse(self.tree / "film.mp4", 100000)
        (self.tree / "film.srt").write_text("subtitles")

    def copy(self, select, *options, status=SUCCESS):
        return self.qra("copy", self.tree, "--select", select, "--to", self.target, *options, status=status)

    def delete(self, select, *options, status=SUCCESS):
        return self.qra("delete", self.tree, "--select", select, *options, status=status)

    def make_recording(self, name, *options):
        subprocess.run([MAKE_RECORDING, self.tree / name, *options], check=True)

    def events(self, result):
        return [json.loads(line) for line in result.stdout.splitlines()]

    def files(self, root):
        return sorted(str(path.relative_to(root)) for path in root.rglob("*") if not path.is_dir())

    def planned(self, *selects):
        arguments = [part for select in selects for part in ("--select", select)]
        result = self.qra("copy", self.tree, *arguments, "--to", self.target, "--dry-run", "--json")
        return [event["name"] for event in self.events(result) if event["event"] == "planned"]


class JobUsageTest(JobTest):
    def test_wrong_arguments_are_a_usage_error(self):
        tree, target = str(self.tree), str(self.target)
        for arguments in (["copy"], ["copy", tree], ["copy", tree, "--select", "1"], ["copy", tree, "--to", target],
                          ["copy", tree, "--to", target, "--select", ""],
                          ["copy", tree, "--to", target, "--select", "7-3"],
                          ["copy", tree, "--to", target, "--select", "some"],
                          ["copy", tree, "--to", target, "--select", "1", "--yes"],
                          ["delete"], ["delete", tree], ["delete", tree, "--select", "x", "--yes"],
                          ["delete", tree, "--select", "1", "--to", target]):
            with self.subTest(arguments):
                self.assert_fails(USAGE, ".", *arguments)

    def test_only_what_lies_on_drives_is_worked_on(self):
        for command in ["copy", self.tree, "--to", self.target], ["delete", self.tree, "--yes"]:
            for source in "SOURCE_PTP", "SOURCE_DLNA", "SOURCE_PLAYLIST", "CloudSource":
                self.assert_fails(USAGE, "--source: only files on drives",
                                  *command, "--select", "all", "--source", source)
        self.copy("3", "--source", "SOURCE_MSC")

    def test_choice_that_cannot_be_read_is_named(self):
        self.assert_fails(USAGE, "'some' chooses nothing", "copy", self.tree, "--to", self.target, "--select", "1,some")

    def test_delete_without_a_terminal_wants_yes(self):
        self.assert_fails(USAGE, "give --yes", "delete", self.tree, "--select", "all")
        self.assertTrue((self.tree / "IMG_1.png").exists())

    def test_target_has_to_be_a_folder(self):
        for target, message in (self.directory / "missing", "No such file"), (self.tree / "song.wav", "Not a directory"):
            self.assert_fails(FAILED, message, "copy", self.tree, "--select", "2", "--to", target)


class ChoiceTest(JobTest):
    # The tiles: 0 the folder above, 1 Sub, 2 film.mp4, 3 to 5 the pictures, 6 song.wav.
    def test_indices_are_those_of_the_list(self):
        self.assertEqual(["", "Sub", "film.mp4", "IMG_1.png", "IMG_2.png", "IMG_3.png", "song.wav"],
                         [tile.get("DISPLAY_NAME", "") for tile in self.tiles(self.tree)])
        self.assertEqual(["IMG_1.png", "IMG_2.png", "song.wav"], self.planned("3-4,6"))
        self.assertEqual(["IMG_3.png", "song.wav"], self.planned("5-"))
        self.assertEqual(["IMG_1.png", "song.wav"], self.planned("6", "3", "3-3"))

    def test_fields_are_matched_with_patterns(self):
        self.assertEqual(["IMG_2.png", "IMG_3.png"], self.planned("DISPLAY_NAME=IMG_[23]*"))
        self.assertEqual(["film.mp4", "song.wav"], self.planned("MEDIA_TYPE=3,MEDIA_TYPE=5"))
        self.assertEqual(["IMG_3.png"], self.planned("WIDTH=16"))

    def test_groups_are_counted_from_nothing(self):
        os.utime(self.tree / "IMG_2.png", (1620295200,) * 2)
        os.utime(self.tree / "song.wav", (1620295200,) * 2)
        by_date = ["--sort", "CATEGORY-FOLDER-DATE", "--dry-run", "--json"]
        names = [{event["name"] for event in self.events(self.copy(f"group:{group}", *by_date))} for group in (0, 1)]
        self.assertEqual([{"film.mp4", "IMG_1.png", "IMG_3.png"}, {"IMG_2.png", "song.wav"}], names)
        self.assertIn(b"there is no group 2: the list has 2", self.copy("group:2", *by_date, status=FAILED).stderr)

    def test_other_views_have_other_indices(self):
        result = self.copy("0-1", "--content", "CONTENT-IMAGE", "--sort", "CATEGORY-TITLE", "--mask", "0x04",
                           "--dry-run", "--json")
        self.assertEqual(["IMG_1.png", "IMG_2.png"], [event["name"] for event in self.events(result)])

    def test_tile_that_is_not_there_fails(self):
        for select in "7", "5-7", "7-":
            with self.subTest(select):
                self.assertRegex(self.copy(select, status=FAILED).stderr.decode(), "no tile 7: the list has 7")

    def test_choice_that_fits_nothing_fails(self):
        for select in "0", "TITLE=nothing*":
            with self.subTest(select):
                self.assertIn(b"nothing that was chosen is left", self.copy(select, status=FAILED).stderr)
        self.assertEqual([], self.files(self.target))


class CopyTest(JobTest):
    def test_files_go_to_the_folder_of_their_kind(self):
        result = self.copy("2-6")
        self.assertEqual(["MUSIC/song.wav", "PHOTO/IMG_1.png", "PHOTO/IMG_2.png", "PHOTO/IMG_3.png", "VIDEO/film.mp4",
                          "VIDEO/film.srt"], self.files(self.target))
        for name in "MUSIC/song.wav", "PHOTO/IMG_3.png", "VIDEO/film.srt":
            self.assertEqual((self.tree / name.split("/")[1]).read_bytes(), (self.target / name).read_bytes(), name)
        self.assertRegex(result.stdout.decode(), r"^5 files \(\d+ kB\) copied\n$")
        self.assertIn(f"attached {self.target} as USBDrive2".encode(), result.stderr)

    def test_copies_are_in_the_media_database_at_once(self):
        self.copy("3-4")
        self.assertEqual(["IMG_1.png", "IMG_2.png"], [
            tile["DISPLAY_NAME"] for tile in self.tiles(self.target / "PHOTO", "--no-scan", "--mask", "0x04")])

    def test_nothing_is_overwritten(self):
        self.copy("2")
        self.copy("2")
        self.assertEqual(["VIDEO/film.mp4", "VIDEO/film.srt", "VIDEO/film_001.mp4", "VIDEO/film_001.srt"],
                         self.files(self.target))

    def test_json_has_one_event_on_a_line(self):
        events = self.events(self.copy("3-5", "--json"))
        self.assertEqual("started", events[0]["event"])
        self.assertEqual(3, events[0]["files"])
        size = sum((self.tree / f"IMG_{number}.png").stat().st_size for number in (1, 2, 3))
        self.assertEqual(size, events[0]["bytes"])
        done = [event for event in events if event["event"] == "file_done"]
        self.assertEqual([("IMG_1.png", 3, 1), ("IMG_2.png", 4, 2), ("IMG_3.png", 5, 3)],
                         [(event["name"], event["tile"], event["files_done"]) for event in done])
        self.assertEqual(("finished", 3, size), tuple(events[-1][key] for key in ("event", "files_done", "bytes_done")))

    def test_order_of_the_job_may_differ_from_that_of_the_list(self):
        for number, name in enumerate(["IMG_3.png", "film.mp4", "IMG_1.png", "song.wav"]):
            os.utime(self.tree / name, (1620295200 - 86400 * number,) * 2)
        events = self.events(self.copy("all", "--sort", "CATEGORY-FOLDER-DATE", "--mask", "0x04", "--json"))
        for event in events:
            if event["event"] == "file_done":
                self.assertEqual(event["name"], os.path.basename(event["path"]))
        self.assertEqual({"IMG_1.png", "IMG_2.png", "IMG_3.png", "film.mp4", "song.wav"},
                         {event["name"] for event in events if event["event"] == "file_done"})
        self.assertEqual(6, len(self.files(self.target)))

    def test_dry_run_changes_nothing(self):
        result = self.copy("2-3", "--dry-run")
        self.assertEqual([], list(self.target.iterdir()))
        self.assertRegex(result.stdout.decode(), r"^2  film\.mp4  100 kB\n3  IMG_1\.png  \d+ B\n$")
        self.assertNotIn(b"USBDrive2", result.stderr)

    def test_terminal_shows_how_far_it_is_and_is_left_clean(self):
        command = [QRA, "copy", str(self.tree), "--select", "2-6", "--to", str(self.target)]
        with TerminalRun(command, self.environment) as run:
            self.assertEqual(SUCCESS, run.wait())
        self.assertRegex(run.text, r"\r\[[#.]{20}\] \d of 5 files  [\d.]+ k?B of \d+ kB")
        self.assertRegex(run.text, r"\r\x1b\[K5 files \(\d+ kB\) copied\r\n$")


    def test_recordings_are_copied_with_their_companions(self):
        self.make_recording("news.srf", "--companion", ".ss", "--companion", ".mta")
        self.copy("MEDIA_TYPE=6")
        self.assertEqual(["CONTENTS/news.inf", "CONTENTS/news.mta", "CONTENTS/news.srf", "CONTENTS/news.ss"],
                         self.files(self.target))

    def test_recording_in_progress_is_left_out(self):
        self.make_recording("live.srf", "--in-progress")
        result = self.copy("MEDIA_TYPE=2,MEDIA_TYPE=6", status=FAILED)
        self.assertIn(b"live.srf, is still being recorded", result.stderr)
        self.assertIn(b"1 chosen tile was left out", result.stderr)
        self.assertEqual(["PHOTO/IMG_1.png", "PHOTO/IMG_2.png", "PHOTO/IMG_3.png"], self.files(self.target))

    def test_film_whose_subtitles_would_replace_those_of_another_is_left_out(self):
        (self.target / "VIDEO").mkdir()
        (self.target / "VIDEO" / "film.srt").write_text("of another film")
        result = self.copy("2-3", status=FAILED)
        self.assertIn(b"film.mp4, has a companion that would replace ", result.stderr)
        self.assertEqual(["PHOTO/IMG_1.png", "VIDEO/film.srt"], self.files(self.target))
        self.assertEqual("of another film", (self.target / "VIDEO" / "film.srt").read_text())


class CopyCheckTest(JobTest):
    def left_out(self, result):
        return {event["name"]: event["reason"] for event in self.events(result) if event["event"] == "left_out"}

    def test_folder_is_left_out_and_told(self):
        result = self.copy("all", status=FAILED)
        self.assertIn(b"tile 1, Sub, is a folder", result.stderr)
        self.assertIn(b"1 chosen tile was left out", result.stderr)
        self.assertEqual(6, len(self.files(self.target)))

    def test_file_that_went_since_the_scan_is_left_out(self):
        self.qra("scan", self.tree, "--recursive")
        (self.tree / "IMG_2.png").unlink()
        result = self.copy("3-5", "--no-scan", "--json", status=FAILED)
        self.assertEqual({"IMG_2.png": "cannot be found: No such file or directory"}, self.left_out(result))
        self.assertEqual(["PHOTO/IMG_1.png", "PHOTO/IMG_3.png"], self.files(self.target))

    def test_file_that_shrank_since_the_scan_is_left_out(self):
        self.qra("scan", self.tree, "--recursive")
        os.truncate(self.tree / "film.mp4", 1000)
        result = self.copy("2-3", "--no-scan", "--json", status=FAILED)
        self.assertRegex(self.left_out(result)["film.mp4"], "another size")
        self.assertEqual(["PHOTO/IMG_1.png"], self.files(self.target))

    def test_file_that_the_user_limits_do_not_allow_is_left_out(self):
        sparse(self.tree / "large.mp4", 17 << 20)
        limit = 16 << 20  # more than the media database takes
        command = [QRA, "copy", self.tree, "--select", "DISPLAY_NAME=*.mp4", "--to", self.target, "--json"]
        result = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, capture_output=True,
                                timeout=120,
                                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
        self.assertEqual(FAILED, result.returncode, result)
        self.assertRegex(self.left_out(result)["large.mp4"], r"you limit files to 17 MB \(ulimit -f\)")
        self.assertEqual(["VIDEO/film.mp4", "VIDEO/film.srt"], self.files(self.target))

    def test_title_that_has_no_folder_is_left_out(self):
        (self.tree / "movie.um4").write_text("uhd")
        result = self.copy("MEDIA_TYPE=10", "--uhd", "--sort", "CATEGORY-UHD-FOLDER-WITHUPFOLDER", "--json",
                           status=FAILED)
        self.assertIn("of a kind that cannot be copied", next(iter(self.left_out(result).values())))

    def test_dry_run_tells_what_would_be_left_out(self):
        result = self.copy("all", "--dry-run", status=FAILED)
        self.assertIn(b"tile 1, Sub, is a folder", result.stderr)
        self.assertEqual(5, len(result.stdout.splitlines()))


class DeleteTest(JobTest):
    def test_files_go_with_their_companions(self):
        self.assertEqual("2 files deleted\n", self.delete("2-3", "--yes").stdout.decode())
        self.assertEqual(["IMG_2.png", "IMG_3.png", "song.wav"], self.files(self.tree))
        self.assertNotIn("film.mp4", self.names(self.tree, "--no-scan"))

    def test_recordings_go_with_their_companions(self):
        self.make_recording("news.srf", "--companion", ".ss", "--companion", ".mta")
        self.delete("MEDIA_TYPE=6", "--yes")
        self.assertEqual([], [name for name in self.files(self.tree) if name.startswith("news")])

    def test_recording_in_progress_stays_and_the_rest_goes(self):
        self.make_recording("live.srf", "--in-progress")
        result = self.delete("DISPLAY_NAME=IMG_*,MEDIA_TYPE=6", "--yes", "--json", status=FAILED)
        events = self.events(result)
        self.assertEqual(["live.srf"], [event["name"] for event in events if event["event"] == "left_out"])
        self.assertEqual(3, events[-1]["files_done"])
        self.assertEqual(["film.mp4", "film.srt", "live.inf", "live.srf", "song.wav"], self.files(self.tree))

    def test_dry_run_deletes_nothing_and_asks_nothing(self):
        before = self.files(self.tree)
        self.assertEqual(3, len(self.delete("3-5", "--dry-run").stdout.splitlines()))
        self.assertEqual(before, self.files(self.tree))

    def answer(self, text, signal_number=0):
        command = [QRA, "delete", str(self.tree), "--select", "3-5"]
        with TerminalRun(command, self.environment) as run:
            run.read_until(r"delete 3 files \([\d.]+ k?B\) in .* for good\? \[y/N\] ")
            if signal_number:
                run.process.send_signal(signal_number)
            os.write(run.master, text)
            return run.wait(), run.text

    def test_yes_on_the_terminal_deletes(self):
        status, text = self.answer(b"y\n")
        self.assertEqual(SUCCESS, status)
        self.assertIn("3 files deleted", text)
        self.assertEqual(["film.mp4", "film.srt", "song.wav"], self.files(self.tree))

    def test_any_other_answer_deletes_nothing(self):
        for answer in b"n\n", b"\n", b"no, yes\n", b"\x04":
            with self.subTest(answer):
                status, text = self.answer(answer)
                self.assertEqual(FAILED, status)
                self.assertIn("nothing deleted", text)
                self.assertEqual(6, len(self.files(self.tree)))

    def test_interrupted_question_deletes_nothing(self):
        status, text = self.answer(b"", signal.SIGINT)
        self.assertEqual(FAILED, status, text)
        self.assertIn("interrupted", text)
        self.assertEqual(6, len(self.files(self.tree)))


class InterruptTest(JobTest):
    def interrupt_copy(self, select, stop_at):
        """Copies, sends the signal at the first event that `stop_at` takes, and gives all events."""
        command = [QRA, "copy", str(self.tree), "--select", select, "--to", str(self.target), "--json"]
        with subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            events = []
            for line in process.stdout:
                events.append(json.loads(line))
                if stop_at(events[-1]):
                    process.send_signal(signal.SIGINT)
            message = process.stderr.read().decode()
            self.assertEqual(FAILED, process.wait(timeout=60))
        return events, message

    def test_interrupted_copy_takes_back_the_file_that_is_not_whole(self):
        space = os.statvfs(self.target)
        sparse(self.tree / "large.mp4", min(8 << 30, space.f_bavail * space.f_frsize // 2))
        events, message = self.interrupt_copy("3,4,DISPLAY_NAME=large.mp4", lambda event: (
            event["event"] == "progress" and event["bytes_done"] > 10000))
        self.assertEqual("stopped", events[-1]["event"])
        self.assertEqual(["PHOTO/IMG_1.png", "PHOTO/IMG_2.png"], self.files(self.target))
        self.assertEqual(2, events[-1]["files_done"])
        self.assertRegex(message, "interrupted: 1 file not copied")

    def test_whatever_was_told_as_done_is_there_whole(self):
        many_pictures(self.tree, MANY)
        events, message = self.interrupt_copy("DISPLAY_NAME=many_*", lambda event: (
            event["event"] == "file_done" and event["files_done"] == 3))
        done = {event["name"]: event["size"] for event in events if event["event"] == "file_done"}
        self.assertEqual(done, {path.name: path.stat().st_size for path in (self.target / "PHOTO").iterdir()})
        self.assertGreaterEqual(len(done), 3)
        self.assertLess(len(done), MANY)
        self.assertRegex(message, f"interrupted: {MANY - len(done)} files? not copied")


class DriveTest(JobTest):
    """The target is a drive of its own."""

    def setUp(self):
        if not have_own_mounts():
            self.skipTest("no mount namespace is to be had here")
        super().setUp()

    def mount(self, options, place=None):
        place = place or self.target
        subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", place], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", place], capture_output=True)

    def test_drive_that_is_too_small_is_told_before_anything_is_written(self):
        self.mount("size=1m")
        sparse(self.tree / "large.mp4", 2 << 20)
        result = self.copy("3,DISPLAY_NAME=large.mp4", status=FAILED)
        self.assertRegex(result.stderr.decode(), r"not enough space, 2\.1 MB are needed and 1\.0 MB free")
        self.assertEqual([], list(self.target.iterdir()))

    def test_drive_that_cannot_be_written_is_told_for_each_file(self):
        self.mount("size=1m,ro")
        result = self.copy("3-4", status=FAILED)
        self.assertIn(b"IMG_1.png, cannot be written to", result.stderr)
        self.assertIn(b"Read-only file system", result.stderr)

    def test_drive_that_becomes_full_ends_the_job_and_says_what_was_done(self):
        self.mount("size=64m")
        (self.target / "VIDEO").mkdir()
        self.mount("size=1m", self.target / "VIDEO")
        sparse(self.tree / "large.mp4", 4 << 20)
        sparse(self.tree / "later.mp4", 1 << 10)
        result = self.copy("3,DISPLAY_NAME=la*", "--json", status=FAILED)
        events = self.events(result)
        self.assertEqual([("file_done", "IMG_1.png"), ("file_failed", "large.mp4")],
                         [(event["event"], event["name"]) for event in events
                          if event["event"] in ("file_done", "file_failed")])
        self.assertIn("the target is full", events[-2]["reason"])
        self.assertEqual(("failed", 1), (events[-1]["event"], events[-1]["files_done"]))
        self.assertIn(b"2 files not copied", result.stderr)

    def test_companion_that_finds_no_room_is_told(self):
        self.mount("size=64m")
        (self.target / "VIDEO").mkdir()
        self.mount("size=64k", self.target / "VIDEO")
        sparse(self.tree / "film.mp4", 1000)
        (self.tree / "film.srt").write_bytes(b"x" * (1 << 20))
        result = self.copy("DISPLAY_NAME=film.mp4", status=FAILED)
        self.assertRegex(result.stderr.decode(), "film.mp4 is copied without its companion .*/film.srt\n")
        self.assertRegex(result.stderr.decode(), "1 file copied without all companions")
        self.assertIn(b"1 file (1.0 kB) copied", result.stdout)
        (self.target / "VIDEO" / "film.mp4").unlink()
        (self.target / "VIDEO" / "film.srt").unlink()
        events = self.events(self.copy("DISPLAY_NAME=film.mp4", "--json", status=FAILED))
        self.assertEqual(["file_done", "file_incomplete", "finished"], [event["event"] for event in events[-3:]])

    def fail_on_pulled_drive(self, command, drive):
        """Takes the drive away in the middle of a job. Gives the job's events and what it says at its end."""
        with subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            events = []
            for line in process.stdout:
                events.append(json.loads(line))
                if len(events) == 3:
                    subprocess.run(["umount", "-l", drive], check=True)
            message = process.stderr.read().decode()
            self.assertEqual(FAILED, process.wait(timeout=120))
        return events, message

    def test_drive_that_is_pulled_ends_the_job(self):
        self.mount("size=64m")
        many_pictures(self.tree, MANY)
        command = [QRA, "copy", str(self.tree), "--select", "DISPLAY_NAME=many_*", "--to", str(self.target), "--json"]
        events, message = self.fail_on_pulled_drive(command, self.target)
        # Noticed by the library at a file, or by the tool between two.
        reasons = [event["reason"] for event in events if "reason" in event]
        self.assertIn("the target is gone", message + str(reasons))
        self.assertLess(events[-1]["files_done"], MANY)

    def test_film_on_a_drive_that_is_pulled_is_not_told_as_deleted(self):
        drive = self.directory / "stick"
        drive.mkdir()
        self.mount("size=64m", drive)
        sparse(drive / "film_0.mp4", 1000)
        for number in range(1, MANY):
            os.link(drive / "film_0.mp4", drive / f"film_{number}.mp4")
        content = os.open(drive, os.O_RDONLY)
        self.addCleanup(os.close, content)
        command = [QRA, "delete", str(drive), "--select", "all", "--yes", "--json"]
        events, message = self.fail_on_pulled_drive(command, drive)
        left = set(os.listdir(content))
        done = {event["name"] for event in events if event["event"] == "file_done"}
        self.assertEqual(set(), done & left)
        self.assertEqual(("stopped", len(done)), (events[-1]["event"], events[-1]["files_done"]))
        self.assertRegex(message, f"the drive is gone: {MANY - len(done)} files? may still be on it")


if __name__ == "__main__":
    unittest.main()
