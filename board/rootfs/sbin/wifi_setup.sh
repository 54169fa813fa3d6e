#!/bin/sh
# Lets the radios load their driver profiles: wifi_setup.sh COMMAND [2.4G|5.8G|all]. What is on the
# air then stands in /var/board/radio-INTERFACE: state, channel and name, a line each.
echo "wifi_setup.sh $*" >> /var/log/firmware.log

# key PROFILE NAME: the value of a key, nothing when it is absent.
key() {
  sed -n "/^$2=/ { s/^[^=]*=//p; q }" "$1"
}

# element PROFILE NAME N: what a key holds for the N-th network, from 1.
element() {
  key "$1" "$2" | cut -d ';' -f "$3"
}

# on_air INTERFACE STATE CHANNEL NAME
on_air() {
  printf '%s\n' "$2" "$3" "$4" > "/var/board/radio-$1"
}

# reload PROFILE INTERFACE GUEST CHANNEL: the last is what the radio chooses where it may.
reload() {
  [ -f "$1" ] || return 0
  channel=$(key "$1" Channel)
  [ "${channel:-0}" != 0 ] || channel=$4
  main=down
  [ "$(element "$1" WIFIEnable 1)" != 1 ] || main=up
  guest=down
  [ "$main" = down ] || [ "$(element "$1" WIFIEnable 2)" != 1 ] || guest=up
  on_air "$2" "$main" "$channel" "$(key "$1" SSID1)"
  on_air "$3" "$guest" "$channel" "$(key "$1" SSID2)"
  ifconfig "$2" "$main"
}

case $2 in
  2.4G | all) reload /etc/wireless/mt7628/mt7628.dat ra0 ra1 6 ;;
esac
case $2 in
  5.8G | all) reload /etc/wireless/mt7663/mt7663.dat rai0 rai1 36 ;;
esac
