#!/usr/bin/python3
"""Every example of the help texts, the README, the other documents and the man page works when it is pasted.

usage: examples.py VERTANA REPOSITORY SHARE_FOLDER

An example of a help text or the man page runs alone, and all that it makes lies in new temporary folders, so that it
can be pasted again; not each is, for a study takes seconds. Each other document's examples run in order, in a folder
of the document's own. It stands for the repository and for /tmp, so that what one example makes is there for the next.
Where the README shows a transcript, its text is compared with what is really printed.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from help_texts import all_helps
from program import Checks

# Commands of the documents that are no calls of `vertana`: each is run elsewhere.
ELSEWHERE = {
    "./scripts/demo": "a step of .ci/run",
    "./scripts/test": "runs this test",
}
CALL = re.compile(r"^(?:\S*/)?vertana\s")


class Shell:
    """Runs what is pasted, in a folder that stands for /tmp and for the repository."""

    def __init__(self, program, repository, folder):
        self.folder = folder
        (folder / "build" / "bin").mkdir(parents=True)
        (folder / "build" / "bin" / "vertana").symlink_to(program)
        (folder / "docs" / "examples").mkdir(parents=True)
        for example in (repository / "docs" / "examples").iterdir():
            (folder / "docs" / "examples" / example.name).write_text(self.here(example.read_text()))
        (folder / "temporary").mkdir()
        (folder / "settings").mkdir()
        self.environment = dict(os.environ, XDG_CONFIG_HOME=str(folder / "settings"), TMPDIR=str(folder / "temporary"),
                                PATH=f"{folder}/build/bin:{os.environ['PATH']}")

    def here(self, text):
        return text.replace("/tmp/", f"{self.folder}/")

    def paste(self, text):
        """Status, standard output and messages, all as if the folder were /tmp."""
        done = subprocess.run(["bash", "--norc", "-eu", "-c", self.here(text)],
                              cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, timeout=300, check=False)
        return done.returncode, *(part.replace(str(self.folder), "/tmp") for part in (done.stdout, done.stderr))


    def made(self):
        """What lies there, but for new temporary folders and what was learnt."""
        return [path for path in sorted(self.folder.rglob("*"))
                if not {"settings", "temporary"} & set(path.relative_to(self.folder).parts[:-1])]


def check_works(checks, shell, title, text):
    status, out, messages = shell.paste(text)
    checks.that(status == 0 and not messages, f"{title}: {text}\nstatus {status}\n{out[:2000]}\n{messages}")


def check_pasted(checks, program, repository, title, examples):
    """`examples` are texts to paste, one after the other."""
    checks.that(examples, f"{title} has examples")
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        shell = Shell(program, repository, pathlib.Path(temporary))
        for text in examples:
            check_works(checks, shell, title, text)


def check_alone(checks, program, repository, title, text):
    """An example that needs nothing of any other, and can be pasted again."""
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        shell = Shell(program, repository, pathlib.Path(temporary))
        before = shell.made()
        check_works(checks, shell, title, text)
        checks.that(shell.made() == before, f"{title}: {text}\nmakes something outside of new temporary folders")
        if not text.startswith("S=") or "--object" in text:
            check_works(checks, shell, f"{title}, again", text)


def blocks_of(document):
    """Fenced and indented blocks of Markdown, without their fences and indentation."""
    for fenced in re.findall(r"^```[a-z]*\n(.*?)^```", document, re.MULTILINE | re.DOTALL):
        yield fenced
    rest = re.sub(r"^```.*?^```", "", document, flags=re.MULTILINE | re.DOTALL)
    for indented in re.findall(r"(?:^ {4}.*\n)+", rest, re.MULTILINE):
        yield re.sub(r"^ {4}", "", indented, flags=re.MULTILINE)


def examples_of(document):
    """The lines of the blocks that call the command, but for transcripts; and those that call a script."""
    calls, others = [], []
    for block in blocks_of(document):
        for line in block.splitlines():
            if CALL.match(line):
                calls.append(line)
            elif re.match(r"(\./|scripts/)\S", line) and "  " not in line.split("#")[0].strip():
                others.append(line.split("#")[0].strip())
    return calls, others


def check_transcript(checks, program, repository, readme):
    found = re.search(r"<!-- transcript: begin.*?-->\n```\n(.*?)```\n<!-- transcript: end -->", readme, re.DOTALL)
    checks.that(found is not None, "the README has a transcript")
    if not found:
        return
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        shell = Shell(program, repository, pathlib.Path(temporary))
        parts = re.split(r"^\$ (.*)\n", found.group(1), flags=re.MULTILINE)
        checks.that(parts[0] == "" and len(parts) > 2, "the transcript begins with a command")
        for command, shown in zip(parts[1::2], parts[2::2]):
            status, out, messages = shell.paste(command)
            checks.that(status == 0 and not messages and out == shown,
                        f"README: {command}\nprints\n{out}{messages}\nand not\n{shown}")


def check_documents(checks, program, repository):
    for path in [repository / "README.md", repository / "CONTRIBUTING.md", *sorted(repository.glob("docs/**/*.md"))]:
        calls, others = examples_of(path.read_text())
        if path.name == "README.md" and path.parent == repository:
            checks.that(set(others) == set(ELSEWHERE), f"README: {others} are the only other commands")
            checks.that(calls, "the README calls the command")
        if calls:
            check_pasted(checks, program, repository, path.name, calls)


def main():
    program, repository, share = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    checks = Checks()
    helps = {f"vertana {one.name} --help": "\n".join(one.example()) for one in all_helps(program)}
    for text, title in {text: title for title, text in helps.items()}.items():
        check_alone(checks, program, repository, title, text)
    checks.that(len(helps) > 11, "the help texts have examples")
    page = (share / "man" / "man1" / "vertana.1").read_text()
    for block in re.findall(r"^\.EX\n(.*?)\n\.EE", page, re.MULTILINE | re.DOTALL):
        block = block.replace("\\-", "-").replace("\\(aq", "'")
        if block not in helps.values():  # which have just been pasted
            check_alone(checks, program, repository, "the man page", block)
    check_transcript(checks, program, repository, (repository / "README.md").read_text())
    check_documents(checks, program, repository)
    checks.finish()


main()
