"""What other programs on the router know of the commands: the RPC daemon and bash."""

import json

# The daemon's groups of rights, one an access class but for the open one, which asks for no login.
_GROUPS = {
    "read": ("zelto-read", "Look at the router's settings and state"),
    "change": ("zelto-change", "Change the router's settings"),
    "danger": ("zelto-danger", "Run commands, restart, reset, upgrade; see and set passwords"),
}


def rpcd_acl(contract):
    """Methods of the daemon's object `zelto` by group."""
    methods = {}
    for name, handler in contract.rows():
        methods.setdefault(handler.access, []).append(name)
    groups = {"unauthenticated": {
        "description": "What a login page needs",
        "read": {"ubus": {"zelto": methods["open"]}}}}
    for access, (group, description) in _GROUPS.items():
        right = "read" if access == "read" else "write"
        groups[group] = {
            "description": description, right: {"ubus": {"zelto": methods[access]}}}
    return json.dumps(groups, indent=2) + "\n"


_COMPLETION = """\
# Completion of zelto's commands and of their members. Written by script/docs.

_zelto() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} type=${{COMP_WORDS[1]}}
  local -A members=(
{members}
  )
  COMPREPLY=()
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '--pretty --raw --help --version' -- "$current")
  elif ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W "${{!members[*]}} list rpcd" -- "$current")
  elif [[ $type == rpcd ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$( ((COMP_CWORD == 2)) && echo 'list call' ||
      echo "${{!members[*]}}")" -- "$current")
  elif [[ -n ${{members[$type]-}} && $current != *=* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${{members[$type]}}" -- "$current")
    compopt -o nospace
  fi
}}
complete -F _zelto zelto
"""


def bash_completion(contract):
    """A member that is no text takes := on the command line."""
    def word(member):
        return member.name + ("=" if "string" in member.types else ":=")

    members = "\n".join(
        f"    [{name}]='{' '.join(word(member) for member in handler.request)}'"
        for name, handler in contract.rows())
    return _COMPLETION.format(members=members)
