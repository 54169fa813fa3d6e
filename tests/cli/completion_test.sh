#!/bin/bash
# The shell completes commands and their members, and offers nothing that runs.
# Usage: completion_test.sh COMPLETION_FILE
set -euo pipefail

# shellcheck source=/dev/null
source "$1"
compopt() { :; }  # only the shell's own completion may call it

# complete_words WORD...: what is offered for the last word.
complete_words() {
  COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
  _zelto
  echo "${COMPREPLY[*]}"
}

# expect OFFERED WORD...
expect() {
  local offered
  offered=$(complete_words "${@:2}")
  [[ $offered == "$1" ]] || { echo "${*:2}: '$offered', not '$1'"; exit 1; }
}

expect 'setlancfg' zelto setlan
expect 'lanip= landhcp= lanmsk=' zelto setlancfg lan
expect 'enable:=' zelto set_upnp_info ''
expect 'list call' zelto rpcd ''
expect 'getlanguage' zelto rpcd call getlang
expect '--pretty' zelto getlanguage --pr
expect '' zelto nosuch ''
expect '' zelto setlancfg lanip=19
