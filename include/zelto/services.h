/**
 * @file services.h
 * Services for the devices in the LAN. The conventions of zeltoapi.h hold; its @-lines are
 * explained there.
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The speed limits of devices. They are those of /etc/qos_limit_list.
 *
 * @command  getqos
 * @access   read
 * @request  MAC string required  a device, compared exactly, or "ALL"
 * @reply    list array  for "ALL": the limits in the order of the file
 * @reply    list[].MAC string
 * @reply    list[].Up_Speed string
 * @reply    list[].Dl_Speed string
 * @reply    MAC string  for a device: the device
 * @reply    Up_Speed string  for a device that has a limit: upload, in the unit of web pages
 * @reply    Dl_Speed string  likewise: download
 * @result   none on success
 * @result   1 wrong or missing "type", no "MAC", or the list cannot be opened (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getqos","MAC":"ALL"} => {"type":"getqos","list":[]}
 */
ZELTO_API int bs_GetQosInfo(const char* request, char* out);

/**
 * Limits the speed of a device, or takes its limit away.
 *
 * A device that has a limit keeps its mark; another one gets the next (system.route.qos_mark), and
 * a limit only when both speeds are above 0. A speed of 0 takes a limit away. The firmware's script
 * finds the rule to delete or to add in /tmp/edit_rule_file. The list must exist; it is rewritten
 * in any case, which drops lines of less than 31 characters.
 *
 * @command  setqos
 * @access   change
 * @request  MAC string required  the device, one word of at most 39 characters
 * @request  IP string required to limit  its address, one word of at most 39 characters
 * @request  Up_Speed string required  upload, a whole number in the unit of web pages
 * @request  Dl_Speed string required  download, likewise
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", a missing member, a record of less than 31 or more than 127
 *           characters; or a file cannot be opened or written (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.qos_mark for a new device
 * @effects  run /sbin/qos_rule_edit.sh del and run /sbin/qos_rule_edit.sh add, as far as there is
 *           something to delete and to add
 * @effects  run rm -rf /etc/qos_limit_list;mv /tmp/qos_limit_list /etc/qos_limit_list
 * @example  {"type":"setqos","MAC":"02:AA:00:00:00:02","IP":"192.168.10.101","Up_Speed":"100",
 *           "Dl_Speed":"800"} => {"type":"setqos","result":0}
 */
ZELTO_API int bs_SetQosInfo(const char* request, char* out);

/* ---- DMZ ------------------------------------------------------------------------------------ */

/**
 * The host that receives what arrives from the WAN unasked.
 *
 * @command  getdmz
 * @access   read
 * @reply    enable string  system.route.dmzenable, "0" when unset
 * @reply    ip string  system.route.dmzip, empty when unset
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getdmz"} => {"type":"getdmz","enable":"0","ip":""}
 */
ZELTO_API int bs_GetDMZInfo(const char* request, char* out);

/**
 * Exposes a host to the WAN, or ends that. The address is kept when it ends.
 *
 * @command  setdmz
 * @access   change
 * @request  enable string required  one of: 1 (exposes), 0 (ends it); any other number exposes as
 *           well; at most 127 characters
 * @request  ip string required to expose  the host's address, at most 127 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a member that is missing or cannot be stored; nothing is
 *           changed then
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.dmzenable
 * @effects  to expose: uci set system.route.dmzip
 * @effects  uci del firewall.dmz; to expose: uci add firewall.dmz=redirect, uci set of its options
 *           src, proto, dest_ip and target
 * @effects  run /etc/init.d/firewall restart &
 * @example  {"type":"setdmz","enable":"1","ip":"192.168.10.100"} => {"type":"setdmz","result":0}
 */
ZELTO_API int bs_SetDMZInfo(const char* request, char* out);

/* ---- UPnP ----------------------------------------------------------------------------------- */

/**
 * Whether devices may open ports for themselves, and those that are open. The latter are in
 * /tmp/upnp.leases; a missing file (logged: "fopen /tmp/upnp.leases failed!") counts as an empty
 * one.
 *
 * @command  get_upnp_info
 * @access   read
 * @reply    enable number  upnpd.config.enabled
 * @reply    list array  the open ports
 * @reply    list[].ip string
 * @reply    list[].internalPort string
 * @reply    list[].externalPort string
 * @reply    list[].protocol string
 * @result   none on success
 * @result   1 wrong or missing "type"; or the option cannot be read (logged: "uci get upnpd config
 *           enabled failed!"): then in place of "enable", and the list follows
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"get_upnp_info"} => {"type":"get_upnp_info","enable":*,"list":[]}
 */
ZELTO_API int bs_GetUpnpInfo(const char* request, char* out);

/**
 * Allows devices to open ports for themselves, or not. Whatever the "type" is, the daemon is
 * restarted when "enable" is 1, and stopped otherwise, also when it is missing.
 *
 * @command  set_upnp_info
 * @access   change
 * @request  enable number required  one of: 1 (allows it), 0 (does not); nor does any other number
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", no "enable", or it cannot be stored
 * @unparsed -1, logs "json data is NULL!"; nothing is run
 * @effects  uci set upnpd.config.enabled
 * @effects  run /etc/init.d/miniupnpd restart & or run /etc/init.d/miniupnpd stop &
 * @example  {"type":"set_upnp_info","enable":1} => {"type":"set_upnp_info","result":0}
 */
ZELTO_API int bs_SetUpnpInfo(const char* request, char* out);

/**
 * Sample ports for a web page in the making. Has no row in the command table: call it directly.
 *
 * @command  getupnpport
 * @access   read
 * @reply    list array  the ports
 * @reply    list[].ip string
 * @reply    list[].internal string
 * @reply    list[].external string
 * @reply    list[].protocol string
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"getupnpport"} => {"type":"getupnpport","list":[{"ip":"192.168.16.100",
 *           "internal":"11","external":"22","protocol":"TCP"},{"ip":"192.168.16.111",
 *           "internal":"22","external":"33","protocol":"TCP"}]}
 */
ZELTO_API int bs_GetUpnpPort(const char* request, char* out);

/* ---- Hardware NAT --------------------------------------------------------------------------- */

/**
 * Whether the switch chip translates addresses.
 *
 * @command  gethwnat
 * @access   read
 * @reply    status string  mtkhnat.global.enable, at most 31 characters; empty when unset
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"gethwnat"} => {"type":"gethwnat","status":*}
 */
ZELTO_API int bs_GetHwNat(const char* request, char* out);

/**
 * Lets the switch chip translate addresses, or not. The request is traced on the console. Firewall
 * rules mark packets by their DSCP class for it: BE 0, CS2 2, CS4 4, CS6 6; there is never more
 * than one rule of each. Without "status" nothing is changed.
 *
 * @command  sethwnat
 * @access   change
 * @request  status string optional  one of: 1 (on), 0 (off); any other number switches it on as
 *           well; at most 31 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a status that cannot be stored
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set mtkhnat.global.enable, uci set system.route.mtkhnat
 * @effects  on: run /etc/init.d/mtkhnat start, run echo 1 > /sys/kernel/debug/hnat/hook_toggle
 * @effects  off: run echo 0 > /sys/kernel/debug/hnat/hook_toggle, run /etc/init.d/mtkhnat stop
 * @effects  run iptables -t mangle -D FORWARD -m dscp --dscp-class CLASS -j MARK --set-mark MARK
 *           2>/dev/null for each class
 * @effects  on: run iptables -t mangle -A FORWARD -m dscp --dscp-class CLASS -j MARK --set-mark
 *           MARK for each class
 * @effects  off: start /etc/init.d/terminal_list stop;sleep 1;/etc/init.d/terminal_list start &
 * @example  {"type":"sethwnat","status":"1"} => {"type":"sethwnat","result":0}
 */
ZELTO_API int bs_SetHwNat(const char* request, char* out);

/* ---- TR-069 --------------------------------------------------------------------------------- */

/**
 * How the provider manages the router. Read from the first sections of the types "local", "acs" and
 * "device" of the package "easycwmp". What is unset is empty. Holds a password in clear.
 *
 * @command  getcwmpcfg
 * @access   read
 * @reply    enable string  of "local": whether it does
 * @reply    url string  of "acs": the provider's server
 * @reply    username string  of "acs"
 * @reply    password string  of "acs"
 * @reply    manufacturer string  of "device"
 * @reply    oui string  of "device": the manufacturer's identifier
 * @reply    serial string  of "device": serial_number
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getcwmpcfg"} => {"type":"getcwmpcfg","enable":*,"url":*,"username":*,
 *           "password":*,"manufacturer":*,"oui":*,"serial":*}
 */
ZELTO_API int bs_GetCwmpCfg(const char* request, char* out);

/**
 * Sets how the provider manages the router. A member that is missing leaves its option as it is,
 * and so does one whose section there is not. Whatever the "type" is, the client is restarted when
 * "enable" is "1", and stopped when it is another text.
 *
 * @command  setcwmpcfg
 * @access   change
 * @request  enable string required  one of: 1 (on), 0 (off); any text but "1" is off
 * @request  url string optional  the provider's server, at most 511 characters
 * @request  username string optional  at most 511 characters
 * @request  password string optional  at most 511 characters
 * @request  manufacturer string optional  at most 511 characters
 * @request  oui string optional  at most 511 characters
 * @request  serial string optional  at most 511 characters
 * @reply    result number
 * @result   0 stored
 * @result   1 wrong or missing "type", no "enable", or a member that cannot be stored; nothing is
 *           stored then
 * @unparsed -1, logs "json data is NULL!"; nothing is started
 * @effects  uci set of enable, url, username, password, manufacturer, oui and serial_number
 * @effects  start /etc/init.d/easycwmpd restart & or start /etc/init.d/easycwmpd stop &
 * @example  {"type":"setcwmpcfg","enable":"1","url":"https://acs.example.net/","username":"r",
 *           "password":"secret","manufacturer":"Zelto","oui":"00AABB","serial":"1"} =>
 *           {"type":"setcwmpcfg","result":0}
 */
ZELTO_API int bs_SetCwmpCfg(const char* request, char* out);

#ifdef __cplusplus
}
#endif
