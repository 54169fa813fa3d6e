"""Runs of the headers' examples on the virtual router, and their record in docs/examples.json."""

import json
import re
import subprocess

from generator.comments import FormError

_VARYING = r'(?:"(?:[^"\\]|\\.)*"|-?\d+)'
# What a journal holds that differs from run to run: names of new sections, and login tokens.
_GENERATED = re.compile(r"cfg[0-9a-f]{6}|(?<=^run echo )[0-9a-f]{32}(?= >> /tmp/token$)")


def requests(contract):
    """The example of each command, first those of the table: (command, handler)."""
    rows = contract.rows()
    named = {name for name, _ in rows}
    return rows + [
        (name, handler) for name, handler in contract.handler_of().items() if name not in named]


def run(program, contract):
    """Runs all examples; the live commands of the library's table, and the runs by command."""
    wanted = requests(contract)
    lines = "".join(
        f"{name}\t{handler.function}\t{handler.request_of(name)}\n" for name, handler in wanted)
    told = subprocess.run(
        [program], input=lines, capture_output=True, text=True, check=True).stdout.splitlines()
    live = [line.removeprefix("row ") for line in told if line.startswith("row ")]
    blocks = "\n".join(told[len(live):]).strip("\n").split("\n\n")
    if len(blocks) != len(wanted):
        raise FormError(f"{program} tells {len(blocks)} runs of {len(wanted)}")
    runs = {}
    for (name, handler), block in zip(wanted, blocks):
        reply, *effects = block.split("\n")
        runs[name] = {"request": handler.request_of(name), "reply": reply, "effects": effects}
    return live, runs


def holds(handler, command, reply):
    """Whether a reply is the one that the comment shows, but for what it says varies."""
    parts = handler.reply_of(command).split("*")
    return re.fullmatch(_VARYING.join(re.escape(part) for part in parts), reply) is not None


def same_effects(one, other):
    """Whether two journals tell the same: a started command is noted when its shell begins, so its
    place among the others says nothing."""
    def comparable(effects):
        effects = [_GENERATED.sub("*", line) for line in effects]
        started = [line for line in effects if line.startswith("start ")]
        return [line for line in effects if not line.startswith("start ")], sorted(started)
    return comparable(one) == comparable(other)


def difference(handler, command, fresh, recorded):
    """What a run shows that headers or record do not; empty when they agree."""
    if not holds(handler, command, fresh["reply"]):
        return (f"{command}: {fresh['request']}\n  gives  {fresh['reply']}\n"
                f"  not    {handler.reply_of(command)}")
    if recorded is None or recorded["request"] != fresh["request"]:
        return f"{command}: the example is not recorded"
    if not same_effects(fresh["effects"], recorded["effects"]):
        return "\n  ".join([f"{command}: other effects than recorded:", *fresh["effects"]])
    return ""


def load(path):
    """The record, empty when there is none."""
    return json.loads(path.read_text(encoding="utf-8")) if path.exists() else {}


def renewed(contract, fresh, recorded):
    """The record with the runs that differ from it; values that vary stay as they were."""
    record = {}
    for name, handler in requests(contract):
        old = recorded.get(name)
        if not holds(handler, name, fresh[name]["reply"]):
            raise FormError(difference(handler, name, fresh[name], old))
        keep = (old and holds(handler, name, old["reply"])
                and not difference(handler, name, fresh[name], old))
        record[name] = old if keep else fresh[name]
    return record


def check(contract, recorded):
    """Fails when the record is not of the examples as the headers have them now."""
    for name, handler in requests(contract):
        kept = recorded.get(name, {"request": "", "reply": ""})
        if kept["request"] != handler.request_of(name) or not holds(handler, name, kept["reply"]):
            raise FormError(f"{name}: the recorded run is not of its example")


def to_json(record):
    """The record as a file."""
    return json.dumps(record, ensure_ascii=False, indent=1) + "\n"
