/**
 * @file network.h
 * The Internet side and the LAN. The conventions of zeltoapi.h hold; its @-lines are explained
 * there.
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Facts about interfaces ----------------------------------------------------------------- */

/** Bytes that a buffer for an address and one for an interface name must offer. */
#define ZELTO_ADDRESS_SIZE 16
#define ZELTO_INTERFACE_SIZE 32

/**
 * Reads the IPv4 address, or the netmask, of an interface from the kernel.
 *
 * @param[in]  interface  name, at most 15 characters
 * @param[out] out        ZELTO_ADDRESS_SIZE bytes; dotted
 * @retval 0   read
 * @retval -1  no such interface, or it has no address; out untouched. getIfNetmask logs when the
 *             kernel cannot be asked at all ("getIfNetmask: open socket error")
 */
ZELTO_API int getIfIpAddr(const char* interface, char* out);
ZELTO_API int getIfNetmask(const char* interface, char* out);

/**
 * Finds the gateway that is reached through an interface.
 *
 * An interface whose name begins with "ppp" is asked for the far end of its point-to-point link
 * (the first one that ifconfig lists); for any other name the answer is the first route of
 * /proc/net/route in whose line the name occurs, that is up and has a gateway.
 *
 * @param[in]  interface  name; one that begins with "-" is refused
 * @param[out] out        ZELTO_ADDRESS_SIZE bytes; dotted; untouched when no route qualifies
 * @retval 0   answered, also when no route qualifies
 * @retval -1  the command could not be started, or a line of the table could not be read
 */
ZELTO_API int getWanGateway(const char* interface, char* out);

/**
 * Reads a resolver's address from /tmp/resolv.conf.auto.
 *
 * @param[in]  n    which one, from 1. When the file holds fewer, the last one is given: with a
 *                  single resolver the second equals the first
 * @param[out] out  ZELTO_ADDRESS_SIZE bytes, longer words are cut; untouched when the file holds
 *                  none
 * @retval 0   the file was read
 * @retval -1  it cannot be opened; out untouched
 */
ZELTO_API int getDns(int n, char* out);

/**
 * Names the interface that carries the uplink now, by operation mode and connection type.
 *
 *   mode "router"                 "pppoe-wan", "l2tp-L2TP" or "pptp-PPTP" for connection types
 *                                 "pppoe", "l2tp" and "pptp", else "eth0.2"
 *   mode "wisp"                   "apcli0" on band "2.4G" (internet.wisp.wisp_type), else "apclii0"
 *   modes "repeater" and "AP"     "br-lan"
 *   mode "mobilenetmode"          "eth0.2"
 *   any other                     out untouched
 *
 * An option that cannot be read is logged and counts as "router", "dhcp" or "2.4G".
 *
 * @param[in,out] out  ZELTO_INTERFACE_SIZE bytes
 * @return 0
 */
ZELTO_API int getWanIfInterface(char* out);

/**
 * Names the interface whose MAC address is that of the WAN side. As getWanIfInterface, but always
 * "eth0.2" in mode "router", and "apclix0" for the 5 GHz band in mode "wisp".
 *
 * @param[in,out] out  ZELTO_INTERFACE_SIZE bytes
 * @return 0
 */
ZELTO_API int getWanMac(char* out);

/* ---- WAN ------------------------------------------------------------------------------------ */

/**
 * The stored WAN settings.
 *
 * @command  getwancfg
 * @reply    wanmode string  "static", "pppoe", "dhcp", or empty for any other stored type
 * @reply    wanip string  static only: address
 * @reply    wanmsk string  static only: netmask
 * @reply    wangw string  static only: gateway
 * @reply    dns1 string  static only: system.route.static_dns (up to 149 characters) before its
 *           first blank; the first resolver in use when that cannot be read
 * @reply    dns2 string  static only: what follows the blank; empty without
 * @reply    pppoename string  pppoe only: user name
 * @reply    pppoepsw string  pppoe only: password
 * @reply    server_name string  pppoe only: service name
 * @reply    mtu string  network.wan.mtu in bytes, "1480" when it cannot be read; with pppoe 8 less
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed 0, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getwancfg"} => {"type":"getwancfg","wanmode":"dhcp","mtu":"1500"}
 */
ZELTO_API int bs_GetWanCfg(const char* request, char* out);

/**
 * Stores the WAN settings and restarts the WAN.
 *
 * Saving switches both tunnels off. Addresses are not checked. Values of more than 127 characters
 * (dns1 and dns2 together with a blank between them) or with a line break are refused, all of them
 * before the first is stored. When the user's own resolvers are on
 * (system.route.advanced_dns_switch is 1) they take the place of those sent.
 *
 * @command  setwancfg
 * @request  wanmode string required  "dhcp", "static", "pppoe"; stored as it is sent
 * @request  wanip string optional  address
 * @request  wanmsk string optional  netmask
 * @request  wangw string optional  gateway
 * @request  dns1 string optional  first resolver
 * @request  dns2 string optional  second resolver
 * @request  pppoename string optional  user name
 * @request  pppoepsw string optional  password
 * @request  server_name string optional  service name
 * @request  mtu string optional  bytes; 8 more are stored
 * @reply    result number
 * @result   0 stored; a store that failed is logged and does not change it
 * @result   1 wrong or missing "type", no "wanmode", or a value that is refused: nothing was done
 * @unparsed 0, logs "json data is NULL!"
 * @effects  uci del network.wan.mtu .dns .service .username .password .peerdns
 * @effects  uci del network.PPTP, network.L2TP
 * @effects  uci set internet.pptp_l2tp.pp_Switch=off, internet.pptp_l2tp.l2_Switch=off
 * @effects  uci set network.wan.proto, system.route.conntype
 * @effects  uci set one option of network.wan for each member sent, in the order above; with dns2
 *           also system.route.static_dns
 * @effects  uci set network.wan.peerdns=0, network.wan.dns when the user's resolvers are on
 * @effects  after the reply: as init_network_run
 * @effects  after the reply: start /etc/init.d/network set_wan_quick;killall -USR2 udhcpc;killall
 *           -USR1 udhcpc;lua /sbin/svctl.lua set_iptv_portmap &
 * @example  {"type":"setwancfg","wanmode":"dhcp","mtu":"1492"} => {"type":"setwancfg","result":0}
 */
ZELTO_API int bs_SetWanCfg(const char* request, char* out);

/**
 * The live facts of the uplink.
 *
 * @command  getwaninfo
 * @reply    connetype string  system.route.conntype
 * @reply    wan_mac string  MAC address of the uplink interface, of "eth0.2" when it is a PPP link
 * @reply    wanmsk string  its netmask; this and all below are empty when there is none
 * @reply    ip string  its address
 * @reply    gateway string  as getWanGateway
 * @reply    dns1 string  as getDns(1)
 * @reply    dns2 string  as getDns(2)
 * @result   none on success
 * @result   1 wrong or missing "type", or the connection type cannot be read (logged)
 * @unparsed 0, logs "json data is NULL!"
 * @effects  run cat /proc/net/route | grep INTERFACE, or run ifconfig | grep P-t-P | awk '{print
 *           $3}' | cut -d ':' -f2 | sed 's/"//g' for PPPoE
 * @example  {"type":"getwaninfo"} => {"type":"getwaninfo","connetype":"dhcp","wan_mac":*,
 *           "wanmsk":"255.255.255.0","ip":*,"gateway":*,"dns1":*,"dns2":*}
 */
ZELTO_API int bs_GetWanInfo(const char* request, char* out);

/**
 * What kind of uplink the cable offers.
 *
 * @command  getwanmode
 * @reply    wanmode string  "unlink" without a cable; what the firmware's wan_check found ("dhcp",
 *           "pppoe", "static", spelled as it does); else "unknown"
 * @reply    netlink string  "online" or "offline"
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed 0, logs "json data is NULL!"
 * @effects  run switch reg r 83 (again after wan_check)
 * @effects  run wan_check -I eth0.2 (br-lan in other modes than "router"), with a cable only
 * @example  {"type":"getwanmode"} => {"type":"getwanmode","wanmode":"dhcp","netlink":"online"}
 */
ZELTO_API int bs_GetWanMode(const char* request, char* out);

/* ---- LAN ------------------------------------------------------------------------------------ */

/**
 * The stored LAN settings.
 *
 * @command  getlancfg
 * @reply    lanip string  network.lan.ipaddr
 * @reply    lanmsk string  network.lan.netmask
 * @reply    landhcp string  "off" when dhcp.lan.ignore is 1, else "on"
 * @reply    startip string  dhcp.lan.start
 * @reply    endip string  dhcp.lan.endip
 * @result   none on success
 * @result   1 wrong or missing "type"; or an option (but dhcp.lan.ignore) cannot be read: the
 *           members before it stand in the reply
 * @unparsed 0, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getlancfg"} => {"type":"getlancfg","lanip":"192.168.10.1",
 *           "lanmsk":"255.255.255.0","landhcp":"on","startip":"100","endip":"249"}
 */
ZELTO_API int bs_GetLanCfg(const char* request, char* out);

/**
 * Stores the LAN address and the DHCP server's settings and restarts the LAN's services.
 *
 * An address whose first three parts are those of the uplink's address, compared as text and
 * whatever the netmask, is refused with 2. Values of more than 39 characters or with a line break
 * are refused with 1 before the first is stored. Everything but 2 ends with the restart, also 1:
 * what was stored before a member turned out to be missing is applied.
 *
 * @command  setlancfg
 * @request  lanip string required  dotted address
 * @request  landhcp string required  "on" switches the DHCP server on, anything else off
 * @request  lanmsk string required  dotted netmask
 * @request  startip string optional  begin of the DHCP range, stored as it is sent
 * @request  endip string optional  end of the DHCP range, stored as it is sent
 * @reply    result number
 * @result   0 stored; a store that failed is logged and does not change it
 * @result   1 wrong or missing "type", no "lanip" or a value that is refused: nothing stored. No
 *           "landhcp": address stored. No "lanmsk": address and DHCP switch stored
 * @result   2 the address is in the uplink's segment: nothing stored, no restart
 * @unparsed 0, logs "json data is NULL!"; no restart
 * @effects  uci set network.lan.ipaddr, system.route.lan_ipaddr, dhcp.lan.ignore,
 *           network.lan.netmask, system.route.lan_netmask, dhcp.lan.netmask
 * @effects  uci set dhcp.lan.start, system.route.dhcp_startip when "startip" is sent
 * @effects  uci set dhcp.lan.endip, system.route.dhcp_endip when "endip" is sent
 * @effects  after the reply: start /etc/init.d/dnsmasq restart;/etc/init.d/network
 *           set_lan_quick;lua /sbin/svctl.lua set_iptv_portmap;/sbin/reset_lan_port.sh;
 *           /sbin/wifi_setup.sh wifi_restart all;/etc/init.d/terminal_list restart &
 * @example  {"type":"setlancfg","lanip":"192.168.20.1","landhcp":"on","lanmsk":"255.255.255.0"} =>
 *           {"type":"setlancfg","result":0}
 */
ZELTO_API int bs_SetLanCfg(const char* request, char* out);

#ifdef __cplusplus
}
#endif
