#!/usr/bin/env python3
"""Tests what the tool shows of packaged films.

Usage: cli_package_test.py QRA ENGINE MAKE_PACKAGE [TEST...]
"""
import json
import subprocess
import sys
import unittest

from cli_tool import FAILED, USAGE, ToolTest, png

MAKE_PACKAGE = sys.argv.pop(1)
VIDEO = 3
TABLE = "<toc><DescriptiveMetadata>/urn:film:1.xml</DescriptiveMetadata></toc>"


def metadata(title, reference):
    return f"""<?xml version="1.0" encoding="UTF-8"?>
<m:Set xmlns:m="urn:m"><m:ContentMetadata><m:ContentID>urn:film:1</m:ContentID><m:Publisher>H\u00e5vn &amp; Co</m:Publisher>
<m:TitleDisplay19>{title}</m:TitleDisplay19><m:TitleDisplay60>{title}, the film</m:TitleDisplay60><m:Summary190/>
</m:ContentMetadata><m:RequiredImages><Width>640</Width><Height>360</Height><Encoding>image/png</Encoding>
<TrackReference>{reference}</TrackReference></m:RequiredImages>
<m:Ratings><Rating><country>GB</country><System>BBFC</System><Value>PG</Value></Rating></m:Ratings></m:Set>"""


class PackageTest(ToolTest):
    def make(self, package, files, *options):
        folder = self.directory / "sources" / package
        for name, content in files.items():
            path = folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(content)
        subprocess.run([MAKE_PACKAGE, *options, folder, self.tree / package], check=True, timeout=60)
        return self.tree / package

    def make_alone(self, package="film.uvu", *options, title="Alone"):
        return self.make(package, {"metadata.xml": metadata(title, 2), "track-2.png": "picture"}, *options)

    def make_container(self, package="box.uvz", *options):
        return self.make(package, {"TableOfContents.xml": TABLE, "urn:film:1.xml": metadata("Boxed", 7),
                                   "poster.png": "poster", "part.uvu/metadata.xml": metadata("Part", "p.png"),
                                   "part.uvu/p.png": "picture"}, *options)

    def package(self, path, *arguments):
        return json.loads(self.stdout("package", path, "--json", *arguments))

    def test_stand_alone_packages_of_each_name_and_form_tell_all(self):
        for name, options in {"a.uvu": [], "b.uva": ["--xml-item"], "c.uvt": ["--xml-item", "--items-in-meta"],
                              "D.SCSA": ["--film", "5000000000"]}.items():
            with self.subTest(name):
                told = self.package(self.make_alone(name, *options))
                self.assertEqual("Alone", told["TITLE_19"])
                self.assertEqual("Alone, the film", told["TITLE_60"])
                self.assertEqual("H\u00e5vn & Co", told["PUBLISHER"])
                self.assertEqual(("GB", "BBFC", "PG", ""),
                                 tuple(told[f] for f in ("COUNTRY", "SYSTEM", "RATING_VALUE", "RATING_DESC")))
                self.assertEqual((640, 360, 0), (told["WIDTH"], told["HEIGHT"], told["INDEX"]))
                self.assertEqual((self.media_path() + "/" + name, "2"),
                                 (told["STREAM_NAME"], told["TRACK_REFERENCE"]))
                self.assertEqual("", told["SUMMARY_190"])
                self.assertEqual((self.media_path() + "/" + name, 26), (told["FILE_PATH"], len(told)))

    def test_containers_of_each_form_tell_of_their_description_and_poster(self):
        for form in ("zip", "stored-zip", "tar", "cpio", "tar.gz"):
            with self.subTest(form):
                told = self.package(self.make_container(form + ".uvz", "--form", form))
                self.assertEqual(("Boxed", "poster.png", ""),
                                 (told["TITLE_19"], told["STREAM_NAME"], told["TRACK_REFERENCE"]))

    def test_table_for_people_has_a_line_for_each_value(self):
        lines = self.stdout("package", self.make_alone()).splitlines()
        self.assertIn("TITLE_60         Alone, the film", lines)
        self.assertIn("WIDTH            640", lines)

    def test_what_tells_nothing_fails(self):
        (self.tree / "broken.uvu").write_text("no package")
        (self.tree / "broken.uvz").write_text("no package")
        self.make("empty.uvz", {"readme.txt": "nothing"})
        png(self.tree / "picture.png")
        (self.tree / "text.txt").write_text("text")
        (self.tree / "none").write_text("no extension")
        for name, message in {"broken.uvu": "cannot be read", "broken.uvz": "cannot be read",
                              "empty.uvz": "tells nothing", "picture.png": "tells nothing", "text.txt": "no such file",
                              "none": "no package is called so", "gone.uvu": "there is no such file",
                              ".": "there is no such file"}.items():
            with self.subTest(name):
                self.assert_fails(FAILED, message, "package", self.tree / name)
        self.assert_fails(USAGE, "FILE", "package")

    def test_a_package_is_found_beside_folders_and_other_media(self):
        (self.tree / "Extras").mkdir()
        (self.tree / "Trailers").mkdir()
        png(self.tree / "picture.png")
        self.make_alone("b.uvu")
        film = self.make_alone("c.uvu", title="Third")
        self.assertEqual("Third", self.package(film)["TITLE_19"])

    def test_only_the_package_that_is_asked_for_is_read(self):
        for name in ("a.uvu", "c.uvu"):
            (self.tree / name).write_text("no package")
        film = self.make_alone("b.uvu")
        result = self.qra("package", film, "--json", QRA_LOG="warning")
        self.assertEqual("Alone", json.loads(result.stdout)["TITLE_19"])
        self.assertNotIn(b"a.uvu", result.stderr)
        self.assertNotIn(b"c.uvu", result.stderr)
        result = self.qra("package", self.tree / "c.uvu", status=FAILED, QRA_LOG="warning")
        self.assertIn(b"c.uvu", result.stderr)
        self.assertNotIn(b"a.uvu", result.stderr)

    def test_default_list_has_packages_with_uhd_alone(self):
        self.make_alone()
        png(self.tree / "picture.png")
        self.assertEqual(["picture.png"], self.names(self.tree))
        tiles = self.tiles(self.tree, "--uhd", "--mask", "4")
        self.assertEqual(["film.uvu", "picture.png"], [tile["FILE_PATH"].rsplit("/", 1)[1] for tile in tiles])
        self.assertIn("Alone, the film", self.stdout("list", self.tree, "--uhd"))
        self.assertEqual("Alone\n640\nGB\n", self.stdout("get", self.tree, "1", "TITLE_19", "WIDTH", "COUNTRY", "--uhd"))

    def test_package_among_the_videos_has_a_videos_text(self):
        self.make_alone()
        [film] = self.tiles(self.tree, "--mask", "4", "--extension", '{"param_media_extension_video":["uvu"]}')
        self.assertEqual(VIDEO, film["MEDIA_TYPE"])
        self.assertEqual("uvu", film["FORMAT"])
        self.assertEqual((640, 360), (film["WIDTH"], film["HEIGHT"]))
        self.assertEqual("", film["TITLE"])
        self.assertIn("STITCH_TYPE", film)
        self.assertNotIn("TITLE_19", film)

    def test_no_list_of_packages_alone_has_any(self):
        self.make_alone()
        self.assertEqual([], self.tiles(self.tree, "--mask", "4", "--uhd", "--content", "CONTENT-SCSA"))

    def test_one_that_cannot_be_read_does_not_end_a_list(self):
        self.make_alone("a.uvu")
        (self.tree / "b.uvu").write_text("no package")
        self.make_alone("c.uvu", title="Last")
        result = self.qra("list", self.tree, "--uhd", "--mask", "4", "--json", status=FAILED)
        lines = [json.loads(line) for line in result.stdout.splitlines()]
        self.assertEqual(["/a.uvu", {}, "/c.uvu"], [tile and tile["FILE_PATH"][-6:] or tile for tile in lines])
        self.assertIn(b"tile 1 cannot be read", result.stderr)
        grid = self.qra("list", self.tree, "--uhd", "--mask", "4", status=FAILED)
        self.assertIn(b"Last, the film", grid.stdout)
        self.assertEqual("Last", self.package(self.tree / "c.uvu")["TITLE_19"])


if __name__ == "__main__":
    unittest.main()
