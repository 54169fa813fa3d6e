#!/bin/sh
# The launcher as a user meets it: launcher_test.sh DIRECTORY_OF_PROGRAMS
set -eu
programs=$1
# A copy of its own keeps clear of a router that a developer has up.
place=$(mktemp -d)
up=
# shellcheck disable=SC2329 # called by the trap
clean() {
  [ -z "$up" ] || kill "$up" 2> /dev/null || true
  rm -rf "$place"
}
trap clean EXIT
mkdir "$place/bin"
cp "$programs/zelto-board" "$place/bin/"

board() { "$place/bin/zelto-board" --programs-dir "$programs" "$@"; }

expect() {
  if [ "$2" != "$3" ]; then
    printf '%s\nexpected:\n%s\ngot:\n%s\n' "$1" "$2" "$3" >&2
    exit 1
  fi
}

# The exit status of a command, whose output goes to "$place/output".
status_of() {
  if "$@" > "$place/output" 2>&1; then echo 0; else echo $?; fi
}

lan='{"type":"getlancfg"}'
refused='{"type":"setlancfg","lanip":"100.64.10.9","landhcp":"on","lanmsk":"255.255.255.0"}'
change='{"type":"setlancfg","lanip":"192.168.77.1","landhcp":"on","lanmsk":"255.255.0.0"}'
changed_reply='{"type":"setlancfg","result":0}
effects, in order:
  uci   set network.lan.ipaddr=192.168.77.1
  uci   set system.route.lan_ipaddr=192.168.77.1
  uci   set dhcp.lan.ignore=0
  uci   set network.lan.netmask=255.255.0.0
  uci   set system.route.lan_netmask=255.255.0.0
  uci   set dhcp.lan.netmask=255.255.0.0
  start /etc/init.d/dnsmasq restart;/etc/init.d/network set_lan_quick;lua /sbin/svctl.lua set_iptv_portmap;/sbin/reset_lan_port.sh;/sbin/wifi_setup.sh wifi_restart all;/etc/init.d/terminal_list restart &'

expect 'replies with effects' "$changed_reply
"'{"type":"setlancfg","result":2}
effects, in order:
  (none)' "$(board "$change" "$refused" || true)"
expect 'first failing status' 1 "$(status_of board "$refused" "$change")"
expect 'requests from standard input' 2 "$(printf '%s\n\n%s\n' "$lan" "$lan" | board - | grep -c '"lanip"')"
# shellcheck disable=SC2016 # for the shell on the router
expect 'a shell on the router' '192.168.10.1 online 192.168.10.9/32' \
  "$(echo 'uci set network.lan.ipaddr=192.168.10.9; uci set network.lan.netmask=255.255.255.255
    echo 192.168.10.1 $(cat /tmp/online_file) $(/etc/init.d/network set_lan_quick; ip -o -4 addr show br-lan | awk "{print \$4}")' | board --shell)"
# shellcheck disable=SC2016
expect 'a static uplink' '10.9.8.7/24 10.9.8.1' \
  "$(echo 'uci set network.wan.proto=static; uci set network.wan.ipaddr=10.9.8.7
    uci set network.wan.netmask=255.255.255.0; uci set network.wan.gateway=10.9.8.1
    /etc/init.d/network set_wan_quick
    echo $(ip -o -4 addr show eth0.2 | awk "{print \$4}") $(route -n | awk "/^0.0.0.0/ {print \$2}")' | board --shell)"
expect 'no programs' 1 "$(status_of "$place/bin/zelto-board" "$lan")"

# shellcheck disable=SC2016
expect 'settings' 'mobilenetmode sda1 5' \
  "$(echo 'echo "$(uci get system.route.operationmode) $(ls /mnt) $(cat /tmp/mob_type)"' |
    board --mode mobilenetmode --usb 1 --modem sa --shell)"
for words in '--mode bridge' '--usb 3' '--modem 3g' '--port -1' '--port' '--shell {}'; do
  # shellcheck disable=SC2086 # several words
  expect "bad usage $words" 2 "$(status_of board $words)"
done
expect 'no page' 1 "$(status_of board --web-dir "$place")"

# start_router ARGUMENT...: one that stays up, until end_router.
start_router() {
  : > "$place/up"  # what an earlier one said is not this one's
  "$place/bin/zelto-board" --programs-dir "$programs" "$@" > "$place/up" 2>&1 &
  up=$!
  tries=100
  until grep -q 'Ctrl-C' "$place/up" || [ $tries = 0 ]; do
    sleep 0.1
    tries=$((tries - 1))
  done
}

end_router() {
  kill "-$1" "$up"
  if wait "$up"; then ended=0; else ended=$?; fi
  up=
  expect 'an orderly end' 0 "$ended"
  expect 'nothing left behind' 'bin output up' \
    "$(find "$place" -mindepth 1 -maxdepth 1 -printf '%f\n' | sort | grep -v www | xargs)"
}

start_router --up
expect 'no page with --up' 0 "$(grep -c http "$place/up")"
expect 'one router at a time' 1 "$(status_of board --up)"
expect 'settings come too late' 1 "$(status_of board --mode AP "$lan")"
expect 'a request to the router that is up' "$changed_reply" "$(board "$change")"
expect 'its shell' '192.168.77.1/16' \
  "$(echo 'ip -o -4 addr show br-lan | grep -o "192[^ ]*/16"' | board --shell)"
end_router TERM

mkdir "$place/www"
head -c 3000000 /dev/urandom > "$place/www/index.html"
start_router --port 0 --web-dir "$place/www"
page=$(grep -o 'http://.*' "$place/up")
get() { busybox wget -q -O - "$@"; }
ask_page() {
  get --header "Origin: $page" --header 'Content-Type: application/json' --post-data "$1" \
    "$page/cgi-bin/zelto-cgi"
}
mounts=$(cat /proc/self/mounts)
get "$page/" > "$place/output" && cmp "$place/output" "$place/www/index.html"
for i in 1 2 3 4 5 6 7 8 9 10; do
  get "$page/" | cmp - "$place/www/index.html" &
  readers="${readers:-} $!"
done
# shellcheck disable=SC2086 # several numbers
for reader in $readers; do wait "$reader" || expect "reader $i" 0 1; done
printf 'GET / HTTP/1.0\r\n\r\n' | busybox nc 127.0.0.1 "${page##*:}" |
  { sleep 0.5; tail -c 3000000 | cmp - "$place/www/index.html"; } ||
  expect 'a slow reader that says nothing more' 0 1
expect 'the catalogue' 1 "$(get "$page/catalogue.json" | grep -c getlancfg | head -c 1)"
expect 'the gateway' '{"type":"getheartbeat","result":9}' "$(ask_page '{"type":"getheartbeat"}')"
expect 'another program on the port' 1 "$(status_of "$programs/zelto-board" --port "${page##*:}")"
board "$change" > "$place/output"
expect 'the page after a change of address' '{"type":"getheartbeat","result":9}' \
  "$(ask_page '{"type":"getheartbeat"}')"
expect 'effects on the page' 'uci set dhcp.lan.netmask=255.255.0.0' \
  "$(get "$page/cgi-bin/journal?since=5" | head -n 1)"
for query in 'since=7' 'since=1x' 'since=' '' 'since=99999999999'; do
  expect "no effects for $query" '' "$(get "$page/cgi-bin/journal?$query")"
done
expect 'no effects for a page of another name' 1 \
  "$(status_of get --header 'Host: 1.example:80' "$page/cgi-bin/journal?since=0")"
expect 'the journal begun anew' 7 "$(get "$page/cgi-bin/journal?since=900" | wc -l)"
expect 'where to go on' 7 "$(busybox wget -S -O - "$page/cgi-bin/journal" 2>&1 | sed -n 's/.*X-Journal-Next: //p')"
expect 'effects on the terminal' 7 "$(grep -c '^  [us]' "$place/up")"
expect 'devices in the new network' 1 "$(sleep 2; board '{"type":"getterminallist"}' | grep -c '"ip":"192.168.77.100"')"
end_router INT
expect 'the port is free' 1 "$(status_of get "$page/")"
expect 'no mount' "$mounts" "$(cat /proc/self/mounts)"
# A file that names a process which is none of ours.
echo "$$ 1" > "$place/router.pid"
expect 'a new router' 1 "$(board "$lan" | grep -c 192.168.10.1)"
