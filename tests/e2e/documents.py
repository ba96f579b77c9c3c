#!/usr/bin/python3
"""The man page and the completion for bash know every command and every option of the help texts; the completion
completes, when bash calls it.

usage: documents.py VERTANA SHARE_FOLDER
"""
import pathlib
import re
import subprocess
import sys
import tempfile

from help_texts import all_helps
from program import Checks

COMPLETE = r"""
source "$1"; shift
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
_vertana vertana "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\n' "${COMPREPLY[@]}"
"""


class Completion:
    def __init__(self, script, folder):
        self.script = script
        self.folder = folder

    def complete(self, *words):
        """What bash would offer for the last word, after `vertana` and the other words, in order of the alphabet."""
        done = subprocess.run(["bash", "--norc", "-c", COMPLETE, "bash", str(self.script), "vertana", *words],
                              cwd=self.folder, capture_output=True, text=True, timeout=60, check=False)
        if done.returncode != 0 or done.stderr:
            return [f"status {done.returncode}: {done.stderr}"]
        return sorted(line for line in done.stdout.splitlines() if line)


def plain(page):
    """The page's text without the formatter's signs."""
    return re.sub(r"\\f[BIR]", "", page).replace("\\-", "-")


def check_man_page(checks, page, helps):
    text = plain(page)
    parts = {part.split("\n", 1)[0]: part for part in re.split(r"^\.S[SH] ", text, flags=re.MULTILINE)}
    for one in helps:
        title = f"vertana {one.name}".strip() if one.name else "OPTIONS"
        checks.that(title in parts, f"the man page has a part '{title}'")
        terms = parts.get(title, "").splitlines()
        for option in one.options:
            checks.that(any(re.search(rf"(^|, ){re.escape(option)}( |,|$)", line) for line in terms),
                        f"the man page tells of '{title}' {option}")
        for argument in one.arguments:
            checks.that(argument in [line.split(" ")[0] for line in terms], f"the man page tells of {title} {argument}")
        if one.name:
            example = plain(parts.get(title, "")).replace("\\(aq", "'")
            checks.that("\n".join(one.example()) in example, f"the man page has the example of '{title}'")
    for status in "0123":
        checks.that(f".B {status}\n" in page, f"the man page tells of exit status {status}")


def check_names(checks, completion, helps):
    program = helps[0]
    checks.that(completion.complete("") == sorted(program.commands + program.options), "first come the commands")
    checks.that(completion.complete("re") == ["render", "restore"], "those that begin so")
    checks.that(completion.complete("--v") == ["--version"], "or the program's own options")
    for one in helps[1:]:
        offered = completion.complete(one.name, "-")
        checks.that(offered == sorted(one.options), f"'{one.name}' completes {one.options}, not {offered}")
    checks.that(completion.complete("label", ".", "--sl") == ["--slice"], "an option after an argument")
    checks.that(completion.complete("nonsense", "") == [], "an unknown command completes to nothing")
    checks.that(completion.complete("terms", "") == sorted(helps[1 + program.commands.index("terms")].options),
                "a command without arguments offers its options")


def check_values(checks, completion):
    for words in (["phantom", "--region", ""], ["label", "study", "--region", ""], ["phantom", "--region", "=", ""],
                  ["phantom", "--region", "="]):
        checks.that(completion.complete(*words) == ["cervical", "lumbar", "thoracic"], f"{words}: the regions")
    checks.that(completion.complete("label", "study", "--region", "=", "th") == ["thoracic"], "--region=th is thoracic")
    folders = ["a folder", "series"]
    everything = sorted(folders + ["script.json", "-odd"])
    for words in (["info", ""], ["show", "--database", ""], ["phantom", "--out", ""], ["label", "--database", "=", ""]):
        checks.that(completion.complete(*words) == folders, f"{words}: folders")
    checks.that(completion.complete("info", "ser") == ["series"], "a folder that begins so")
    checks.that(completion.complete("info", "a f") == ["a folder"], "with a blank in its name")
    for words in (["play", ""], ["import", ""], ["import", "series", ""]):
        checks.that(completion.complete(*words) == everything, f"{words}: files and folders")
    for words in (["label", "study", "--line", ""], ["terms", "--forget", ""], ["phantom", "--seed", ""]):
        checks.that(completion.complete(*words) == [], f"{words}: nothing")


def main():
    program, share = sys.argv[1], pathlib.Path(sys.argv[2])
    checks = Checks()
    helps = all_helps(program)
    checks.that(len(helps) > 11 and all(one.options for one in helps), "the help texts are read")
    check_man_page(checks, (share / "man" / "man1" / "vertana.1").read_text(), helps)
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        folder = pathlib.Path(temporary)
        for name in ("series", "a folder"):
            (folder / name).mkdir()
        for name in ("script.json", "-odd"):
            (folder / name).touch()
        completion = Completion(share / "bash-completion" / "completions" / "vertana", folder)
        check_names(checks, completion, helps)
        check_values(checks, completion)
    registered = subprocess.run(["bash", "--norc", "-c", 'source "$1"; complete -p vertana', "bash",
                                 str(completion.script)], capture_output=True, text=True, check=False).stdout
    checks.that(registered == "complete -F _vertana vertana\n", f"bash knows it: {registered}")
    checks.finish()


main()
