#!/usr/bin/env python3
"""Tests `qra playlist` on real folders, with a real media database.

Usage: cli_playlist_test.py QRA ENGINE [TEST...]
"""
import json
import os
import subprocess
import unittest

from cli_tool import FAILED, QRA, SUCCESS, USAGE, TerminalRun, ToolTest, have_own_mounts, wav


class SongsTest(ToolTest):
    """Has a folder with three songs, one of them in a folder of its own."""

    def setUp(self):
        super().setUp()
        self.make_songs()

    def make_songs(self):
        wav(self.tree / "blues.wav")
        wav(self.tree / "rock.wav", 3)
        (self.tree / "Sub").mkdir()
        wav(self.tree / "Sub" / "jazz.wav")

    def playlist(self, command, *arguments, status=SUCCESS):
        return self.qra("playlist", command, *arguments, status=status)

    def objects(self, command, *arguments, status=SUCCESS):
        output = self.playlist(command, *arguments, "--json", status=status).stdout.decode()
        return [json.loads(line) for line in output.splitlines()]

    def titles(self, name="Party"):
        return [song["DISPLAY_NAME"] for song in self.objects("show", self.tree, name)]

    def make(self, *files, name="Party"):
        self.playlist("new", self.tree, name)
        if files:
            self.playlist("add", self.tree, name, *(self.tree / file for file in files))

    def files(self):
        return sorted(self.tree.glob("*.m3u"))


class PlaylistTest(SongsTest):
    def test_a_playlist_is_made_filled_and_shown(self):
        self.make("rock.wav", "Sub/jazz.wav", "blues.wav")
        self.assertEqual(["rock.wav", "jazz.wav", "blues.wav"], self.titles())
        song = self.objects("show", self.tree, "Party")[1]
        self.assertEqual(self.media_path() + "/Sub/jazz.wav", song["FILE_PATH"])
        self.assertEqual((1, 5, 2000), (song["INDEX"], song["MEDIA_TYPE"], song["DURATION"]))
        listed = self.objects("list", self.tree)
        self.assertEqual([("Party", 3)], [(each["DISPLAY_NAME"], each["SONGS_COUNT"]) for each in listed])
        self.assertIn("Party  3 items", self.playlist("list", self.tree).stdout.decode())
        self.assertIn("jazz.wav", self.playlist("show", self.tree, "Party").stdout.decode())

    def test_a_file_of_other_software_is_listed_without_a_name(self):
        (self.tree / "other.m3u").write_text("#EXTM3U\n#EXTINF:2,Blues\nblues.wav\n")
        self.assertEqual("(no name)  1 item\n", self.playlist("list", self.tree).stdout.decode())

    def test_its_songs_are_tiles_of_a_list(self):
        self.make("rock.wav", "Sub/jazz.wav")
        source = "--source", "SOURCE_PLAYLIST"
        self.assertEqual(["rock.wav", "jazz.wav"], self.names(self.tree, *source, "--playlist", "Party"))
        self.assertIn("playlist Party", self.stdout("list", self.tree, *source, "--playlist", "Party"))
        self.assert_fails(FAILED, "no such playlist, or it is empty", "list", self.tree, *source, "--playlist", "Soul")
        self.assert_fails(USAGE, "--playlist is required", "list", self.tree, *source)
        self.assert_fails(USAGE, "only for --source SOURCE_PLAYLIST", "list", self.tree, "--playlist", "Party")

    def test_tiles_of_a_list_are_added(self):
        self.make()
        self.playlist("add", self.tree, "Party", "--from", self.tree, "--select", "all")
        self.assertEqual(["blues.wav", "rock.wav"], sorted(self.titles()))
        self.playlist("add", self.tree, "Party", status=USAGE)

    def test_adding_tiles_without_any_media_fails(self):
        self.make()
        result = self.playlist("add", self.tree, "Party", "--from", self.tree, "--select", "DISPLAY_NAME=Sub",
                               status=FAILED)
        self.assertIn("none of these tiles can be added", result.stderr.decode())

    def test_a_file_whose_path_the_playlist_would_not_keep_is_refused(self):
        self.make()
        for name in ("a|b.wav", "c:d.wav", "e\nf.wav"):
            with self.subTest(name):
                wav(self.tree / name)
                result = self.playlist("add", self.tree, "Party", self.tree / name, status=FAILED)
                self.assertIn("cannot stand in a playlist", result.stderr.decode())
        self.assertEqual([], self.titles())

    def test_a_title_with_a_bar_does_not_break_its_item(self):
        (self.tree / "bar.m3u8").write_text("#EXTM3U\n#EXTINF:3,Rock | Roll\nrock.wav\n")
        self.playlist("import", self.tree, self.tree / "bar.m3u8")
        [song] = self.objects("show", self.tree, "bar")
        self.assertEqual(("Rock / Roll", self.media_path() + "/rock.wav"), (song["TITLE"], song["FILE_PATH"]))

    def test_a_name_is_taken_as_its_file_keeps_it(self):
        result = self.playlist("new", self.tree, "Party: Summer ")
        self.assertIn("is called Party Summer", result.stderr.decode())
        self.playlist("add", self.tree, "Party: Summer ", self.tree / "rock.wav")
        self.assertEqual(["rock.wav"], self.titles("Party Summer"))
        result = self.playlist("rename", self.tree, "Party: Summer", "Winter: Snow")
        self.assertIn("is called Winter Snow", result.stderr.decode())
        self.assertEqual(["Winter Snow"], [each["DISPLAY_NAME"] for each in self.objects("list", self.tree)])
        self.playlist("new", self.tree, ":", status=USAGE)
        self.playlist("rename", self.tree, "Winter Snow", " \n", status=USAGE)
        for name in ("a/b", 257 * "x"):
            result = self.playlist("rename", self.tree, "Winter Snow", name, status=FAILED)
            self.assertIn("the new name is refused", result.stderr.decode())

    def test_items_are_taken_out_by_their_positions(self):
        self.make("rock.wav", "Sub/jazz.wav", "blues.wav")
        self.playlist("remove", self.tree, "Party", "0,2")
        self.assertEqual(["jazz.wav"], self.titles())
        self.playlist("remove", self.tree, "Party", "1", status=FAILED)
        self.playlist("remove", self.tree, "Party", "group:1", status=USAGE)

    def test_a_full_playlist_says_so(self):
        self.playlist("new", self.tree, "Party", "--max", "1")
        songs = self.tree / "rock.wav", self.tree / "blues.wav"
        result = self.playlist("add", self.tree, "Party", *songs, status=FAILED)
        self.assertIn("playlist Party: it is full", result.stderr.decode())
        self.assertEqual([], self.titles())

    def test_it_is_renamed_and_deleted(self):
        self.make("rock.wav")
        file = self.files()[0]
        self.playlist("rename", self.tree, "Party", "Summer")
        self.assertEqual(["rock.wav"], self.titles("Summer"))
        self.assertEqual([file], self.files())
        with TerminalRun([QRA, "playlist", "delete", self.tree, "Summer"], self.environment) as run:
            run.read_until(r"Delete the playlist Summer\? \[y/N\] ")
            os.write(run.master, b"n\n")
            self.assertEqual(FAILED, run.wait(), run.text)
        self.assertIn("qra: nothing was deleted", run.text)
        self.assert_fails(USAGE, "no terminal to ask on: give --yes", "playlist", "delete", self.tree, "Summer")
        self.assertEqual([file], self.files())
        self.playlist("delete", self.tree, "Summer", "--yes")
        self.assertEqual([], self.files())
        self.playlist("show", self.tree, "Summer", status=FAILED)

    def test_a_name_is_used_once_and_files_have_to_be_media_of_the_drive(self):
        self.make()
        self.playlist("new", self.tree, "Party", status=FAILED)
        self.playlist("new", self.tree, "", status=USAGE)
        (self.tree / "notes.txt").write_text("no media")
        self.playlist("add", self.tree, "Party", self.tree / "notes.txt", status=FAILED)
        self.playlist("add", self.tree, "Party", self.tree / "gone.wav", status=FAILED)
        other = self.directory / "other"
        other.mkdir()
        wav(other / "soul.wav")
        self.playlist("add", self.tree, "Party", other / "soul.wav", status=FAILED)
        self.assertEqual([], self.titles())

    def test_check_finds_missing_and_double_entries(self):
        self.make("rock.wav", "blues.wav", "rock.wav")
        (self.tree / "blues.wav").unlink()
        problems = self.objects("check", self.tree, "Party", status=FAILED)
        self.assertEqual([(1, "missing"), (2, "double")], [(each["INDEX"], each["problem"]) for each in problems])
        self.playlist("remove", self.tree, "Party", "1-2")
        self.assertEqual([], self.objects("check", self.tree, "Party"))

    def test_an_export_is_for_other_players_and_can_be_imported(self):
        self.make("rock.wav", "Sub/jazz.wav")
        exported = self.tree / "Sub" / "party.m3u8"
        self.playlist("export", self.tree, "Party", exported)
        lines = exported.read_text().splitlines()
        self.assertEqual(["#EXTM3U", "../rock.wav", "jazz.wav"], [lines[0], lines[2], lines[4]])
        self.assertTrue(lines[1].startswith("#EXTINF:3,"), lines)
        self.playlist("import", self.tree, exported)
        self.assertEqual(["rock.wav", "jazz.wav"], self.titles("party"))
        self.assertEqual(exported.read_bytes().splitlines()[0],
                         self.playlist("export", self.tree, "Party", "-").stdout.splitlines()[0])

    def test_lists_of_other_players_are_imported(self):
        (self.tree / "a.pls").write_text("[playlist]\nFile1=rock.wav\nTitle1=Rock!\nNumberOfEntries=1\n")
        self.playlist("import", self.tree, self.tree / "a.pls", "--name", "One")
        self.assertEqual("Rock!", self.objects("show", self.tree, "One")[0]["TITLE"])
        (self.tree / "b.xspf").write_text("<playlist><trackList><track><location>Sub/jazz.wav</location></track>"
                                          "</trackList></playlist>")
        self.playlist("import", self.tree, self.tree / "b.xspf")
        self.assertEqual(["jazz.wav"], self.titles("b"))

    def test_an_import_tells_what_it_cannot_have(self):
        wav(self.tree / "caf\u00e9.wav")
        (self.tree / "old.m3u8").write_bytes(b"#EXTM3U\r\ncaf\xe9.wav\r\nhttp://example.org/x.mp3\r\ngone.wav\r\n")
        result = self.playlist("import", self.tree, self.tree / "old.m3u8", "--name", "Old", status=FAILED)
        self.assertIn("2 entries were left out", result.stderr.decode())
        self.assertEqual(["caf\u00e9.wav"], self.titles("Old"))
        (self.tree / "bad.xspf").write_text("<playlist>")
        self.playlist("import", self.tree, self.tree / "bad.xspf", status=FAILED)

    def test_files_elsewhere_are_refused_and_their_folders_stay_what_they_are(self):
        elsewhere = self.directory / "elsewhere"
        elsewhere.mkdir()
        wav(elsewhere / "far.wav")
        self.make()
        drives = self.stdout("storages")
        result = self.playlist("add", self.tree, "Party", elsewhere / "far.wav", status=FAILED)
        self.assertIn("elsewhere/far.wav: on another drive than the playlist", result.stderr.decode())
        (self.tree / "far.m3u8").write_text("../elsewhere/far.wav\n..\n")
        result = self.playlist("import", self.tree, self.tree / "far.m3u8", status=FAILED)
        self.assertIn("no playlist was made: none of its entries can be taken", result.stderr.decode())
        self.assertEqual(drives, self.stdout("storages"))
        self.assertEqual(1, len(self.files()))

    def test_what_is_no_list_makes_no_playlist(self):
        for name, reason in {"rock.wav": "no playlist: it holds NUL bytes", "gone.m3u8": "No such file or directory",
                             "Sub": "no regular file"}.items():
            with self.subTest(name):
                self.assert_fails(FAILED, name + ": .*" + reason, "playlist", "import", self.tree, self.tree / name)
        self.assertEqual([], self.files())

    def test_internal_storage_has_one_playlist(self):
        flash = self.directory / "flash"
        flash.mkdir()
        self.playlist("new", flash, "Party", "--internal", status=USAGE)
        self.playlist("new", flash, ".bgm", "--internal")
        self.playlist("add", flash, ".bgm", self.tree / "rock.wav", "--internal")
        songs = self.objects("show", flash, ".bgm", "--internal")
        self.assertEqual([self.media_path() + "/rock.wav"], [song["FILE_PATH"] for song in songs])
        self.assertEqual(1, len(self.objects("list", flash, "--internal")))
        self.playlist("rename", flash, ".bgm", "x", "--internal", status=USAGE)

    def test_a_playlist_moves_with_its_drive(self):
        self.make("rock.wav")
        self.qra("detach", "USBDrive1")
        moved = self.directory / "moved"
        self.tree.rename(moved)
        self.qra("attach", moved, "--as", "USBDrive7")
        songs = self.objects("show", moved, "Party")
        self.assertEqual([self.media_path("USBDrive7") + "/rock.wav"], [song["FILE_PATH"] for song in songs])
        self.assertEqual([], self.objects("check", moved, "Party"))


class MountedDriveTest(SongsTest):
    """The folder is a file system of its own."""

    def setUp(self):
        if not have_own_mounts():
            self.skipTest("no mount namespace is to be had here")
        super().setUp()
        self.mount("-t", "tmpfs", "-o", "size=1m", "tmpfs", self.tree)
        self.make_songs()

    def mount(self, *arguments):
        subprocess.run(["mount", *arguments], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", arguments[-1]], capture_output=True)

    def test_a_playlist_shows_its_items_wherever_the_drive_is_mounted(self):
        self.make("rock.wav", "blues.wav")
        self.playlist("rename", self.tree, "Party", "Summer")
        self.playlist("remove", self.tree, "Summer", "1")
        self.assertEqual([], self.objects("check", self.tree, "Summer"))
        self.qra("detach", "USBDrive1")
        other = self.directory / "other"
        other.mkdir()
        self.mount("--bind", self.tree, other)
        subprocess.run(["umount", self.tree], check=True)
        self.qra("attach", other, "--as", "USBDrive7")
        songs = self.objects("show", other, "Summer")
        self.assertEqual([self.media_path("USBDrive7") + "/rock.wav"], [song["FILE_PATH"] for song in songs])
        self.assertEqual([], self.objects("check", other, "Summer"))
        self.playlist("delete", other, "Summer", "--yes")
        self.assertEqual([], self.objects("list", other))

    def test_a_drive_that_is_full_costs_the_playlist_and_says_so(self):
        self.make("rock.wav")
        with open(self.tree / "rest", "wb", buffering=0) as rest, self.assertRaises(OSError):
            while rest.write(b"x" * 4096):
                pass
        result = self.playlist("add", self.tree, "Party", *[self.tree / "rock.wav"] * 60, status=FAILED)
        self.assertIn("a drive that is full has lost the playlist", result.stderr.decode())
        self.assertEqual([], self.files())
        self.assertEqual([], self.objects("list", self.tree))

    def test_a_drive_that_was_pulled_has_no_playlists(self):
        self.make("rock.wav")
        subprocess.run(["umount", "-l", self.tree], check=True)
        result = self.playlist("show", self.tree, "Party", status=FAILED)
        self.assertIn("no such playlist", result.stderr.decode())


if __name__ == "__main__":
    unittest.main()
