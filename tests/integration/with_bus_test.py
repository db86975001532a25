#!/usr/bin/env python3
"""Tests scripts/with-bus. Usage: with_bus_test.py WITH_BUS ENGINE"""
import os
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

WITH_BUS, ENGINE = sys.argv.pop(1), sys.argv.pop(1)
ASK_ENGINE = ["gdbus", "call", "--system", "--dest", "com.morva.qra.engine", "--object-path", "/com/morva/qra/engine",
              "--method", "com.morva.qra.engine.start_server", "start_server"]
ENGINE_PID = ["gdbus", "call", "--system", "--dest", "org.freedesktop.DBus", "--object-path", "/org/freedesktop/DBus",
              "--method", "org.freedesktop.DBus.GetConnectionUnixProcessID", "com.morva.qra.engine"]


class WithBus(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = Path(directory.name)

    def start(self, *command, engine=ENGINE):
        return subprocess.Popen([WITH_BUS, *command], env=dict(os.environ, QRA_ENGINE=engine, TMPDIR=self.directory),
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def run_with_bus(self, *command, **options):
        process = self.start(*command, **options)
        output, errors = process.communicate()
        return process.returncode, output, errors

    def assert_nothing_left(self):
        self.assertEqual([], list(self.directory.iterdir()))

    def test_gives_the_status_of_the_command(self):
        self.assertEqual((7, "", ""), self.run_with_bus("sh", "-c", "exit 7"))
        self.assert_nothing_left()

    def test_tells_the_signal_that_ended_the_command(self):
        self.assertEqual(128 + signal.SIGKILL, self.run_with_bus("sh", "-c", "kill -KILL $$")[0])

    def test_passes_input_and_arguments_through(self):
        process = subprocess.run([WITH_BUS, "sh", "-c", 'cat; echo "$1"', "sh", "two  words"], input="in ", text=True,
                                 capture_output=True, env=dict(os.environ, QRA_ENGINE=ENGINE))
        self.assertEqual("in two  words\n", process.stdout)

    def test_starts_the_engine_at_its_first_use(self):
        status, output, errors = self.run_with_bus(*ASK_ENGINE)
        self.assertEqual((0, "('QRA_SERVER_START_SUCCESS',)\n"), (status, output), errors)

    def test_has_no_engine_when_told_so(self):
        status, _, errors = self.run_with_bus(*ASK_ENGINE, engine="")
        self.assertNotEqual(0, status)
        self.assertIn("ServiceUnknown", errors)

    def test_ends_the_engine_and_what_the_command_left_running(self):
        script = f"{' '.join(ASK_ENGINE)} >&2; {' '.join(ENGINE_PID)}; sleep 1000 >&2 & echo $!"
        _, output, _ = self.run_with_bus("sh", "-c", script)
        engine, sleep = output.split("\n")[:2]
        for pid in (int(engine.split()[1].rstrip(",)")), int(sleep)):
            self.assertFalse(Path("/proc", str(pid)).exists())
        self.assert_nothing_left()

    def test_hands_a_signal_on_and_cleans_up(self):
        for sent in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(sent):
                process = self.start("sh", "-c", "echo ready; exec sleep 1000")
                self.assertEqual("ready\n", process.stdout.readline())
                process.send_signal(sent)
                process.communicate()
                self.assertEqual(128 + sent, process.returncode)
                self.assert_nothing_left()

    def test_tells_a_command_that_does_not_exist(self):
        status, _, errors = self.run_with_bus("/no/such/command")
        self.assertEqual((127, "scripts/with-bus: /no/such/command: No such file or directory\n"), (status, errors))
        self.assert_nothing_left()

    def test_tells_an_engine_that_does_not_exist(self):
        status, _, errors = self.run_with_bus("true", engine="/no/such/engine")
        self.assertEqual((1, "scripts/with-bus: QRA_ENGINE=/no/such/engine is not a program\n"), (status, errors))

    def test_without_a_command_shows_its_usage(self):
        status, _, errors = self.run_with_bus()
        self.assertEqual(1, status)
        self.assertIn("Usage: scripts/with-bus", errors)


unittest.main()
