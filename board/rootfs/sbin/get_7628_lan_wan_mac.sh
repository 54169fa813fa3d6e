#!/bin/sh
# get_7628_lan_wan_mac.sh lan|wan: prints the factory address of a side of the router.
case $1 in
  lan) interface=br-lan ;;
  wan) interface=eth0.2 ;;
  *) exit 1 ;;
esac
ifconfig "$interface" | awk '/HWaddr/ { print $5 }'
