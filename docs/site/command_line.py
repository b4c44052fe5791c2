#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes docs/reference/command-line.md from what the program says of its own options.

command_line.py            fails where the page is not what the program says now, or where a page shows a command with
                           an option that the program does not have
command_line.py --write    writes the page

The program is `zav` on the PATH.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs/reference/command-line.md"
COMMANDS = ["spectrum", "library", "library merge", "retention", "limits", "split", "inspect", "runtime", "runtime install"]

HEAD = """# Command line

<!-- Made by docs/site/command_line.py from the program's own help: change the program, not this page. -->

`zav COMMAND --help` shows the same in a terminal. [Errors and exit codes](errors.md) says how the program ends and what
its messages mean.

| command | does |
| --- | --- |
"""


def help_of(command):
    return subprocess.run(["zav", *command.split(), "--help"], check=True, capture_output=True, text=True).stdout


def joined(block):
    """The entries of a list of options: a long name stands on a line of its own, its text on the next."""
    entries = []
    for line in block.splitlines():
        if line.startswith("  ") and line[2] != " ":
            name, _, text = line.strip().partition("  ")
            entries.append([name, text.strip()])
        else:
            entries[-1][1] = f"{entries[-1][1]} {line.strip()}".strip()
    return entries


def escaped(text):
    """The text as Markdown, with the names of options as code."""
    plain = re.sub(r"([\\`*_\[\]<>|{}#])", r"\\\1", text)
    return re.sub(r"(?<![\w-])(--[a-z][a-z-]*[a-z]|-[a-z]\b)", r"`\1`", plain)


def table(head, entries):
    rows = [f"| {head} | |", "| --- | --- |"]
    rows += ["| `{}` | {} |".format(name.replace("|", r"\|"), escaped(text)) for name, text in entries]
    return "\n".join(rows)


def paragraphs(blocks):
    for block in blocks:
        head, _, rest = block.partition("\n")
        if head in ("Examples:", "Example:"):
            commands = "\n".join(line.removeprefix("  ") for line in rest.splitlines())
            yield f"{head}\n\n```sh\n{commands}\n```"
        elif re.match(r"Exit code: ", block):
            yield "**Exit code:** " + escaped(block.removeprefix("Exit code: "))
        else:
            yield escaped(block)


def section(command):
    text = help_of(command)
    title, usage, *blocks = re.split(r"\n\n|\n(?=Usage: )", text.strip())
    parts = [f"## zav {command}", escaped(title) + ".", f"```text\n{usage.removeprefix('Usage: ')}\n```"]
    for head, label in (("Positionals:", "argument"), ("Options:", "option"), ("Subcommands:", "subcommand")):
        for block in [block for block in blocks if block.startswith(head)]:
            blocks.remove(block)
            parts.append(table(label, joined(block.removeprefix(head + "\n"))))
    return title, "\n\n".join([*parts, *paragraphs(blocks)])


def page():
    sections = {command: section(command) for command in COMMANDS}
    for command in re.findall(r"^  (\w+) {2,}", help_of("").partition("Subcommands:")[2], re.MULTILINE):
        if command not in sections:
            sys.exit(f"docs/site/command_line.py does not know the command {command}")
    rows = [f"| [zav {name}](#zav-{name.replace(' ', '-')}) | {title} |" for name, (title, _) in sections.items()]
    return HEAD + "\n".join(rows) + "\n\n" + "\n\n".join(text for _, text in sections.values()) + "\n"


def unknown_options():
    """The options in the commands of all pages that the program does not have."""
    options = {command: set(re.findall(r"(?<!\S)--[a-z-]+|(?<=,)--[a-z-]+", help_of(command))) for command in COMMANDS}
    for path in [ROOT / "README.md", *sorted((ROOT / "docs").rglob("*.md"))]:
        for block in re.findall(r"^```(?:sh)?\n(.*?)^```", path.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL):
            lines = block.replace("\\\n", " ").splitlines()
            for command, arguments in re.findall(r"\bzav (library merge|runtime install|[a-z]+) ([^|#\n]*)", "\n".join(lines)):
                used = set(re.findall(r"(?<!\S)--[a-z][a-z-]*", arguments))
                for option in sorted(used - options.get(command, used)):
                    yield f"{path.relative_to(ROOT)}: zav {command} has no {option}"


def main():
    now = page()
    if sys.argv[1:] == ["--write"]:
        PAGE.write_text(now, encoding="utf-8")
    if PAGE.read_text(encoding="utf-8") != now:
        sys.exit("docs/reference/command-line.md is not what the program says: run scripts/test-tutorials --write")
    if unknown := list(unknown_options()):
        sys.exit("\n".join(unknown))


if __name__ == "__main__":
    main()
