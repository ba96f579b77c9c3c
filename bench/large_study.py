#!/usr/bin/python3
"""A study of 2,000 slices of 512x512 pixels, 16 bits each, in the window on a screen without a monitor: how long the
first image takes from the program's start, with the index in place, and how much memory it takes to scroll through all
slices, with the cache of decoded slices as large as it is unless the setting `cache/bytes` says otherwise, and with a
small one. Prints what it finds and fails when a promise is broken.

usage: large_study.py VERTANA WORKSTATION

The files have just been written and read: they lie in the system's memory, and the disk's speed has no part in this.
"""
import mmap
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

root = pathlib.Path(__file__).resolve().parent.parent
sys.dont_write_bytecode = True
sys.path[:0] = [str(root / "tests" / "e2e"), str(root / "tests" / "support")]

from checks import Checks  # noqa: E402  pylint: disable=wrong-import-position
from labelling_window import main_window, quit_program  # noqa: E402  pylint: disable=wrong-import-position
from processes import highest_memory, processor_seconds_of  # noqa: E402  pylint: disable=wrong-import-position
from screen import Layout, Screen, missing_programs  # noqa: E402  pylint: disable=wrong-import-position

SLICES = 2000
STARTS = 7
MOST_SECONDS = 0.5  # from the program's start to the first image
MIB = 2**20
DEFAULT_CACHE, SMALL_CACHE = 1024 * MIB, 128 * MIB
MOST_OVERHEAD = 0.05  # of the cache's size, for the bookkeeping of whoever gives out the memory
MOST_BESIDES = 192 * MIB  # for everything but the cache: program, libraries, fonts, index, what is on the screen
PATIENCE = 30  # seconds for what ought to take less than one

SIZE = 512
LINE = "315.2,73.6,326.4,438.4"  # along the spine of the lumbar phantom, seed 1, in images of 512x512 pixels
# Each axial slice carries its number: below a white bar lie cells, white for a bit that is set, black for one that is
# not, the lowest bit first; the last one makes the number of white cells even. They keep away from the view's edges,
# where texts are written.
BAR_TOP, BAR_ROWS = 240, 32
CELL, BITS = 32, 11
CELLS = BITS + 1
CELLS_LEFT = (SIZE - CELLS * CELL) // 2
BLACK, WHITE = 0, 32767


def bits_of(number):
    bits = [number >> index & 1 for index in range(BITS)]
    return bits + [sum(bits) % 2]


def mark(pixels, number):
    """Draws bar and cells into the bytes of an image."""
    def row(cells):
        return b"".join((WHITE if cell else BLACK).to_bytes(2, "little") * CELL for cell in cells)

    rows = [row([1] * CELLS)] * BAR_ROWS + [row(bits_of(number))] * BAR_ROWS
    for index, line in enumerate(rows, BAR_TOP):
        start = 2 * (index * SIZE + CELLS_LEFT)
        pixels[start:start + len(line)] = line


def write_axials(source, folder, count):
    """So many axial slices from those of a phantom, evenly over the same place."""
    import pydicom
    from pydicom.uid import generate_uid
    slices = sorted(map(pydicom.dcmread, source.iterdir()), key=lambda image: -image.ImagePositionPatient[2])
    top, bottom = (float(slices[end].ImagePositionPatient[2]) for end in (0, -1))
    pixels = [image.PixelData for image in slices]
    folder.mkdir()
    for number in range(count):
        nearest = round(number / (count - 1) * (len(slices) - 1))
        image, marked = slices[nearest], bytearray(pixels[nearest])
        mark(marked, number)
        image.PixelData = bytes(marked)
        image.ImagePositionPatient[2] = f"{top + number / (count - 1) * (bottom - top):.3f}"
        image.InstanceNumber = number + 1
        image.SOPInstanceUID = image.file_meta.MediaStorageSOPInstanceUID = \
            generate_uid(entropy_srcs=["vertana large study", str(number)])
        image.save_as(folder / f"IM{number:04}.dcm")


def run(program, *arguments):
    done = subprocess.run([program, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          check=False)
    if done.returncode != 0:
        sys.exit(f"vertana {arguments[0]} ended with status {done.returncode}: {done.stderr}")


def write_study(program, folder):
    """A labelled study of 2,000 slices: the sagittal ones of a phantom, and axial ones. It is opened where it lies; that
    it holds a labelling is what leaves an index there. Answers the number of axial slices."""
    run(program, "phantom", "--region", "lumbar", "--image-size", SIZE, "--out", folder.parent / "phantom")
    shutil.copytree(folder.parent / "phantom" / "SE01", folder / "SE01")
    axials = SLICES - len(list((folder / "SE01").iterdir()))
    write_axials(folder.parent / "phantom" / "SE03", folder / "SE03", axials)
    run(program, "label", folder, "--line", LINE)
    if not list(folder.glob(".*/index.sqlite")):
        sys.exit(f"There is no index in {folder}: with it, it would be opened faster.")
    return axials


class Sight:
    """Reads the number of the axial slice off the screen, quickly and again and again."""

    def __init__(self, screen):
        with open(pathlib.Path(screen.folder.name, "Xvfb_screen0"), "rb") as file:
            self.shown = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        self.layout = Layout(self.shown)
        self.bar, self.cells = [], []

    def find(self, picture):
        """Looks where the bar is; whether there is one."""
        least = b"\xff" * 3 * (CELL * CELLS // 2)
        rows = [y for y, row in enumerate(picture.rows) if least in row]
        if not rows:
            return False
        row = picture.rows[rows[len(rows) // 2]]
        left = row.find(least) // 3
        right = (row.rfind(least) + len(least)) // 3
        cell = (right - left) / CELLS
        xs = [round(left + (index + 0.5) * cell) for index in range(CELLS)]
        self.bar = [self.layout.place_of(x, round(rows[0] + 0.5 * cell)) for x in xs]
        self.cells = [self.layout.place_of(x, round(rows[0] + 1.5 * cell)) for x in xs]
        return True

    def number(self):
        """Of the slice that is shown; None while none is."""
        if any(self.shown[place] < 250 for place in self.bar):
            return None
        bits = [int(self.shown[place] > 127) for place in self.cells]
        return None if sum(bits) % 2 else sum(bit << index for index, bit in enumerate(bits[:BITS]))

    def wait_for(self, *numbers, since, seconds=PATIENCE):
        """Waits for one of these slices, or for any; answers it and the seconds that have passed since then."""
        while True:
            number = self.number()
            passed = time.monotonic() - since
            if number is not None and (not numbers or number in numbers):
                return number, passed
            if passed > seconds:
                sys.exit(f"Slice {' or '.join(map(str, numbers)) or 'of any number'} was not shown within {seconds} s; "
                         f"the screen shows {number}.")
            time.sleep(0.0005)


class Window:
    """The program on a screen, with settings of its own."""

    def __init__(self, program, study, place):
        self.program, self.study, self.place = program, study, place
        self.screen = Screen()
        self.sight = None
        self.process = None

    def start(self, cache_bytes=None):
        """Seconds until the first image; the very first start, which finds out where that is, takes longer."""
        config = self.place / "config"
        shutil.rmtree(config, ignore_errors=True)
        (config / "vertana").mkdir(parents=True)
        if cache_bytes is not None:
            (config / "vertana" / "workstation.conf").write_text(f"[cache]\nbytes={cache_bytes}\n")
        environment = dict(os.environ, XDG_CONFIG_HOME=str(config), XDG_DATA_HOME=str(self.place / "data"),
                           XDG_RUNTIME_DIR=str(self.place), LC_ALL="C.UTF-8")
        started = time.monotonic()
        self.process = self.screen.start([self.program, self.study], environment)
        if self.sight is None:
            self.sight = Sight(self.screen)
            if not self.screen.until(self.sight.find):
                sys.exit("No image was shown.")
        return self.sight.wait_for(since=started)[1]

    def end(self):
        """The most memory that it ever had, bytes."""
        memory = highest_memory(self.process.pid)
        quit_program(self.screen)
        if self.process.wait(PATIENCE) != 0:
            sys.exit("The program did not end well.")
        self.screen.until(lambda _: self.sight.number() is None, PATIENCE)
        return memory

    def scroll_through(self, slices):
        """From end to end, a key a slice and the next only when it is seen; answers the seconds that it took."""
        self.screen.do("windowfocus", "--sync", main_window(self.screen))
        x, y = self.sight.layout.point_at(self.sight.cells[0])
        self.screen.do("mousemove", x, y + 2 * CELL, "click", 1, "key", "Home")  # the pointer covers neither bar nor cells
        number, _ = self.sight.wait_for(0, slices - 1, since=time.monotonic())
        step = 1 if number == 0 else -1
        began = time.monotonic()
        for _ in range(slices - 1):
            number += step
            pressed = time.monotonic()
            self.screen.do("key", "--delay", 0, "Down")
            self.sight.wait_for(number, since=pressed)
        return time.monotonic() - began

    def close(self):
        if self.process and self.process.poll() is None:
            self.process.kill()
        self.screen.close()


def in_mib(size):
    return f"{size / MIB:.0f} MiB"


def measure_start(checks, window):
    window.start()  # its time does not count: programs and files are read for the first time
    window.end()
    times, worked = [], []
    for _ in range(STARTS):
        times.append(window.start())
        worked.append(processor_seconds_of(window.process.pid))
        window.end()
    fastest = min(times)  # the one that other programs disturbed least
    print(f"First image of a study of {SLICES} slices, from the program's start, index in place: {fastest:.2f} s "
          f"(limit {MOST_SECONDS:g} s), the fastest of {STARTS} starts; their middle {statistics.median(times):.2f} s, "
          f"the slowest {max(times):.2f} s; {min(worked):.2f} s of processors, load average {os.getloadavg()[0]:.1f}",
          flush=True)
    checks.that(fastest < MOST_SECONDS, f"the first image takes {fastest:.2f} s, more than {MOST_SECONDS:g} s")


def measure_memory(checks, window, axials):
    window.start(0)
    window.scroll_through(axials)
    besides = window.end()
    print(f"Memory while {axials} slices are scrolled through, at its highest:\n"
          f"  no cache          {in_mib(besides)} (limit {in_mib(MOST_BESIDES)})", flush=True)
    checks.that(besides < MOST_BESIDES, f"without a cache it takes {in_mib(besides)}, more than {in_mib(MOST_BESIDES)}")
    for name, setting, size in (("default", None, DEFAULT_CACHE), ("128 MiB", SMALL_CACHE, SMALL_CACHE)):
        window.start(setting)
        seconds = window.scroll_through(axials)
        memory = window.end()
        most = size * (1 + MOST_OVERHEAD)
        print(f"  cache of {name:8} {in_mib(memory)}, of which the cache {in_mib(memory - besides)} "
              f"(limit {in_mib(most)}); {axials / seconds:.0f} slices a second", flush=True)
        checks.that(memory - besides < most, f"the cache takes {in_mib(memory - besides)}, more than {in_mib(most)}")
        checks.that(memory - besides > size / 2, f"the cache holds {in_mib(memory - besides)}: the setting has no effect")


def main():
    program, workstation = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
    lacking = missing_programs() + [str(path) for path in (program, workstation) if not path.exists()]
    if lacking:
        sys.exit(f"The large study was not measured: {' and '.join(lacking)} cannot be found.")
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-large-") as temporary:
        place = pathlib.Path(temporary)
        os.environ["XDG_CONFIG_HOME"] = str(place / "command")
        axials = write_study(program, place / "study")
        window = Window(workstation, place / "study", place)
        try:
            measure_start(checks, window)
            measure_memory(checks, window, axials)
        finally:
            window.close()
    checks.finish()


main()
