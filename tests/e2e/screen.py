"""A screen without a monitor: starts a program on it, moves a real pointer, types, and looks at what is shown."""
import os
import pathlib
import shutil
import struct
import subprocess
import tempfile
import time
import zlib


def missing_programs():
    return [name for name in ("Xvfb", "xdotool") if not shutil.which(name)]


class Layout:
    """Where a screen's dump holds its pixels: four bytes each, blue, green, red and one that says nothing."""

    def __init__(self, dump):
        header = struct.unpack(">25I", dump[:100])
        self.width, self.height, self.stride = header[4], header[5], header[12]
        self.start = header[0] + header[19] * 12

    def place_of(self, x, y):
        return self.start + y * self.stride + 4 * x

    def point_at(self, place):
        y, x = divmod(place - self.start, self.stride)
        return x // 4, y


class Picture:
    """What a screen shows: rows of (red, green, blue) bytes."""

    def __init__(self, dump):
        layout = Layout(dump)
        self.width, self.height = layout.width, layout.height
        self.rows = []
        for y in range(self.height):
            start = layout.place_of(0, y)
            line = dump[start:start + self.width * 4]
            row = bytearray(self.width * 3)
            row[0::3], row[1::3], row[2::3] = line[2::4], line[1::4], line[0::4]
            self.rows.append(bytes(row))

    def at(self, x, y):
        return tuple(self.rows[y][3 * x:3 * x + 3])

    def box_of(self, colour):
        """The smallest box (left, top, right, bottom; both ends in it) around everything of that colour; or None."""
        found = []
        for y, row in enumerate(self.rows):
            place = row.find(bytes(colour))
            while place >= 0 and place % 3:
                place = row.find(bytes(colour), place + 1)
            if place >= 0:
                last = row.rfind(bytes(colour))
                while last % 3:
                    last = row.rfind(bytes(colour), 0, last + 2)
                found.append((place // 3, last // 3, y))
        if not found:
            return None
        return min(f[0] for f in found), found[0][2], max(f[1] for f in found), found[-1][2]

    def count(self, box, wanted):
        """How many pixels of the box the function `wanted`(red, green, blue) takes."""
        left, top, right, bottom = box
        return sum(wanted(*self.at(x, y)) for y in range(top, bottom + 1) for x in range(left, right + 1))

    def save(self, path):
        def chunk(kind, data):
            return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        body = zlib.compress(b"".join(b"\0" + row for row in self.rows), 6)
        path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", body) + chunk(b"IEND", b""))


class Screen:
    def __init__(self, width=1600, height=1000):
        self.folder = tempfile.TemporaryDirectory(prefix="vertana-screen-")
        reading, writing = os.pipe()
        self.server = subprocess.Popen(  # pylint: disable=consider-using-with
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{width}x{height}x24", "-fbdir", self.folder.name],
            pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as told:
            self.display = ":" + told.readline().strip()

    def close(self):
        self.server.terminate()
        self.server.wait(20)
        self.folder.cleanup()

    def start(self, arguments, environment):
        # A build that looks for errors may answer slowly, and must find no session of a person.
        return subprocess.Popen(list(map(str, arguments)),  # pylint: disable=consider-using-with
                                env=dict(environment, DISPLAY=self.display, QT_QPA_PLATFORM="xcb"),
                                stdin=subprocess.DEVNULL)

    def do(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=dict(os.environ, DISPLAY=self.display), check=False,
                              capture_output=True, text=True).stdout

    def picture(self):
        dump = pathlib.Path(self.folder.name, "Xvfb_screen0").read_bytes()
        return Picture(dump)

    def settled(self, seconds=60):
        """The picture once it has stayed the same for a moment."""
        before, end = None, time.monotonic() + seconds
        while time.monotonic() < end:
            now = self.picture()
            if before and now.rows == before.rows:
                return now
            before = now
            time.sleep(0.4)
        return before

    def until(self, holds, seconds=90):
        """Waits until `holds`(picture) answers something, and gives that; None when it never does."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            answer = holds(self.picture())
            if answer:
                return answer
            time.sleep(0.3)
        return None

    def drag(self, points, let_go=True):
        self.do("mousemove", *points[0], "mousedown", 1)
        for point in points[1:]:
            time.sleep(0.03)
            self.do("mousemove", *point)
        time.sleep(0.05)
        if let_go:
            self.do("mouseup", 1)

    def window(self, title):
        """(x, y, width, height) of the window with that title; None when none is seen."""
        found = self.do("search", "--onlyvisible", "--name", title).split()
        if not found:
            return None
        lines = self.do("getwindowgeometry", "--shell", found[-1]).splitlines()
        values = dict(line.split("=", 1) for line in lines if "=" in line)
        return tuple(int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT")) if "X" in values else None
