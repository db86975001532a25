#!/usr/bin/env python3
"""demo_cloud_test.py QRA ENGINE: what the demo of a WebDAV server shows, and that it leaves nothing behind."""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]


class DemoCloudTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.own = Path(folder.name)
        for name in ("data", "temporary", "media/Holiday"):
            (self.own / name).mkdir(parents=True)
        (self.own / "media/top.jpg").write_bytes(b"top")
        (self.own / "media/Holiday/sea.jpg").write_bytes(b"sea")

    def demo(self, url):
        environment = dict(os.environ, QRA_DEMO_TOOL=os.path.abspath(sys.argv[1]),
                           QRA_ENGINE=os.path.abspath(sys.argv[2]), QRA_DATA_DIR=str(self.own / "data"),
                           QRA_DEMO_MEDIA=str(self.own / "media"), TMPDIR=str(self.own / "temporary"))
        return subprocess.run(["scripts/demo-cloud", url], cwd=PROJECT, env=environment, capture_output=True,
                              text=True, timeout=200)

    def test_walks_into_a_folder_of_its_own_server_and_back_and_prints_a_detail(self):
        done = self.demo("")

        self.assertEqual(done.returncode, 0, done.stderr)
        for shown in ("top.jpg", "demo:/Holiday", "sea.jpg"):
            self.assertIn(shown, done.stdout)
        self.assertRegex(done.stdout, r"(?m)^ID_QRA\s+Holiday/sea\.jpg$")
        self.assertEqual(os.listdir(self.own / "temporary"), [])

    def test_an_address_that_cannot_be_an_accounts_is_told(self):
        done = self.demo("nowhere")

        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertIn("nowhere", done.stderr)
        self.assertEqual(os.listdir(self.own / "temporary"), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
