#!/bin/sh
# chpasswd.sh NAME PASSWORD: sets the password of a system account.
echo "chpasswd.sh $1" >> /var/log/firmware.log
printf '%s:%s\n' "$1" "$2" | chpasswd
