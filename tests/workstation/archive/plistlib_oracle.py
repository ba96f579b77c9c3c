#!/usr/bin/python3
"""Our archives as Python's plistlib sees them, and archives written with plistlib as we see them.

usage: plistlib_oracle.py ARCHIVE_TOOL
"""
import pathlib
import plistlib
import sys
import tempfile

from archive_oracles import LEVELS, POINT, Checks, Tool, labelling, same, values

UID = plistlib.UID


def unarchived(archive):
    """The value in the loaded property list of an archive, read by the form alone."""
    objects = archive["$objects"]

    def value(uid):
        content = objects[uid.data]
        if not isinstance(content, dict):
            return content
        name = objects[content["$class"].data]["$classname"]
        if name == "NSDictionary":
            return {value(key): value(entry) for key, entry in zip(content["NS.keys"], content["NS.objects"])}
        if name == "NSArray":
            return [value(element) for element in content["NS.objects"]]
        if name == "NSString":
            return content["NS.string"]
        return {POINT: [content["x"], content["y"], content["z"]]}

    return value(archive["$top"]["root"])


class Archiver:
    """Writes archives as another program might: classes first, every value an object of its own."""

    def __init__(self, mutable=False, uid=UID):
        self.objects = ["$null"]
        self.uid = uid
        prefix = "NSMutable" if mutable else "NS"
        self.mutable = mutable
        self.dictionary = self.add_class(prefix + "Dictionary", "NSDictionary")
        self.array = self.add_class(prefix + "Array", "NSArray")
        self.string = self.add_class(prefix + "String", "NSString")
        self.point = self.add_class("Point3D", "Point3D")

    def add(self, content):
        self.objects.append(content)
        return self.uid(len(self.objects) - 1)

    def add_class(self, name, base):
        return self.add({"$classname": name, "$classes": list(dict.fromkeys([name, base, "NSObject"])),
                         "$classhints": []})

    def value(self, content):
        if isinstance(content, list):
            return self.add({"NS.objects": [self.value(element) for element in content], "$class": self.array})
        if isinstance(content, dict) and list(content) == [POINT]:
            return self.add({**dict(zip("xyz", content[POINT])), "$class": self.point})
        if isinstance(content, dict):
            entries = list(reversed(content.items()))
            return self.add({"NS.objects": [self.value(entry) for _, entry in entries], "$class": self.dictionary,
                             "NS.keys": [self.value(key) for key, _ in entries]})
        if isinstance(content, str) and self.mutable:
            return self.add({"NS.string": content, "$class": self.string})
        return self.add(content)

    def archive(self, content, root="root"):
        top = {root: self.value(content)}
        return {"$top": top, "$version": 100000, "$objects": self.objects, "$archiver": "NSKeyedArchiver"}


def cf_uid(number):
    return {"CF$UID": number}


def check_ours(checks, tool, file):
    for name, value in values():
        problem = tool.write(value, file)
        checks.that(not problem, f"{name} is written: {problem}")
        content = file.read_bytes()
        archive = plistlib.loads(content, fmt=plistlib.FMT_BINARY)
        checks.that(len(content) % 2 == 0, f"{name} has an even length")
        checks.that(archive["$archiver"] == "NSKeyedArchiver" and archive["$version"] == 100000 and
                    archive["$top"] == {"root": UID(1)} and archive["$objects"][0] == "$null" and
                    set(archive) == {"$archiver", "$version", "$top", "$objects"}, f"{name} has the form's head")
        classes = [entry["$classname"] for entry in archive["$objects"]
                   if isinstance(entry, dict) and "$classname" in entry]
        checks.that(len(classes) == len(set(classes)), f"{name} has each class once")
        checks.that(same(unarchived(archive), value), f"plistlib reads what was written of {name}")
        again, problem = tool.read(file)
        checks.that(same(again, value), f"{name} is read again: {problem}")


def check_theirs(checks, tool, file):
    writers = [("binary", lambda: Archiver(), plistlib.FMT_BINARY), ("XML", lambda: Archiver(uid=cf_uid), plistlib.FMT_XML),
               ("binary with CF$UID", lambda: Archiver(uid=cf_uid), plistlib.FMT_BINARY),
               ("mutable", lambda: Archiver(mutable=True), plistlib.FMT_BINARY),
               ("mutable XML", lambda: Archiver(mutable=True, uid=cf_uid), plistlib.FMT_XML)]
    for name, value in values():
        for form, archiver, fmt in writers:
            file.write_bytes(plistlib.dumps(archiver().archive(value), fmt=fmt, sort_keys=False))
            read, problem = tool.read(file)
            checks.that(same(read, value), f"{name} written by plistlib, {form}, is read: {problem}")


def check_large(checks, tool, file):
    """So many objects that references and offsets take more bytes."""
    for levels in (60, 600):
        value = labelling([f"{LEVELS[i % 6]} {i}" for i in range(levels)])
        checks.that(not tool.write(value, file), f"{levels} levels are written")
        checks.that(same(unarchived(plistlib.loads(file.read_bytes())), value), f"plistlib reads {levels} levels")
        file.write_bytes(plistlib.dumps(Archiver().archive(value), fmt=plistlib.FMT_BINARY))
        checks.that(same(tool.read(file)[0], value), f"{levels} levels written by plistlib are read")


def main():
    tool, checks = Tool(sys.argv[1]), Checks()
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "archive.plist"
        check_ours(checks, tool, file)
        check_theirs(checks, tool, file)
        check_large(checks, tool, file)
    checks.finish()


main()
