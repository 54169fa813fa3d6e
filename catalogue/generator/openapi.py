"""docs/openapi.json: the commands as OpenAPI 3.1, one schema for each request and reply."""

import json

from generator.comments import SUBSYSTEMS

_PATH = "/cgi-bin/zelto-cgi"

_DESCRIPTION = (
    "One path takes every command: the request's \"type\" names it, the reply's \"type\" repeats "
    "it. A reply without \"result\", or with 0, tells of success. Generated from the comments of "
    "the public headers; docs/commands.md tells more, with the effects of each command."
)

# What the gateway answers by itself, in the place of a command: status and meaning.
_REFUSALS = {
    400: "The request is not JSON, or not whole.",
    401: "There is no session: log in.",
    403: "The request comes from a foreign page, the password that the command needs is missing or "
         "wrong, the command is switched off, or the router has no account.",
    404: "There is no such command.",
    405: "Requests are sent by POST.",
    413: "The request is longer than 64 KiB.",
    429: "Too many wrong passwords: wait as Retry-After says.",
    500: "The command gave no reply.",
}

_CONFIRMATION = {
    "type": "string", "format": "password", "writeOnly": True,
    "description": "The administrator's password once more; the gateway checks it and takes it out.",
}

# The gateway's own commands, about the session.
_OWN = {
    "logoutRequest": {"properties": {"type": {"const": "logout"}}},
    "logoutReply": {"properties": {"type": {"const": "logout"}, "result": {"const": 0}}},
    "sessionRequest": {"properties": {"type": {"const": "session"}}},
    "sessionReply": {"properties": {
        "type": {"const": "session"}, "result": {"const": 0},
        "idle_seconds": {"type": "integer"}, "idle_limit": {"type": "integer"},
        "age_seconds": {"type": "integer"}, "age_limit": {"type": "integer"}}},
}


def _value(member):
    """The schema of a member's value."""
    types = member.types
    schema = {"type": types[0] if len(types) == 1 else types}
    description = member.meaning
    if member.condition:
        description = f"Required {member.condition}. {description}".strip()
    if description:
        schema["description"] = description
    if member.values:
        schema["enum"] = list(member.values)
        if {"string", "number"} <= set(types):
            schema["enum"] += [json.loads(value) for value in member.values]
    if member.longest is not None:
        schema["maxLength"] = member.longest
    if member.elements:
        schema["items"] = {
            "type": "object",
            "properties": {element.name: _value(element) for element in member.elements},
            "additionalProperties": False,
        }
        required = [element.name for element in member.elements if element.required]
        if required:
            schema["items"]["required"] = required
    return schema


def request_schema(name, handler):
    """The schema of a command's request. Members that nobody knows are ignored."""
    properties = {"type": {"const": name}}
    properties |= {member.name: _value(member) for member in handler.request}
    if handler.access == "danger":
        properties["_password"] = _CONFIRMATION
    return {
        "type": "object",
        "description": handler.summary(),
        "x-zelto-access": handler.access,
        "properties": properties,
        "required": ["type"] + [member.name for member in handler.request if member.required],
        "examples": [json.loads(handler.request_of(name))],
    }


def reply_schema(name, handler, recorded):
    """The schema of a command's reply: every member that may be there."""
    properties = {"type": {"const": name}}
    properties |= {member.name: _value(member) for member in handler.reply}
    numbers = sorted({int(number) for number, _ in handler.results if number != "none"})
    if numbers:
        meanings = [f"{number}: {meaning}" for number, meaning in handler.results
                    if number != "none"]
        properties["result"] = {
            "type": "integer", "enum": numbers, "description": ". ".join(meanings)}
    always = all(number != "none" for number, _ in handler.results)
    return {
        "type": "object",
        "properties": properties,
        "required": ["type", "result"] if always else ["type"],
        "additionalProperties": False,
        "examples": [json.loads(recorded[name]["reply"])],
    }


def _choice(names, suffix):
    reference = "#/components/schemas/{}" + suffix
    return {
        "oneOf": [{"$ref": reference.format(name)} for name in names],
        "discriminator": {
            "propertyName": "type",
            "mapping": {name: reference.format(name) for name in names},
        },
    }


def document(contract, recorded, version):
    """The whole document."""
    schemas, by_subsystem = {}, {title: [] for _, title in SUBSYSTEMS}
    titles = dict(SUBSYSTEMS)
    for name, handler in contract.rows():
        schemas[f"{name}Request"] = request_schema(name, handler)
        schemas[f"{name}Reply"] = reply_schema(name, handler, recorded)
        by_subsystem[titles[handler.subsystem]].append(name)
    for name, schema in _OWN.items():
        schemas[name] = {"type": "object", **schema, "required": list(schema["properties"])}
    names = [name for name, _ in contract.rows()] + ["logout", "session"]
    schemas["Refusal"] = {
        "type": "object",
        "properties": {
            "error": {"type": "string", "description": "a word for programs"},
            "message": {"type": "string", "description": "a sentence for people"}},
        "required": ["error", "message"],
    }
    refusal = {"application/json": {"schema": {"$ref": "#/components/schemas/Refusal"}}}
    return {
        "openapi": "3.1.0",
        "info": {
            "title": "zeltoapi", "version": version, "description": _DESCRIPTION,
            "license": {"name": "MIT", "identifier": "MIT"},
        },
        "paths": {_PATH: {"post": {
            "operationId": "command",
            "summary": "Runs one command",
            "requestBody": {"required": True, "content": {
                "application/json": {"schema": _choice(names, "Request")}}},
            "responses": {"200": {
                "description": "The command's reply; a login's sets the session's cookie",
                "content": {"application/json": {"schema": _choice(names, "Reply")}}}} | {
                    str(status): {"description": meaning, "content": refusal}
                    for status, meaning in _REFUSALS.items()},
        }}},
        "security": [{"cookie": []}, {"bearer": []}, {}],
        "components": {
            "securitySchemes": {
                "cookie": {"type": "apiKey", "in": "cookie", "name": "zelto_session"},
                "bearer": {"type": "http", "scheme": "bearer"},
            },
            "schemas": schemas,
        },
        "x-zelto-subsystems": by_subsystem,
    }


def to_json(contract, recorded, version):
    """The document as a file."""
    return json.dumps(document(contract, recorded, version), ensure_ascii=False, indent=1) + "\n"
