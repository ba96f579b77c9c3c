"""Reads the help texts of the command: its subcommands, their options, their examples."""
import re

from program import Run


def section(text, title):
    """The lines below "Title:" that are set in."""
    found = re.search(rf"^{title}:\n((?:  .*\n?)+)", text, re.MULTILINE)
    return found.group(1).splitlines() if found else []


class Help:
    def __init__(self, program, *command):
        self.text = Run(program, [*command, "--help"]).out
        self.name = " ".join(command)
        self.commands = [line.split()[0] for line in section(self.text, "Subcommands")]
        self.arguments = [line.split()[0] for line in section(self.text, "Positionals")]
        heads = [re.match(r"  ((?:-\w,)?--[a-z-]+|-\w)(?= |$)", line) for line in section(self.text, "Options")]
        self.options = [name for head in heads if head for name in head.group(1).split(",")]

    def example(self):
        """The lines of the example, as one would paste them."""
        return [line[2:] for line in self.text.split("\nExample:\n", 1)[1].splitlines()]


def all_helps(program):
    """That of the program, then those of its subcommands in order."""
    first = Help(program)
    return [first] + [Help(program, name) for name in first.commands]
