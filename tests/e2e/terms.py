#!/usr/bin/python3
"""What study descriptions taught is listed and forgotten; every other default of the person stays as it is.

usage: terms.py VERTANA
"""
import json
import pathlib
import resource
import signal
import sys
import tempfile

from program import Checks, Run, phantom

LEARNT = "kVertanaCustomStudyDescriptionSearchTerms"
LUMBAR = "MRI lumbar spine (phantom)"
CERVICAL = "MRI cervical spine (phantom)"


class Person:
    """A person with settings of their own."""

    def __init__(self, program, folder):
        self.program = program
        self.settings = folder
        self.file = folder / "vertana" / "defaults.json"

    def terms(self, *arguments, prepare=None):
        return self.run("terms", *arguments, prepare=prepare)

    def run(self, *arguments, prepare=None):
        return Run(self.program, arguments, settings=self.settings, prepare=prepare)

    def put(self, defaults):
        self.file.parent.mkdir(parents=True, exist_ok=True)
        self.file.write_text(defaults if isinstance(defaults, str) else json.dumps(defaults))

    def defaults(self):
        return json.loads(self.file.read_text())


def refused(checks, run, status, *parts):
    checks.that(run.status == status and not run.out, f"status {status}", run)
    one = len(run.messages) == 1
    checks.that(one and all(part in run.messages[0] for part in parts), f"one line with {parts}", run)


def check_nothing_learnt(checks, person):
    run = person.terms()
    checks.that(run.status == 0 and "Nothing was learnt" in run.out and not run.messages, "nothing is learnt yet", run)
    checks.that(person.terms("--json").json() == {"terms": []}, "which programs read as an empty list")
    refused(checks, person.terms("--forget", "neck"), 1, "'neck' is no learnt term", "vertana terms")
    run = person.terms("--forget-all")
    checks.that(run.status == 0 and run.out == "Forgotten: 0 terms\n", "nothing to forget is no failure", run)
    checks.that(not person.file.exists(), "and no file is made")


def check_learning(checks, person, studies):
    """Two labellings teach two terms; each can be forgotten."""
    others = {"zoom": 18446744073709551615, "mine": [1.0, None, {"a": True}]}
    person.put(others)
    for region in ("lumbar", "cervical"):
        folder = phantom(person.program, studies / region, "--region", region)
        run = person.run("label", folder, "--line", "165,35,160,275", "--region", region)
        checks.that(run.status == 0, f"the {region} spine is labelled", run)
    listed = "cervical  " + CERVICAL + "\nlumbar    " + LUMBAR + "\n"
    for arguments in ([], ["--list"]):
        run = person.terms(*arguments)
        checks.that(run.status == 0 and run.out == listed and not run.messages, "each term stands with its region", run)
    run = person.terms("--json")
    checks.that(run.json() == {"terms": [{"term": CERVICAL, "anatomicalRegion": 0},
                                         {"term": LUMBAR, "anatomicalRegion": 2}]}, "for programs too", run)

    before = person.file.read_bytes()
    refused(checks, person.terms("--forget", LUMBAR.lower()), 1, LUMBAR.lower())
    checks.that(person.file.read_bytes() == before, "a term that is not known leaves the file as it was")
    run = person.terms("--forget", LUMBAR)
    checks.that(run.status == 0 and run.out == f"Forgotten: {LUMBAR}\n" and not run.messages, "one is forgotten", run)
    checks.that(person.defaults() == {**others, LEARNT: [{"anatomicalRegion": 0, "terms": [CERVICAL]},
                                                         {"anatomicalRegion": 1, "terms": []},
                                                         {"anatomicalRegion": 2, "terms": []}]},
                "its record stays, and so does every other default")
    checks.that(person.terms().out == "cervical  " + CERVICAL + "\n", "the other term is still known")
    run = person.terms("--forget-all")
    checks.that(run.status == 0 and run.out == "Forgotten: 1 term\n", "all are forgotten", run)
    checks.that(person.defaults() == others, "and nothing else")
    checks.that([path.name for path in person.file.parent.iterdir()] == ["defaults.json"], "nothing is left behind")


def check_odd_lists(checks, person):
    """A list that the plug-in did not write is shown as far as it is understood, and kept."""
    odd = [{"anatomicalRegion": 7, "terms": ["a\u001b[31mb", "", 5]}, "note", {"anatomicalRegion": 1}]
    person.put({LEARNT: odd})
    run = person.terms()
    checks.that(run.out == "region 7  a?[31mb\nregion 7  \"\"\n", "what a terminal would obey is not printed", run)
    checks.that(person.terms("--forget", "a?[31mb").status == 0, "a term is forgotten as it is listed")
    checks.that(person.terms("--forget", "").status == 0, "and the empty one")
    odd[0]["terms"] = [5]
    checks.that(person.defaults() == {LEARNT: odd}, "what is not understood stays")


def no_room():
    """From here on nothing can be written into a file, as on a full disk."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))


def check_refusals(checks, person):
    held = json.dumps({LEARNT: [{"anatomicalRegion": 0, "terms": ["hws"]}], "mine": 1})
    for arguments in (["--forget", "hws"], ["--forget-all"]):
        person.put(held)
        refused(checks, person.terms(*arguments, prepare=no_room), 1,
                "The terms learnt from study descriptions could not be written to ", str(person.file),
                ": check that it is a JSON object and that its folder can be written to.")
        checks.that(person.file.read_text() == held, "a full disk loses nothing")
    checks.that([path.name for path in person.file.parent.iterdir()] == ["defaults.json"], "nothing is left behind")
    for broken in ("{\"half", "[1]", ""):
        person.put(broken)
        for arguments in ([], ["--json"], ["--forget", "x"], ["--forget-all"]):
            refused(checks, person.terms(*arguments), 3, str(person.file), "is not a JSON object")
        checks.that(person.file.read_text() == broken, "a broken file is left alone")
    for arguments in (["--list", "--forget", "x"], ["--list", "--forget-all"], ["--forget", "x", "--forget-all"],
                      ["--json", "--forget", "x"], ["--json", "--forget-all"]):
        refused(checks, person.terms(*arguments), 2, arguments[0])


def main():
    program = sys.argv[1]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        top = pathlib.Path(temporary)
        check_nothing_learnt(checks, Person(program, top / "newcomer"))
        check_learning(checks, Person(program, top / "learner"), top / "studies")
        check_odd_lists(checks, Person(program, top / "tinkerer"))
        check_refusals(checks, Person(program, top / "unlucky"))
    checks.finish()


main()
