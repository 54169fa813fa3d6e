"""docs/commands.md: the commands as a developer of web pages looks them up."""

import json
import re
import textwrap

from generator.comments import SUBSYSTEMS

_INTRODUCTION = """\
# Commands

What each command takes, answers and does. Written by `script/docs` from the comments of the public
headers; replies and effects of the examples are those of real runs on the virtual router. The same
facts for programs: [openapi.json](openapi.json), [catalogue.json](../catalogue/catalogue.json), and
the runs in [examples.json](examples.json).

## How to ask

A request is one JSON object. Its member `type` names the command, exactly as it is spelled here; a
page sends it as the body of `POST /cgi-bin/zelto-cgi`. Names of other members are compared without
regard to case, unknown members are ignored, and one of another JSON type than the command wants
counts as missing. The reply is one JSON object: `type` again, the members below in their order, and
mostly `result`:

| result | meaning |
|---|---|
| none, or 0 | done; most commands that only read have no `result` when they succeed |
| 1 | failed; also a wrong or missing `type`. Nothing was changed, unless the command says otherwise |
| 2, 3, 5 | as the command says |
| 6 | no such command |
| 7 | the request names no command |
| 9 | alive |

The gateway behind that path answers by itself, with another HTTP status than 200 and
`{"error":"...","message":"..."}`, when it does not let a request through; [openapi.json](openapi.json)
names the cases. `loginauth` begins a session, which a cookie carries; `{"type":"logout"}` ends it,
`{"type":"session"}` tells how old it is.

A text with a line break, or longer than its field holds, is refused with 1 before anything is
stored. A reply never exceeds 16383 bytes; a list that does not fit loses its last entries.

Access is what a front end asks for before it lets a command through:

| access | who | the command |
|---|---|---|
| open | everyone | is needed before a login |
| read | who has logged in | only tells, Wi-Fi keys included |
| change | who may change the router | changes settings |
| danger | who gives the password once more, as `_password` | runs what it is sent, erases or interrupts the router, or shows or sets the administrator's password |

Effects are what a command does besides answering: `uci set` and its like store an option, `wifi`
writes a radio's driver profile, `modem` sends an AT command, `run` is a shell command that is waited
for, `start` one that goes on behind the reply. In the effects of an example a line feed stands as
`\\n`, a backslash as `\\\\`. "Not JSON" is what a handler does with such a text when it is called
directly; through `share_func` no handler sees one.
"""

_LONG = 12  # effects that are shown at once


def _prose(text, known):
    """Text for Markdown: nothing in it is markup, and names of commands are links."""
    text = re.sub(r"([*<>|\[\]`\\])", r"\\\1", text)
    text = re.sub(r"(?<!\w)_|_(?!\w)", r"\\_", text)

    def link(match):
        return f"[{match[1]}](#{_anchor(match[1])})" if match[1] in known else match[0]
    return re.sub(r'"(\w+)"', link, text)


def _anchor(name):
    return name.lower()


def _paragraphs(lines, known):
    """Indented lines are tables and stay as they are; the others are wrapped anew."""
    blocks, words = [], []

    def end_words():
        if words:
            blocks.append(textwrap.fill(_prose(" ".join(words), known), 100))
            words.clear()
    table = []
    for line in [*lines, ""]:
        if line.startswith("  "):
            end_words()
            table.append(line[2:])
            continue
        if table:
            blocks.append("\n".join(["```text", *table, "```"]))
            table = []
        if line:
            words.append(line)
        else:
            end_words()
    return blocks


def _meaning(member, known):
    values = ", ".join(
        f"`{json.dumps(value, ensure_ascii=False)}`"
        + (f" ({_prose(label, known)})" if label else "")
        for value, label in member.values.items())
    before, behind = (_prose(part, known) for part in member.around_values())
    named = ": ".join(part for part in (before, values) if part)
    return "; ".join(part for part in (named, behind) if part) or " "


def _rows(members, known, prefix=""):
    for member in members:
        yield member, f"`{prefix}{member.name}`", _meaning(member, known)
        yield from _rows(member.elements, known, f"{prefix}{member.name}[].")


def _type(member):
    return " or ".join(member.types)


def _request_table(members, known):
    if not members:
        return "**Request**: no members but `type`."
    lines = ["| request | type | needed | meaning |", "|---|---|---|---|"]
    for member, name, meaning in _rows(members, known):
        needed = "yes" if member.required else member.condition or "no"
        lines.append(f"| {name} | {_type(member)} | {needed} | {meaning} |")
    return "\n".join(lines)


def _reply_table(members, known):
    if members[-1].name == "result" and not members[-1].meaning:
        members = members[:-1]  # the table of results follows
    if not members:
        return "**Reply**: no members but `type` and `result`."
    lines = ["| reply | type | meaning |", "|---|---|---|"]
    for member, name, meaning in _rows(members, known):
        lines.append(f"| {name} | {_type(member)} | {meaning} |")
    return "\n".join(lines)


def _results(handler, known):
    lines = ["| result | meaning |", "|---|---|"]
    lines += [f"| {number} | {_prose(meaning, known) or ' '} |"
              for number, meaning in handler.results]
    return "\n".join(lines)


def _code(language, lines):
    return "\n".join([f"```{language}", *lines, "```"])


def _wrapped(line):
    return textwrap.wrap(line, 100, subsequent_indent="    ", break_long_words=False,
                         break_on_hyphens=False)


def _example(run):
    """A request, its reply and what it did."""
    def pretty(text):
        value = json.loads(text)
        short = json.dumps(value, ensure_ascii=False)
        if len(short) <= 100:
            return short
        return json.dumps(value, ensure_ascii=False, indent=2)
    blocks = [_code("json", [pretty(run["request"])]), _code("json", [pretty(run["reply"])])]
    if not run["effects"]:
        return blocks
    journal = _code("text", run["effects"])
    if len(run["effects"]) > _LONG:
        journal = "\n".join(
            [f"<details><summary>{len(run['effects'])} effects</summary>", "", journal, "",
             "</details>"])
    return blocks + [journal]


def _command(handler, known, has_row, recorded):
    names = handler.commands
    blocks = [f'<a id="{_anchor(name)}"></a>' for name in names] if len(names) > 1 else []
    blocks.append(f"#### {', '.join(names)}")
    blocks += [block for part in handler.text for block in _paragraphs(part.split("\n"), known)]
    facts = f"Access: **{handler.access}**. Handler: `{handler.function}`."
    if not has_row:
        facts += " **No row in the command table**: only a program that calls the handler gets it."
    blocks += [facts, _request_table(handler.request, known), _reply_table(handler.reply, known),
               _results(handler, known)]
    if handler.effects == ["none"]:
        blocks.append("Effects: none.")
    else:
        lines = [line for effect in handler.effects for line in _wrapped(effect)]
        blocks += ["Effects:", _code("text", lines)]
    blocks.append(f"Not JSON: {_prose(handler.unparsed, known)}.")
    for name in names:
        effects = ", its reply and its effects:" if recorded[name]["effects"] else " and its reply:"
        blocks += [f"Example of {name}{effects}" if len(names) > 1 else f"Example{effects}",
                   *_example(recorded[name])]
    return blocks


def _contents(handlers, known, rows):
    lines = ["| command | access | what it is for |", "|---|---|---|"]
    for handler in handlers:
        names = ", ".join(f"[{name}](#{_anchor(name)})" for name in handler.commands)
        mark = "" if handler.commands[0] in rows else " (no row)"
        summary = _prose(handler.summary(), {})
        lines.append(f"| {names}{mark} | {handler.access} | {summary} |")
    return "\n".join(lines)


def _title_anchor(title):
    return re.sub(r"[^\w-]", "", title.lower().replace(" ", "-"))


def commands_md(contract, recorded):
    """The whole page."""
    known = contract.handler_of()
    rows = {name for name, _ in contract.rows()}
    parts = [(key, title, [handler for handler in contract.handlers if handler.subsystem == key])
             for key, title in SUBSYSTEMS]
    parts = [part for part in parts if part[2]]
    blocks = [_INTRODUCTION.rstrip("\n"), "## Contents", "\n".join(
        f"- [{title}](#{_title_anchor(title)})" for _, title, _ in parts)]
    for _, title, handlers in parts:
        blocks += [f"**{title}**", _contents(handlers, known, rows)]
    for key, title, handlers in parts:
        blocks.append(f"## {title}")
        blocks += _paragraphs(_without_conventions(contract.introductions[key]), known)
        section = ""
        for handler in handlers:
            if handler.section != section:
                section = handler.section
                blocks.append(f"### {section}")
            blocks += _command(handler, known, handler.commands[0] in rows, recorded)
    return "\n\n".join(blocks) + "\n"


def _without_conventions(lines):
    """A header's introduction without the sentence that points to the conventions."""
    text = "\n".join(lines)
    pointer = r"\s*The\s+conventions\s+of\s+zeltoapi\.h\s+hold(?:;[^.]*)?\."
    return re.sub(pointer, "", text).split("\n")
