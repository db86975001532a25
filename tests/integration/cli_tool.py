"""What the tests of the command line tool share: sample files, and ways to run the tool.

A program that imports this takes QRA and ENGINE as its first two arguments.
"""
import ctypes
import json
import os
import pty
import re
import select
import signal
import struct
import subprocess
import sys
import tempfile
import threading
import unittest
import wave
import zlib
from pathlib import Path

QRA, ENGINE = sys.argv.pop(1), sys.argv.pop(1)
SUCCESS, USAGE, FAILED, MISSING = 0, 1, 2, 3
CLONE_NEWNS, CLONE_NEWUSER = 0x00020000, 0x10000000


def have_own_mounts():
    """Gives this process, and what it starts, mounts of its own; false where that is not allowed."""
    user, group = os.geteuid(), os.getegid()
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.unshare(CLONE_NEWNS if user == 0 else CLONE_NEWNS | CLONE_NEWUSER) != 0:
        return False
    if user != 0:
        for name, text in ("setgroups", "deny"), ("uid_map", f"0 {user} 1"), ("gid_map", f"0 {group} 1"):
            with open(f"/proc/self/{name}", "w") as file:
                file.write(text)
    return subprocess.run(["mount", "--make-rprivate", "/"], capture_output=True).returncode == 0


def png(path, width=4, height=3):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    pixels = (b"\0" + b"\x20\x40\x80" * width) * height
    Path(os.fsdecode(path)).write_bytes(
        b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
        chunk(b"IDAT", zlib.compress(pixels)) + chunk(b"IEND", b""))


def wav(path, seconds=2):
    with wave.open(str(path), "wb") as sound:
        sound.setnchannels(1)
        sound.setsampwidth(1)
        sound.setframerate(8000)
        sound.writeframes(b"\x80" * 8000 * seconds)


def recording(path, **facts):
    path.write_bytes(b"\x47" * 188)
    lines = "".join(f"{key}={value}\n" for key, value in facts.items())
    path.with_suffix(".inf").write_text("[recording]\n" + lines)


def make_tree(root):
    """A folder as people have them, with fixed times."""
    (root / "Holiday" / "Beach").mkdir(parents=True)
    (root / "Music").mkdir()
    png(root / "IMG_10.png", 40, 30)
    png(root / "IMG_2.png", 20, 10)
    png(root / "Holiday" / "Sea.png")
    wav(root / "blues.wav")
    wav(root / "Music" / "red.wav", 3)
    (root / "clip.mp4").write_bytes(b"\0\0\0\x18ftypmp42" + b"\0" * 12)
    (root / "photo.heic").write_bytes(b"\0\0\0\x18ftypheic" + b"\0" * 12)
    (root / "movie.um4").write_bytes(b"uhd")
    (root / "readme.txt").write_text("no media")
    (root / "Recordings").mkdir()
    recording(root / "Recordings" / "news.srf", program_title="News", channel_name="ABC", channel_num="5-1", major=5,
              minor=1, start_time=1620295200, duration=60000)
    recording(root / "Recordings" / "film.srf", program_title="Film", channel_name="XYZ", channel_num="7-2", major=7,
              minor=2, start_time=1620381600, duration=120000)
    for number, path in enumerate(sorted(root.rglob("*"))):
        os.utime(path, (1620295200 + 86400 * (number % 3),) * 2)


class ToolTest(unittest.TestCase):
    """Runs the tool with a database of its own; each test has an empty one."""

    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="qra-cli-")
        self.addCleanup(directory.cleanup)
        self.directory = Path(directory.name).resolve()
        self.tree = self.directory / "tree"
        self.tree.mkdir()
        self.temporary = self.directory / "tmp"
        self.temporary.mkdir()
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith("QRA_") and name != "NO_COLOR"}
        self.environment.update(
            QRA_DATA_DIR=str(self.directory / "data"), QRA_ENGINE=ENGINE, TMPDIR=str(self.temporary),
            HOME=str(self.directory / "home"), LC_ALL="C.UTF-8", TZ="UTC", TERM="xterm", COLUMNS="100",
            DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={self.directory}/no-bus")

    def qra(self, *arguments, status=SUCCESS, standard_input=b"", **environment):
        result = subprocess.run([QRA, *arguments], env=dict(self.environment, **environment), input=standard_input,
                                capture_output=True, timeout=120)
        self.assertEqual(status, result.returncode, result)
        return result

    def start_tool(self, *arguments, **environment):
        """The tool in the background, for two minutes at the most. Without an engine of its own it has one whose
        process id stands in a file, for kill_engine()."""
        engine = self.directory / "engine"
        engine.write_text(f'#!/bin/sh\necho $$ > "{self.directory}/pid-in-work"\n'
                          f'mv "{self.directory}/pid-in-work" "{self.directory}/engine-pid"\nexec "{ENGINE}"\n')
        engine.chmod(0o755)
        tool = subprocess.Popen([QRA, *arguments],
                                env=dict(self.environment, **{"QRA_ENGINE": str(engine), **environment}),
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(tool.wait)
        self.addCleanup(tool.kill)
        self.addCleanup(tool.stdout.close)
        self.addCleanup(tool.stderr.close)
        timer = threading.Timer(120, tool.kill)
        timer.start()
        self.addCleanup(timer.cancel)
        return tool

    def kill_engine(self):
        """Ends the engine that a tool started by start_tool() has."""
        os.kill(int((self.directory / "engine-pid").read_text()), signal.SIGKILL)

    def stdout(self, *arguments, **environment):
        return self.qra(*arguments, **environment).stdout.decode()

    def tiles(self, *arguments, **environment):
        return [json.loads(line) for line in self.stdout("list", *arguments, "--json", **environment).splitlines()]

    def names(self, *arguments):
        return [tile["DISPLAY_NAME"] for tile in self.tiles(*arguments) if "DISPLAY_NAME" in tile]

    def media_path(self, drive="USBDrive1"):
        return str(self.directory / "data" / "media" / drive)

    def assert_fails(self, status, message, *arguments, **environment):
        result = self.qra(*arguments, status=status, **environment)
        self.assertEqual(b"", result.stdout)
        self.assertRegex(result.stderr.decode(), message)


class TerminalRun:
    """A program whose three streams are a terminal of 100 columns; `text` is what it wrote there."""

    def __init__(self, command, environment):
        self.master, slave = pty.openpty()
        import fcntl
        import termios
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 100, 0, 0))
        self.process = subprocess.Popen(command, env=environment, stdin=slave, stdout=slave, stderr=slave)
        os.close(slave)
        self.raw = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        os.close(self.master)

    @property
    def text(self):
        return self.raw.decode(errors="replace")

    def _read(self):
        if not select.select([self.master], [], [], 60)[0]:
            raise TimeoutError(self.text)
        try:
            data = os.read(self.master, 65536)
        except OSError:
            data = b""
        self.raw += data
        return data

    def read_until(self, pattern):
        while not re.search(pattern, self.text):
            if not self._read():
                raise EOFError(self.text)

    def wait(self):
        while self._read():
            pass
        return self.process.wait(timeout=60)
