#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes the manual page and the bash completion from what the program tells of itself.

    packaging/describe.py PROGRAM VERSION DATE FOLDER

PROGRAM is the built command; orvelle.1 and orvelle.bash are written into FOLDER.
"""
import os
import re
import subprocess
import sys
import tempfile

SOURCE = os.path.dirname(os.path.abspath(__file__))


class Help:
    """The help of the program or of one of its commands."""

    def __init__(self, text):
        self.text = text
        lines = text.splitlines()
        self.summary = lines[0]
        self.usage = next(line[len("Usage: "):] for line in lines if line.startswith("Usage: "))
        self.options = []  # (names, what they take)
        self.commands = []
        self.positionals = []
        section = ""
        for line in lines:
            if re.fullmatch(r"[A-Z][a-z]+:", line):
                section = line[:-1]
            elif not line.startswith("  "):
                section = ""
            elif section and line[2] != " ":
                self._entry(section, line.strip())

    def _entry(self, section, entry):
        if section == "Options":
            # A long option's text stands on the next line, any other's behind two blanks.
            words = re.split(r"\s{2,}", entry)[0].split(" ", 1)
            self.options.append((words[0].split(","), words[1] if len(words) > 1 else ""))
        elif section == "Subcommands":
            self.commands.append(entry.split()[0])
        elif section == "Positionals":
            self.positionals.append(entry.split()[0])


def run(program, *arguments):
    environment = dict(os.environ, LC_ALL="C.UTF-8", NO_COLOR="1")
    return subprocess.run([program, *arguments], check=True, capture_output=True, text=True, encoding="utf-8",
                          env=environment).stdout


def collect(program):
    """All helps by command, "" for the program's own and "sms add" for a command of a command."""
    helps = {"": Help(run(program, "--help"))}
    for name in helps[""].commands:
        if name == "help":
            continue
        helps[name] = Help(run(program, "help", name))
        for nested in helps[name].commands:
            helps[f"{name} {nested}"] = Help(run(program, "help", name, nested))
    return helps


def filter_names(program):
    with tempfile.TemporaryDirectory() as documents:
        table = run(program, "--documents", documents, "filters", "--format", "tsv")
    rows = [line.split("\t") for line in table.splitlines()]
    column = rows[0].index("Kind")
    return [row[0] for row in rows[1:] if row[column] == "filter"]


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    # A line must not look like a request.
    return re.sub(r"(?m)^([.'])", r"\\&\1", text)


def manual(helps, version, date):
    with open(os.path.join(SOURCE, "orvelle.1.in"), encoding="utf-8") as file:
        page = file.read()
    synopsis = []
    commands = []
    for name, one in helps.items():
        if not name:
            continue
        if not one.commands:
            synopsis.append(".br\n" + roff(one.usage))
        body = one.text.split("\n", 2)[2].strip("\n")
        commands.append(f".SS {roff('orvelle ' + name)}\n{roff(one.summary)}.\n.PP\n.nf\n"
                        f"{roff(one.usage)}\n\n{roff(body)}\n.fi")
    program = helps[""].text
    options = program[program.index("Options:\n") + len("Options:\n"):program.index("Subcommands:")].strip("\n")
    values = {"VERSION": version, "DATE": date, "SYNOPSIS": "\n".join(synopsis), "OPTIONS": roff(options),
              "COMMANDS": "\n".join(commands)}
    return re.sub(r"@([A-Z]+)@", lambda match: values[match.group(1)], page)


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def completion(helps, filters):
    options, values, commands = [], [], []
    for name, one in helps.items():
        # An empty name can't be a key.
        name = name or "/"
        flags = [flag for names, _ in one.options for flag in names if flag.startswith("--")]
        options.append(f"    [{quoted(name)}]={quoted(' '.join(flags))}")
        commands.append(f"    [{quoted(name)}]={quoted(' '.join(one.commands))}")
        for names, takes in one.options:
            if not takes:
                continue
            choices = takes.replace("|", " ") if re.fullmatch(r"[a-z0-9_-]+(\|[a-z0-9_-]+)+", takes) else "*"
            for flag in names:
                values.append(f"    [{quoted(name + ' ' + flag)}]={quoted(choices)}")
    # What "help" tells of: the same words as the program and its commands take.
    for name, one in helps.items():
        if one.commands:
            commands.append(f"    [{quoted(('help ' + name).strip())}]={quoted(' '.join(one.commands))}")
    with open(os.path.join(SOURCE, "orvelle.bash.in"), encoding="utf-8") as file:
        script = file.read()
    takes_filter = [name for name, one in helps.items() if name in ("filter", "filters")]
    fields = {"OPTIONS": "\n".join(options), "COMMANDS": "\n".join(commands), "VALUES": "\n".join(values),
              "FILTERS": "\n".join(f"    {quoted(name)}" for name in filters), "TAKEFILTER": " ".join(takes_filter)}
    return re.sub(r"@([A-Z]+)@", lambda match: fields[match.group(1)], script)


def write(folder, name, text):
    temporary = os.path.join(folder, name + ".new")
    with open(temporary, "w", encoding="utf-8") as file:
        file.write(text)
    os.replace(temporary, os.path.join(folder, name))


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    program, version, date, folder = sys.argv[1:]
    helps = collect(program)
    write(folder, "orvelle.1", manual(helps, version, date))
    write(folder, "orvelle.bash", completion(helps, filter_names(program)))


if __name__ == "__main__":
    main()
