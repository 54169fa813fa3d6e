#!/bin/sh
# wifi_connect.sh apcli0|apclii0: joins the network that the client's driver profile names, when it
# is on the air. /var/board/joined-INTERFACE then holds its name; in mode wisp, where the client is
# the WAN, it gets an address from there.
echo "wifi_connect.sh $*" >> /var/log/firmware.log

case $1 in
  apcli0) profile=/etc/wireless/mt7628/mt7628.dat headings=2 column=5 network=100.64.20 ;;
  apclii0) profile=/etc/wireless/mt7663/mt7663.dat headings=3 column=9 network=100.64.30 ;;
  *)
    echo "usage: wifi_connect.sh apcli0|apclii0" >&2
    exit 1
    ;;
esac

# Whether NAME of the environment stands in the survey's column of names.
is_on_air() {
  awk -v headings="$headings" -v column="$column" '
    NR > headings {
      name = substr($0, column, 33)
      sub(/ +$/, "", name)
      if (name != "" && name == ENVIRON["NAME"]) found = 1
    }
    END { exit !found }' "/var/board/survey-$1"
}

NAME=$(sed -n '/^ApCliSsid=/ { s/^[^=]*=//p; q }' "$profile")
export NAME
rm -f "/var/board/joined-$1"
ifconfig "$1" 0.0.0.0
is_on_air "$1" || exit 1
printf '%s\n' "$NAME" > "/var/board/joined-$1"
[ "$(uci get system.route.operationmode)" = wisp ] || exit 0
ifconfig "$1" "$network.2" netmask 255.255.255.0 up
route add default gw "$network.1" dev "$1"
