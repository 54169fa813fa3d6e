"""Reads the regular comments of the public headers: one Handler a command function.

CONTRIBUTING.md and include/zelto/zeltoapi.h tell the form. What does not keep to it is an error
with the place where it stands, so that nothing is left out in silence.
"""

import dataclasses
import json
import re
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent

# The subsystems in the order of the documentation: header and title.
SUBSYSTEMS = (
    ("system", "Login and system"),
    ("network", "Internet and LAN"),
    ("wireless", "Wi-Fi"),
    ("access", "Devices and access control"),
    ("mobile", "Mobile broadband"),
    ("storage", "USB storage"),
    ("services", "Network services"),
)
# The front door documents its one command among those of the system.
HEADERS = {"zeltoapi": "system"} | {name: name for name, _ in SUBSYSTEMS}

ACCESS = ("open", "read", "change", "danger")
TYPES = {"string", "number", "array", "object", "boolean"}


class FormError(Exception):
    """A comment that is not in the regular form; the text names the place."""


@dataclasses.dataclass
class Member:
    """A member of a request or a reply; `elements` are those of an array's objects."""

    name: str
    types: list[str]
    required: bool = False
    condition: str = ""  # when a member is required that is not always
    meaning: str = ""
    values: dict = dataclasses.field(default_factory=dict)  # allowed value: label, or empty
    longest: int | None = None  # characters that a text may have
    elements: list["Member"] = dataclasses.field(default_factory=list)

    def around_values(self):
        """What the meaning says before and behind the values that `values` has."""
        found = _VALUES.search(self.meaning) if self.values else None
        if found is None:
            return self.meaning, ""
        before, behind = self.meaning[:found.start()], self.meaning[found.end():]
        return before.rstrip(", "), behind.lstrip(";. ")


@dataclasses.dataclass
class Handler:
    """An exported command function, and the commands that reach it."""

    function: str
    subsystem: str
    section: str
    commands: list[str] = dataclasses.field(default_factory=list)
    access: str = ""
    text: list[str] = dataclasses.field(default_factory=list)  # the comment above the @-lines
    request: list[Member] = dataclasses.field(default_factory=list)
    reply: list[Member] = dataclasses.field(default_factory=list)
    results: list[tuple[str, str]] = dataclasses.field(default_factory=list)  # number or "none"
    unparsed: str = ""
    effects: list[str] = dataclasses.field(default_factory=list)
    example_request: str = ""
    example_reply: str = ""

    def request_of(self, command):
        """The example's request, for any of the commands that share the handler."""
        return _with_type(self.example_request, command)

    def reply_of(self, command):
        """The example's reply, with a * for each value that varies."""
        return _with_type(self.example_reply, command)

    def summary(self):
        """The first sentence, as one line: up to a full stop, colon or semicolon."""
        text = " ".join(self.text[0].split())
        end = re.search(r"[.:;](?= |$)", re.sub(r"\([^)]*\)", lambda note: "x" * len(note[0]), text))
        return text[:end.start()] + "." if end else text + "."


def _with_type(example, command):
    return re.sub(r'(\{"type":)"\w+"', rf'\1"{command}"', example, count=1)


# "one of: a, b (label), c" up to a semicolon, a full stop before a blank, or the end. Texts may
# stand in quotes; a member that is text or number has its values as texts.
_VALUES = re.compile(r"\bone of: (.+?)(?=;|\.(?: |$)|$)")
_VALUE = re.compile(r'"([^"]*)"(?: \(([^)]*)\))?|([^\s,"]+)(?: \(([^)]*)\))?')
_LONGEST = re.compile(r"at most (\d+) (?:printable )?(?:characters|bytes)")


def allowed_values(meaning, types):
    """The values that "one of: ..." gives, each with its label or an empty text."""
    found = _VALUES.search(meaning)
    values = {}
    for match in _VALUE.finditer(found[1]) if found else ():
        text = match[1] if match[1] is not None else match[3]
        values[text if "string" in types else json.loads(text)] = match[2] or match[4] or ""
    return values


def _member(text, is_request):
    head, _, meaning = text.partition("  ")
    name, kind, *rest = head.split(" ")
    types = kind.split("|")
    if not set(types) <= TYPES:
        raise FormError(f"no such type: {kind}")
    member = Member(name, types, meaning=" ".join(meaning.split()))
    if is_request:
        if not rest or rest[0] not in ("required", "optional"):
            raise FormError(f"neither required nor optional: {head}")
        member.condition = " ".join(rest[1:])
        member.required = rest[0] == "required" and not member.condition
    elif rest:
        raise FormError(f"two blanks are missing before the meaning: {head}")
    member.values = allowed_values(member.meaning, types)
    longest = _LONGEST.search(member.meaning)
    member.longest = int(longest[1]) if longest and "string" in types else None
    return member


def _add_member(members, member):
    """Adds a member, or one of an array's objects: "list[].mac" belongs to "list"."""
    array, is_element, member.name = ("", "", member.name) if "[]." not in member.name else (
        member.name.partition("[]."))
    if not is_element:
        members.append(member)
        return
    owner = next((known for known in members if known.name == array), None)
    if owner is None:
        raise FormError(f"element of an array that is not there: {array}")
    _add_member(owner.elements, member)


def _facts(lines):
    """Splits a comment into the text and its @-lines, each as (word, text) on one line."""
    text, facts = [], []
    for line in lines:
        fact = re.match(r"@(\w+) *(.*)", line)
        if fact:
            facts.append([fact[1], fact[2]])
        elif facts:
            # An example may be broken anywhere between two members; elsewhere words go on.
            separator = "" if facts[-1][0] == "example" else " "
            facts[-1][1] += separator + line.strip()
        else:
            text.append(line)
    return "\n".join(text).strip("\n"), facts


def _add_fact(handler, word, text):
    match word:
        case "command":
            handler.commands.append(text)
        case "access":
            if text not in ACCESS:
                raise FormError(f"no such access: {text}")
            handler.access = text
        case "request":
            _add_member(handler.request, _member(text, True))
        case "reply":
            _add_member(handler.reply, _member(text, False))
        case "result":
            number, _, meaning = text.partition(" ")
            if number != "none" and not number.isdigit():
                raise FormError(f"no result number: {text}")
            handler.results.append((number, meaning.strip()))
        case "unparsed":
            handler.unparsed = text
        case "effects":
            # "/*" would look like a comment within the comment.
            handler.effects.append(text.replace("/\\*", "/*"))
        case "example":
            request, arrow, reply = text.partition("=>")
            if not arrow:
                raise FormError("an example without =>")
            handler.example_request, handler.example_reply = request.strip(), reply.strip()
            json.loads(handler.example_request)
        case _:
            raise FormError(f"no such line: @{word}")


def _handler(comment, function, subsystem, section):
    text, facts = _facts(comment)
    handler = Handler(function, subsystem, section, text=text.split("\n\n"))
    for word, rest in facts:
        _add_fact(handler, word, rest)
    for name in ("access", "reply", "results", "unparsed", "effects", "example_request"):
        if not getattr(handler, name):
            raise FormError(f"nothing says: {name}")
    if not handler.text[0]:
        raise FormError("nothing says what it is for")
    return handler


_TOKEN = re.compile(
    r"/\* -+ (?P<section>.+?) -+ \*/"
    r"|/\*\*(?P<comment>(?:[^*]|\*(?!/))*)\*/\s*(?:ZELTO_API int (?P<function>\w+)\(const char\* "
    r"request, char\* out\);)?")


def _lines(comment):
    return [re.sub(r"^ ?\* ?", "", line).rstrip() for line in comment.strip().splitlines()]


def read_header(path, subsystem):
    """The introduction of a header, and its handlers in order."""
    section, introduction, handlers = "", [], []
    source = path.read_text(encoding="utf-8")
    for token in _TOKEN.finditer(source):
        if token["section"]:
            section = token["section"]
            continue
        lines = _lines(token["comment"])
        if lines and lines[0].startswith("@file"):
            introduction = lines[1:]
        elif token["function"] and any(line.startswith("@command") for line in lines):
            try:
                handlers.append(_handler(lines, token["function"], subsystem, section))
            except (FormError, ValueError) as error:
                line = source.count("\n", 0, token.start()) + 1
                raise FormError(f"{path.relative_to(ROOT)}:{line}: {error}") from error
    documented = sum(len(handler.commands) for handler in handlers)
    written = len(re.findall(r"^ \* @command ", source, re.M))
    if documented != written:
        raise FormError(f"{path.relative_to(ROOT)}: {written} @command lines, {documented} read")
    return introduction, handlers


@dataclasses.dataclass
class Contract:
    """All that the headers say about commands."""

    introductions: dict[str, list[str]]  # lines, by subsystem
    handlers: list[Handler]
    table: list[str]  # commands in the order of the table

    def handler_of(self):
        """The handler of each documented command."""
        return {name: handler for handler in self.handlers for name in handler.commands}

    def rows(self):
        """The documented commands of the table with their handlers, in its order."""
        known = self.handler_of()
        return [(name, known[name]) for name in self.table if name in known]


def read_contract():
    """Reads the headers and the command table."""
    introductions, handlers = {}, []
    for header, subsystem in HEADERS.items():
        path = ROOT / "include" / "zelto" / f"{header}.h"
        if not path.exists():
            continue
        introduction, found = read_header(path, subsystem)
        if header == subsystem:
            introductions[subsystem] = introduction
        handlers += found
    table = (ROOT / "src" / "api" / "table.cpp").read_text(encoding="utf-8")
    rows = re.findall(r'^    \{"(\w+)", (\w+)\},$', table, re.M)
    contract = Contract(introductions, handlers, [name for name, _ in rows])
    known = contract.handler_of()
    for name, function in rows:
        if function != "nullptr" and (name not in known or known[name].function != function):
            raise FormError(f"{name}: no comment of {function} says that it serves it")
    return contract
