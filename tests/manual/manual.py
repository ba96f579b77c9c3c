#!/usr/bin/python3
"""The manual tells of every message that a person of the window may see, of every key and of every control of the
palette; its links lead somewhere, offline, and its pictures are there and small.

usage: manual.py SOURCE_FOLDER
"""
import html.parser
import json
import pathlib
import re
import struct
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
from checks import Checks  # noqa: E402  pylint: disable=wrong-import-position
from source_texts import code_of, is_inside_call, literals_of, words_of  # noqa: E402  pylint: disable=wrong-import-position

# Folders and files that what a person of the window reads comes from.
SOURCES = ["workstation/gui", "workstation/session", "workstation/database", "workstation/bundles", "workstation/dicom",
           "workstation/model", "workstation/render", "plugin", "spine", "geometry", "display", "state",
           "workstation/script/SessionRecorder.cpp"]
# Files in those folders of which the window shows nothing: the phantom's images, what stands inside of reports,
# character sets, and what only "vertana render" says.
OTHER_FILES = ["ImageWriter.cpp", "ReportTerms.h", "SpineCodes.cpp", "CharacterSets.cpp", "PrivateBlock.h",
               "RenderEntry.cpp", "RenderLoader.cpp"]
# Calls whose texts are no messages: menus, labels, tool tips, the help text of the command line, colours.
OTHER_CALLS = ["addAction", "add", "addSwitch", "addMenu", "addToolBar", "setToolTip", "setPlaceholderText",
               "setWindowTitle", "setApplicationDescription", "addPositionalArgument", "import", "database", "manual",
               "record", "chooseFolder", "chooseNewFile", "askText", "makeUid"]
# Texts that nobody reads, or that are read in the window alone.
OTHER_TEXTS = [re.compile(pattern) for pattern in (
    r"QToolBar \{",  # the style sheet
    r"(SELECT|INSERT|DELETE|UPDATE|PRAGMA|CREATE|ATTACH|DROP|BEGIN|COMMIT|SQLite format) ?",
    r"\s*(WHERE|AND|ORDER BY|FROM|GROUP BY) ", r"\w+ = \?", r"[\s\w]*\?[\d)]",  # parts of such
    r" - Vertana workstation$", r"Pelmar Vertana Plugin Intervertebral Planes SR$", r"Slices of this series$",
    r" \(Ctrl\+L\)", r"\s*r\s*$", r"\s*0\s+r\s*$",
    # The texts on an image and the fonts they are written in.
    r"(Series|Slice|Zoom|WL| WW) $", r" (mm|cm)$", r"(DejaVu|Liberation|Noto) Sans$",
    # What a report says, and words of the standard.
    r"(Magnetic Resonance|Computed (Tomography|Radiography)|Digital Radiography|X-Ray Angiography|Nuclear Medicine)$",
    r"(Positron emission tomography|Other Modality|(MRI|CT) unspecified body region)$", r"[A-Z]{2}( [A-Z]{2})+$",
    r"The spine of this study is not labelled\. A labelling that ", r"Vertana spine labelling$", r"PALETTE COLOR$",
    # Refusals that a session script may meet, and no hand.
    r"A (line|polygon|vertex) is (drawn|dragged) with at least ", r"There is no annotation tool $",
    r": choose 5 \(length line\)", r" can only be (moved|turned) by ", r"The image of viewer $",
    r"A viewer's window must have a width ")]
MOST_BYTES, MOST_BYTES_IN_ALL = 150_000, 1_000_000
BREAK = "\x00"


class Page(html.parser.HTMLParser):
    """The words of a page, a break wherever something stands that changes or a cell ends; links, images, anchors."""

    def __init__(self, path):
        super().__init__()
        self.text, self.links, self.images, self.anchors, self.open = [], [], [], set(), []
        self.feed(path.read_text())

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        if tag not in ("br", "img", "link", "meta"):
            self.open.append(tag)
        if tag in ("a", "link"):
            self.links.append(attributes["href"])
        if tag == "img":
            self.images.append(attributes)
        if "id" in attributes:
            self.anchors.add(attributes["id"])
        if tag in ("i", "td", "br", "tr", "li", "p"):
            self.text.append(f" {BREAK} ")

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            raise ValueError(f"</{tag}> closes nothing, {self.getpos()}")
        if tag == "i":
            self.text.append(f" {BREAK} ")

    def handle_data(self, data):
        if not (self.open and self.open[-1] == "i"):
            self.text.append(data)

    def words(self):
        return words_of_manual("".join(self.text))


def words_of_manual(text):
    return re.findall(rf"\w+|{BREAK}", text)


def holds(words, row):
    """Whether the words stand in that order, next to each other."""
    length = len(row)
    return any(words[i] == row[0] and words[i:i + length] == row for i in range(len(words) - length + 1))


def messages_of(path):
    for text, before, statement in literals_of(code_of(path)):
        if " " not in text or not any(word.isalpha() for word in words_of(text)) or "<<" in statement:
            continue
        if not is_inside_call(before, OTHER_CALLS) and not any(other.match(text) for other in OTHER_TEXTS):
            yield text


def check_messages(checks, root, words):
    count = 0
    for folder in SOURCES:
        place = root / folder
        for path in [place] if place.is_file() else sorted([*place.glob("*.cpp"), *place.glob("*.h")]):
            for text in messages_of(path) if path.name not in OTHER_FILES else []:
                count += 1
                checks.that(holds(words, words_of(text)), f"{path.relative_to(root)}: the manual tells of \"{text}\"")
    checks.that(count > 350, f"{count} pieces of messages are found")


def check_keys(checks, root, words):
    """What the pointer does stands in the sheet, the commands and their keys in the menus."""
    gui = root / "workstation" / "gui"
    sheet = [text for text, _, _ in literals_of(code_of(gui / "ShortcutSheet.cpp"))]
    menus = [text for text, before, _ in literals_of(code_of(gui / "MainWindowMenus.cpp"))
             if is_inside_call(before, ["addAction", "add", "addSwitch", "QKeySequence"])]
    checks.that(len(sheet) > 30 and len(menus) > 50, f"{len(sheet)} texts of the sheet, {len(menus)} of menus are found")
    for text in sheet + menus:
        plain = words_of(text.replace("&", ""))
        checks.that(not plain or holds(words, plain), f"the manual tells of the command \"{text}\"")


def check_palette(checks, root, words):
    palette = json.loads((root / "plugin" / "VertanaWindowController.json").read_text())
    texts = [palette["title"]]
    for control in palette["controls"]:
        texts += [control["label"], *(choice["title"] for choice in control.get("choices", []))]
    for text in texts:
        checks.that(holds(words, words_of(text)), f"the manual tells of the palette's \"{text}\"")


def size_of_png(path):
    head = path.read_bytes()[:24]
    return struct.unpack(">II", head[16:24]) if head[:8] == b"\x89PNG\r\n\x1a\n" else None


def check_pages(checks, folder, pages):
    shown, used = set(), set()
    for name, page in pages.items():
        checks.that(not page.open, f"{name}: everything is closed")
        for link in page.links:
            target, _, anchor = link.partition("#")
            checks.that(":" not in link and (folder / (target or name)).is_file(), f"{name}: {link} is a file beside it")
            checks.that(not anchor or anchor in pages[target or name].anchors, f"{name}: {link} is a place in it")
            used.add(target)
        for image in page.images:
            path = folder / image["src"]
            shown.add(path)
            if not path.is_file():
                checks.that(False, f"{name}: there is no {path}")
                continue
            checks.that((int(image["width"]), int(image["height"])) == size_of_png(path),
                        f"{name}: {path.name} is {size_of_png(path)}")
            checks.that(len(image.get("alt", "")) > 20, f"{name}: {path.name} is told in words, too")
    checks.that(set(pages) <= used, "every page is linked to")
    return shown


def check_pictures(checks, folder, shown):
    pictures = set((folder / "pictures").glob("*"))
    checks.that(pictures == shown, f"the pictures are those that are shown: {pictures ^ shown}")
    sizes = [path.stat().st_size for path in pictures]
    checks.that(max(sizes) <= MOST_BYTES and sum(sizes) <= MOST_BYTES_IN_ALL, f"the pictures are small: {sizes}")


def main():
    root = pathlib.Path(sys.argv[1])
    folder = root / "docs" / "manual"
    checks = Checks()
    pages = {path.name: Page(path) for path in sorted(folder.glob("*.html"))}
    words = [word for page in pages.values() for word in [BREAK, *page.words()]]
    check_messages(checks, root, words)
    check_keys(checks, root, words)
    check_palette(checks, root, words)
    check_pictures(checks, folder, check_pages(checks, folder, pages))
    checks.finish()


main()
