"""The catalogue for programs: catalogue/catalogue.json and the C++ data of catalogue/data.inc."""

import json


def _entry(member):
    """A member as JSON; what is not said is left out."""
    entry = {"name": member.name, "type": "|".join(member.types)}
    if member.required:
        entry["required"] = True
    if member.condition:
        entry["required_when"] = member.condition
    if member.values:
        entry["values"] = [
            {"value": value} | ({"label": label} if label else {})
            for value, label in member.values.items()]
    if member.longest is not None:
        entry["max_length"] = member.longest
    description = "; ".join(part for part in member.around_values() if part)
    if description:
        entry["description"] = description
    if member.elements:
        entry["elements"] = [_entry(element) for element in member.elements]
    return entry


def catalogue_json(contract):
    """One line a command, in the order of the table."""
    lines = []
    for name, handler in contract.rows():
        command = {
            "name": name,
            "subsystem": handler.subsystem,
            "summary": handler.summary(),
            "access": handler.access,
            "request": [_entry(member) for member in handler.request],
            "reply": [_entry(member) for member in handler.reply],
            "results": {number: meaning for number, meaning in _results(handler)},
            "example": json.loads(handler.request_of(name)),
        }
        lines.append(json.dumps(command, ensure_ascii=False, separators=(",", ":")))
    return '{"commands":[\n' + ",\n".join(lines) + "\n]}\n"


def _results(handler):
    """Meanings by number: a number may have several lines."""
    meanings = {}
    for number, meaning in handler.results:
        if number != "none":
            meanings.setdefault(number, []).append(meaning)
    return sorted((number, "; ".join(texts)) for number, texts in meanings.items())


def _constant(function):
    words = function.removeprefix("bs_").split("_")
    return "k" + "".join(word[:1].upper() + word[1:] for word in words) + "Members"


def data_inc(contract):
    """Constant tables; commands that share a handler share its members."""
    members, commands, done = [], [], set()
    for name, handler in contract.rows():
        table = _constant(handler.function) if handler.request else ""
        if table and table not in done:
            done.add(table)
            members.append(f"constexpr Member {table}[] = {{")
            members += [
                f'    {{"{member.name}", "{"|".join(member.types)}", '
                f'{"true" if member.required else "false"}}},' for member in handler.request]
            members.append("};")
        access = f"Access::k{handler.access.capitalize()}"
        commands.append(f'    {{"{name}", {access}, {table or "{}"}}},')
    return "\n".join(
        ["// Written by script/docs from the comments of the public headers.", "", *members, "",
         "constexpr Command kCommands[] = {", *commands, "};", ""])
