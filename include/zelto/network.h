/**
 * @file network.h
 * The Internet side and the LAN. The conventions of zeltoapi.h hold; its @-lines are explained
 * there.
 */
#pragma once

#include <stdint.h>

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
 * @access   read
 * @reply    wanmode string  one of: static, pppoe, dhcp, ""; empty for any other stored type
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
 * @access   change
 * @request  wanmode string required  one of: dhcp, static, pppoe; stored as it is sent
 * @request  wanip string optional  address, at most 127 characters
 * @request  wanmsk string optional  netmask, at most 127 characters
 * @request  wangw string optional  gateway, at most 127 characters
 * @request  dns1 string optional  first resolver
 * @request  dns2 string optional  second resolver
 * @request  pppoename string optional  user name, at most 127 characters
 * @request  pppoepsw string optional  password, at most 127 characters
 * @request  server_name string optional  service name, at most 127 characters
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
 * @access   read
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
 * @access   read
 * @reply    wanmode string  "unlink" without a cable; what the firmware's wan_check found ("dhcp",
 *           "pppoe", "static", spelled as it does); else "unknown"
 * @reply    netlink string  one of: online, offline
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
 * @access   read
 * @reply    lanip string  network.lan.ipaddr
 * @reply    lanmsk string  network.lan.netmask
 * @reply    landhcp string  one of: on, off; off when dhcp.lan.ignore is 1
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
 * @access   change
 * @request  lanip string required  dotted address, at most 39 characters
 * @request  landhcp string required  one of: on, off; switches the DHCP server, anything but "on"
 *           counts as off
 * @request  lanmsk string required  dotted netmask, at most 39 characters
 * @request  startip string optional  begin of the DHCP range, stored as it is sent, at most 39
 *           characters
 * @request  endip string optional  end of the DHCP range, stored as it is sent, at most 39
 *           characters
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

/* ---- Quick setup and operation modes -------------------------------------------------------- */

/**
 * What the quick-setup wizard shows first. Holds the administrator's password in clear.
 *
 * When system.route.operationmode cannot be read, "operationmode" stands in the reply twice:
 * "router" first, then an empty text. The first call ever (system.route.webLoginFirst reads as 0)
 * puts the 2.4 GHz radio at full power.
 *
 * @command  geteasycfg
 * @access   danger
 * @reply    version string  as GetFWVersion, up to 79 characters
 * @reply    operationmode string  system.route.operationmode
 * @reply    wanstatus string  one of: link, unlink; whether the WAN port has a link
 * @reply    netstatus string  one of: link, unlink; whether the Internet can be reached
 * @reply    password string  system.route.routepwd, up to 31 characters
 * @reply    jumpflag string  one of: 1 (the password is empty or one blank), 0 (it is not)
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run switch reg r 83
 * @effects  once: uci set system.route.webLoginFirst=1; wifi 2.4G set TxPower=100,
 *           PERCENTAGEenable=0; start wifi_setup.sh wifi_master_arguments all &
 * @example  {"type":"geteasycfg"} => {"type":"geteasycfg","version":*,"operationmode":"router",
 *           "wanstatus":"link","netstatus":"link","password":"admin","jumpflag":"0"}
 */
ZELTO_API int bs_GetEasyInfo(const char* request, char* out);

/**
 * Changes the operation mode: rewrites LAN, WAN, DHCP, switch and uplink radio, names and re-keys
 * both radios, and restarts the network.
 *
 *   opermode       stored as      uplink                            LAN
 *   router         router         wire, by "wanmode"                own address, DHCP server on
 *   mobilenetwork  mobilenetmode  modem, by DHCP                    own address, DHCP server on
 *   AP             AP             none, all ports bridged           address by DHCP, server off
 *   wisp           wisp           a network that a radio joins      own address, DHCP server on
 *   repeater       repeater       the same, bridged into the LAN    address by DHCP, server off
 *
 * The LAN's address and DHCP range come from system.route (lan_ipaddr, lan_netmask, dhcp_startip,
 * dhcp_endip); one that cannot be read leaves the setting as it is and is logged. The security of a
 * network to join is derived from the survey's text: OPEN or NONE is open; WPA3PSK is joined as
 * WPA3PSK in mode wisp on 5 GHz, else as WPA2PSK; then WPA2PSK, WPAPSK; ciphers NONE, AES (also of
 * TKIPAES), TKIP; nothing where the text has none of the words. The client starts 40 s (2.4 GHz) or
 * 50 s (5 GHz) after the reply.
 *
 * SSIDs and passphrases hold at most 99 characters, other texts 127, none a line break: a request
 * with another one is refused whole.
 *
 * @command  seteasycfg
 * @access   change
 * @request  opermode string required  one of: router, mobilenetwork, AP, wisp, repeater
 * @request  wanmode string required in mode router  one of: dhcp, static, pppoe
 * @request  wanip string optional  mode router, as the members below down to "mtu": "setwancfg"
 * @request  wanmsk string optional  netmask
 * @request  wangw string optional  gateway
 * @request  dns1 string optional  first resolver
 * @request  dns2 string optional  second resolver
 * @request  pppoename string optional  user name
 * @request  pppoepsw string optional  password
 * @request  server_name string optional  service name
 * @request  mtu string optional  bytes; 8 more are stored
 * @request  ssid string required in modes wisp and repeater  the network to join, at most 99
 *           characters
 * @request  wifi_type string required in modes wisp and repeater  one of: 2.4G, 5.8G; the band of
 *           that network
 * @request  security string optional  modes wisp and repeater: the survey's text
 * @request  key string optional  modes wisp and repeater: passphrase, at most 99 characters
 * @request  channel number optional  modes wisp and repeater: channel; missing counts as 0
 * @request  bssid string optional  modes wisp and repeater: address of the access point
 * @request  wlan2ssid string optional  new name of the 2.4 GHz network, at most 99 characters
 * @request  wlan2psw string optional  its new passphrase, at most 99 characters; empty or missing
 *           opens the network
 * @request  wlan5ssid string optional  new name of the 5 GHz network, at most 99 characters
 * @request  wlan5psw string optional  its new passphrase, at most 99 characters; empty or missing
 *           opens the network
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", a refused value, or no "ssid" or "wifi_type" where one is
 *           required: nothing was done. Unknown "opermode" (traced on the console), or mode router
 *           without "wanmode": all that follows the mode's own settings was done
 * @unparsed -1, logs "json is NULL"
 * @effects  run /sbin/get_7628_lan_wan_mac.sh lan (wan); start mv /usr/bin/sys_daemon
 *           /usr/bin/sys_daemon_bak;/etc/init.d/sys_daemon stop;killall -9
 *           sys_daemon;/etc/init.d/Zelto_Cloud stop;killall -9 Zelto_Cloud
 * @effects  the mode's settings
 * @effects  names and keys of both radios; tunnels off; flags of internet.ap, internet.repeater and
 *           system.route cleared; run echo "0;192.168.16.123;aa:bb:cc:dd:ee:ff;router.zelto" >
 *           /proc/mt7628/DHCP_Dns; start /sbin/unset_vlan.sh; run /etc/init.d/mob_daemon restart &
 *           (stop); hardware NAT; IPTV; wifi set ApCliEnable=0 of both
 * @effects  start /etc/init.d/network restart;killall -USR2 udhcpc;killall -USR1
 *           udhcpc;/sbin/reset_lan_port.sh needsleep;/etc/init.d/terminal_list restart &; in modes
 *           wisp and repeater start sleep 40;/sbin/wifi_connect.sh apcli0 & (sleep 50, apclii0); in
 *           mode router start lua /sbin/svctl.lua set_iptv_portmap &
 * @example  {"type":"seteasycfg","opermode":"router","wanmode":"dhcp","wlan2ssid":"Home",
 *           "wlan2psw":"correct horse","wlan5ssid":"Home 5G","wlan5psw":"correct horse"} =>
 *           {"type":"seteasycfg","result":0}
 */
ZELTO_API int bs_SetEasyInfo(const char* request, char* out);

/* ---- Tunnels -------------------------------------------------------------------------------- */

/**
 * The PPTP tunnel's settings. Holds the account's password in clear.
 *
 * @command  getpptpinfo
 * @access   read
 * @reply    Switch string  one of: on, off; when it cannot be read the defaults follow in the order
 *           domain, username, password, netmode, MTU
 * @reply    domain string  server
 * @reply    username string  account
 * @reply    password string  password
 * @reply    MTU string  bytes; "1440" when unset
 * @reply    netmode string  "Static", or how else the WAN gets its address; "DHCP" when unset
 * @reply    staticip string  Static only: the WAN's address
 * @reply    staticmask string  Static only: its netmask
 * @reply    staticgateway string  Static only: its gateway
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"getpptpinfo"} => {"type":"getpptpinfo","Switch":"off","domain":"",
 *           "username":"","password":"","MTU":"1440","netmode":"DHCP"}
 */
ZELTO_API int bs_GetPptpInfo(const char* request, char* out);

/**
 * The L2TP tunnel's settings. As "getpptpinfo".
 *
 * @command  getl2tpinfo
 * @access   read
 * @reply    Switch string  one of: on, off; when it cannot be read the defaults follow in the order
 *           domain, username, password, netmode, MTU
 * @reply    domain string  server
 * @reply    username string  account
 * @reply    password string  password
 * @reply    MTU string  bytes; "1440" when unset
 * @reply    netmode string  "Static", or how else the WAN gets its address; "DHCP" when unset
 * @reply    staticip string  Static only: the WAN's address
 * @reply    staticmask string  Static only: its netmask
 * @reply    staticgateway string  Static only: its gateway
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"getl2tpinfo"} => {"type":"getl2tpinfo","Switch":"off","domain":"",
 *           "username":"","password":"","MTU":"1440","netmode":"DHCP"}
 */
ZELTO_API int bs_GetL2tpInfo(const char* request, char* out);

/**
 * Switches the PPTP tunnel. Switching it on switches the other one off; switching off one that is
 * off does nothing. Values of more than 127 characters or with a line break are refused. The
 * reply's "type" is the request's own.
 *
 * @command  setpptpinfo
 * @access   change
 * @request  Switch string optional  one of: on, off; anything but "on" switches off
 * @request  domain string optional  server, at most 127 characters; this and all below are for
 *           switching on
 * @request  username string optional  account, at most 127 characters
 * @request  password string optional  password, at most 127 characters
 * @request  MTU string optional  bytes, stored as it is sent
 * @request  netmode string optional  one of: DHCP, Static; exactly "Static" gives the WAN the
 *           address below
 * @request  staticip string optional  the WAN's address
 * @request  staticmask string optional  its netmask
 * @request  staticgateway string optional  its gateway
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a value that is refused
 * @unparsed -1, logs "json data is NULL!"
 * @effects  on: uci del network.wan.dns; uci set internet.pptp_l2tp.pp_staticip and its like,
 *           pp_Switch, pp_domain, pp_username, pp_password, pp_netmode, pp_MTU; uci del
 *           network.PPTP; uci set mtkhnat.global.enable=0; run echo 0 >
 *           /sys/kernel/debug/hnat/hook_toggle; uci set internet.pptp_l2tp.l2_Switch=off; uci add
 *           network.PPTP; uci set its proto, system.route.conntype, ipv6, server, username,
 *           password, mtu; uci set network.wan.proto (and ipaddr, netmask, gateway); uci set
 *           network.PPTP.peerdns=0 when the user's own resolvers are on; uci del network.L2TP; uci
 *           set internet.pptp_l2tp.l2_Switch=off
 * @effects  off: uci set system.route.conntype=dhcp, network.wan.proto=dhcp; uci del
 *           network.wan.dns, network.PPTP; uci set internet.pptp_l2tp.pp_Switch=off; as
 *           init_network_run
 * @effects  both: start /etc/init.d/network set_wan_quick;killall -USR2 udhcpc;killall -USR1
 *           udhcpc;lua /sbin/svctl.lua set_iptv_portmap &
 * @example  {"type":"setpptpinfo","Switch":"on","domain":"vpn.example","username":"me",
 *           "password":"secret","MTU":"1400","netmode":"DHCP"} =>
 *           {"type":"setpptpinfo","result":0}
 */
ZELTO_API int bs_SetPptpInfo(const char* request, char* out);

/**
 * Switches the L2TP tunnel. As "setpptpinfo", with the options l2_... and the section network.L2TP;
 * the connection type is stored before the section is added.
 *
 * @command  setl2tpinfo
 * @access   change
 * @request  Switch string optional  one of: on, off; anything but "on" switches off
 * @request  domain string optional  server, at most 127 characters; this and all below are for
 *           switching on
 * @request  username string optional  account, at most 127 characters
 * @request  password string optional  password, at most 127 characters
 * @request  MTU string optional  bytes, stored as it is sent
 * @request  netmode string optional  one of: DHCP, Static; exactly "Static" gives the WAN the
 *           address below
 * @request  staticip string optional  the WAN's address
 * @request  staticmask string optional  its netmask
 * @request  staticgateway string optional  its gateway
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a value that is refused
 * @unparsed -1, logs "json data is NULL!"
 * @effects  as "setpptpinfo"
 * @example  {"type":"setl2tpinfo","Switch":"off"} => {"type":"setl2tpinfo","result":0}
 */
ZELTO_API int bs_SetL2tpInfo(const char* request, char* out);

/* ---- Resolvers, MAC address, IPv6, IPTV ----------------------------------------------------- */

/**
 * The user's own resolvers.
 *
 * @command  getdnsinfo
 * @access   read
 * @reply    dns1 string  system.route.advanced_dns before its first blank
 * @reply    dns2 string  what follows the blank; empty without
 * @reply    status string  one of: 1 (they are in use), 0 (they are not)
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"getdnsinfo"} => {"type":"getdnsinfo","dns1":"","dns2":"","status":"0"}
 */
ZELTO_API int bs_GetDNSInfo(const char* request, char* out);

/**
 * Puts the user's own resolvers in the place of the provider's, or gives those back. The two with
 * their blank hold at most 63 characters. The WAN restarts after every answer.
 *
 * @command  setdnsinfo
 * @access   change
 * @request  status string optional  one of: 1 (puts them in place), 0 (gives the provider's back);
 *           anything but "1" gives back
 * @request  dns1 string optional  first resolver
 * @request  dns2 string optional  second resolver
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a value that is refused
 * @unparsed -1, logs "json data is NULL!"
 * @effects  on: uci set system.route.advanced_dns, advanced_dns_switch=1, network.wan.peerdns=0,
 *           network.wan.dns; network.PPTP.peerdns=0 or network.L2TP.peerdns=0 while that tunnel is
 *           on
 * @effects  off: uci set system.route.advanced_dns_switch=0; uci del network.wan.peerdns, dns; uci
 *           del network.PPTP.peerdns or network.L2TP.peerdns while that tunnel is on, else with a
 *           static WAN uci set network.wan.dns from system.route.static_dns
 * @effects  after every reply: start /etc/init.d/network set_wan_quick;lua /sbin/svctl.lua
 *           set_iptv_portmap &
 * @example  {"type":"setdnsinfo","status":"1","dns1":"9.9.9.9","dns2":"1.1.1.1"} =>
 *           {"type":"setdnsinfo","result":0}
 */
ZELTO_API int bs_SetDNSInfo(const char* request, char* out);

/**
 * The MAC addresses that the WAN can show.
 *
 * @command  getsubmaclist
 * @access   read
 * @reply    self string  network.wan.defmacaddr: the WAN's own, once another one was cloned
 * @reply    clonemac string  the address that eth0.2 has now
 * @reply    list array  the attached devices; left out when the terminal list cannot be read
 *           (logged, "open file terminal_list failed!") or locked
 * @reply    list[].mac string  the device
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getsubmaclist"} => {"type":"getsubmaclist","self":"","clonemac":*}
 */
ZELTO_API int bs_GetCloneList(const char* request, char* out);

/**
 * Lets the WAN show another MAC address. Its own is remembered before the first time. The WAN
 * restarts after every answer.
 *
 * @command  setclonemac
 * @access   change
 * @request  mac string required  the address, at most 31 characters
 * @reply    result number
 * @result   0 done, also when it is the address already
 * @result   1 wrong or missing "type", no "mac", or one that is refused
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set network.wan.defmacaddr (once), network.wan.macaddr
 * @effects  after every reply: start /etc/init.d/network set_wan_quick;lua /sbin/svctl.lua
 *           set_iptv_portmap &
 * @example  {"type":"setclonemac","mac":"02:AA:00:00:00:01"} => {"type":"setclonemac","result":0}
 */
ZELTO_API int bs_SetCloneMAC(const char* request, char* out);

/**
 * IPv6 settings and the uplink's addresses.
 *
 * @command  getipv6info
 * @access   read
 * @reply    ipv6_passthrough string  network.lan.br_traverse_ipv6; "0" when it cannot be read
 * @reply    lantype string  dhcp.lan.ra_management; "1" when it cannot be read
 * @reply    globaladdr string  global address of the uplink (WAN types dhcp and pppoe), else empty
 * @reply    localaddr string  its link-local address, likewise
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run ifconfig eth0.2 |grep Scope:Global |awk '{print $3}'|cut -d '/' -f 1 (pppoe-wan,
 *           Scope:Link)
 * @example  {"type":"getipv6info"} => {"type":"getipv6info","ipv6_passthrough":"0","lantype":"1",
 *           "globaladdr":*,"localaddr":*}
 */
ZELTO_API int bs_GetIPV6Info(const char* request, char* out);

/**
 * Stores IPv6 settings and restarts the WAN.
 *
 * @command  setipv6info
 * @access   change
 * @request  ipv6_passthrough string optional  one of: 1 (passes IPv6 through), 0 (does not); at
 *           most 127 characters, stored as it is sent
 * @request  lantype string optional  how the LAN gets addresses, at most 127 characters; stored as
 *           it is sent
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a value of more than 127 characters or with a line break:
 *           nothing was done
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set network.lan.br_traverse_ipv6, dhcp.lan.ra_management
 * @effects  after the reply: start /etc/init.d/network set_wan_quick;lua /sbin/svctl.lua
 *           set_iptv_portmap &
 * @example  {"type":"setipv6info","ipv6_passthrough":"1"} => {"type":"setipv6info","result":0}
 */
ZELTO_API int bs_SetIPV6Info(const char* request, char* out);

/**
 * IPTV settings.
 *
 * @command  getiptvinfo
 * @access   read
 * @reply    enable number  1 on
 * @reply    lan4 number  role of LAN port 4; 0 when the stored text has fewer fields
 * @reply    lan3 number  of port 3
 * @reply    lan2 number  of port 2
 * @reply    lan1 number  of port 1
 * @reply    tag number  VLAN tag
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getiptvinfo"} => {"type":"getiptvinfo","enable":0,"lan4":0,"lan3":0,"lan2":0,
 *           "lan1":0,"tag":85}
 */
ZELTO_API int bs_GetIptvInfo(const char* request, char* out);

/**
 * Changes the IPTV settings. The tag is a text here and a number in "getiptvinfo". The network
 * restarts after every answer.
 *
 * @command  setiptvinfo
 * @access   change
 * @request  enable number required  one of: 1 (on), 0 (off)
 * @request  lan1 number required to switch on  role of LAN port 1
 * @request  lan2 number required to switch on  of port 2
 * @request  lan3 number required to switch on  of port 3
 * @request  lan4 number required to switch on  of port 4
 * @request  tag string required to switch on  VLAN tag
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a missing or refused member: nothing stored
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set iptv.config.enable, system.route.iptv; on: iptv.config.ports ("LAN4,LAN3,LAN2,
 *           LAN1"), iptv.config.tag
 * @effects  after every reply: start lua /sbin/svctl.lua set_iptv_portmap;ubus call
 *           network.interface.wan down;sleep 3;ubus call network.interface.wan up & with "enable"
 *           1, else start /etc/init.d/network restart &
 * @example  {"type":"setiptvinfo","enable":0} => {"type":"setiptvinfo","result":0}
 */
ZELTO_API int bs_SetIptvInfo(const char* request, char* out);

/* ---- Networks around ------------------------------------------------------------------------ */

/** Networks that one survey may give, and records that a list has room for. */
#define ZELTO_SCAN_LIMIT 255
#define ZELTO_SCAN_CAPACITY 256

/** One network of a survey. Texts end in a NUL and are cut to their fields. */
typedef struct ScanRecord {
  int32_t signal; /**< as the driver says it, mostly percent */
  int32_t channel;
  char ssid[128];
  char bssid[24];
  char ext_ch[8];    /**< where the second channel lies */
  char security[24]; /**< words of authentication and cipher */
} ScanRecord;

/** The networks of one radio's survey. */
typedef struct ScanList {
  int32_t count;
  ScanRecord records[ZELTO_SCAN_CAPACITY];
} ScanList;

/**
 * Sorts networks by signal, the strongest first; those of equal signal keep their order.
 *
 * @param[in,out] list  `count` outside 0 to ZELTO_SCAN_CAPACITY is taken for the nearer of the two
 */
ZELTO_API void sort_scan_list(ScanList* list);

/**
 * Asks the 2.4 GHz client whether it is scanning ("iwpriv apcli0 ap_scan_running").
 *
 * @return the number in the second line of the answer, 0 when there is none; -1 when the command
 *         could not be started (logged)
 */
ZELTO_API int check_ap_scan_running(void);

/**
 * Counts the attached devices: lines of /tmp/terminal_list, read under the lock that its writer
 * takes (/etc/terminal_lock_file).
 *
 * @return the count; 0 also when file or lock cannot be had
 */
ZELTO_API int terminalnumber(void);

/**
 * Surveys the networks around on both radios. Takes 20 s and more. Waits at most 60 s for other
 * work on the radios and 30 s for each survey's file. Networks without a name are left out.
 *
 * @command  getrepeaterinfo
 * @access   change
 * @reply    list array  2.4 GHz first, then 5 GHz, each by signal. At most 255 of each; what does
 *           not fit the reply is left out, and logged
 * @reply    list[].channel number
 * @reply    list[].ssid string
 * @reply    list[].bssid string
 * @reply    list[].security string  words of authentication and cipher, such as "WPA2PSK/AES"
 * @reply    list[].signal number  as the driver says it, mostly percent
 * @reply    list[].ext_ch string  where the second channel lies
 * @reply    list[].wifi_type string  one of: 2.4G, 5.8G
 * @result   none on success
 * @result   1 wrong or missing "type", or a survey did not come about (traced on the console)
 * @unparsed -1, traced on the console: "json data is NULL!"
 * @effects  run ifconfig apcli0 up, ifconfig apclii0 up (also for a wrong "type"); in modes wisp
 *           and repeater run iwpriv apcli0 set ApCliAutoConnect=0 (apclii0); uci set
 *           system.route.7663_wifi_scan=1; run ifconfig rai0 up; start iwpriv apcli0 set
 *           PartialScanNumOfCh=1;iwpriv apcli0 set PartialScan=1;sleep 20;iwpriv apcli0
 *           get_site_survey > /tmp/2G_list & and the same on apclii0
 * @effects  in every case: uci set system.route.7663_wifi_scan=0; after the reply run iwpriv apcli0
 *           set PartialScan=0, iwpriv apclii0 set PartialScan=0
 * @example  {"type":"getrepeaterinfo"} => {"type":"getrepeaterinfo","list":[{"channel":6,
 *           "ssid":"Neighbour","bssid":*,"security":"WPA2PSK/AES","signal":78,"ext_ch":"ABOVE",
 *           "wifi_type":"2.4G"},{"channel":11,"ssid":"Cafe Upstairs","bssid":*,
 *           "security":"OPEN/NONE","signal":41,"ext_ch":"BELOW","wifi_type":"2.4G"},
 *           {"channel":149,"ssid":"Office","bssid":*,"security":"WPA3PSK/AES","signal":83,
 *           "ext_ch":"ABOVE","wifi_type":"5.8G"},{"channel":36,"ssid":"Neighbour-5G","bssid":*,
 *           "security":"WPA2PSK/AES","signal":65,"ext_ch":"ABOVE","wifi_type":"5.8G"}]}
 */
ZELTO_API int bs_GetApcliScanInfo(const char* request, char* out);

/**
 * The network that the router is set to join.
 *
 * @command  getconnetsta
 * @access   read
 * @reply    ssid string  its name; "NULL" in modes without one
 * @reply    mac string  its access point; "NULL" in modes without one
 * @result   none on success
 * @result   1 wrong or missing "type", or the mode cannot be read (traced on the console)
 * @unparsed -1, traced on the console: "json data is NULL!"
 * @effects  none
 * @example  {"type":"getconnetsta"} => {"type":"getconnetsta","ssid":"NULL","mac":"NULL"}
 */
ZELTO_API int bs_ConnetSta(const char* request, char* out);

/**
 * The compact status of the front page.
 *
 * @command  getrouterstatus
 * @access   read
 * @reply    wanip string  the uplink's address, empty when it has none
 * @reply    uptime string  time since the start, "days:hours:minutes:seconds", not padded with
 *           zeros
 * @reply    cpu string  as in "getrouterinfo"
 * @reply    downspeed string  second word of /tmp/wan_speed_file
 * @reply    upspeed string  its first word: the other way round than in "getrouterinfo"
 * @reply    operationmode string  system.route.operationmode; "router" when it cannot be read
 * @reply    ternum number  attached devices, as terminalnumber
 * @reply    ver string  second comma-separated field of /etc/FW-Version
 * @reply    wanstatus string  one of: link, unlink; whether the WAN port has a link
 * @reply    netstatus string  one of: link, unlink; whether the Internet can be reached
 * @result   none on success
 * @result   1 wrong or missing "type"; or there is no version file: behind "ternum"
 * @unparsed 0, logs "json data is NULL!"
 * @effects  run top -n 1 | grep CPU | grep usr | awk '{print $2}'
 * @effects  run switch reg r 83
 * @example  {"type":"getrouterstatus"} => {"type":"getrouterstatus","wanip":*,"uptime":*,"cpu":*,
 *           "downspeed":*,"upspeed":*,"operationmode":"router","ternum":*,"ver":*,
 *           "wanstatus":"link","netstatus":"link"}
 */
ZELTO_API int bs_GetRouteStatus(const char* request, char* out);

/* ---- Diagnosis ------------------------------------------------------------------------------ */

/**
 * Why the router is not online: a chain of checks up to the first that fails.
 *
 * Online, all five are "1" in the order wanstatus, wanmodeequal, ipstatus, dnstatus, netstatus.
 * Otherwise netstatus comes first. Modes other than router and mobilenetmode go without wanstatus
 * and wanmodeequal.
 *
 * @command  getnetworkdiagnosisinfo
 * @access   read
 * @reply    netstatus string  "1" the Internet can be reached
 * @reply    wanstatus string  "1" there is a cable, or the modem is the uplink
 * @reply    wanmodeequal string  "1" the cable offers the type that is set; else by the type that
 *           is set: "3" dhcp, "2" pppoe, "4" static, left out for any other
 * @reply    ipstatus string  "1" the uplink has an address
 * @reply    dnstatus string  "1" one process dnsmasq runs
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run switch reg r 83; run wan_check -I eth0.2; run ps | grep dnsmasq | grep -v grep | wc
 *           -l, as far as the chain goes
 * @example  {"type":"getnetworkdiagnosisinfo"} => {"type":"getnetworkdiagnosisinfo",
 *           "wanstatus":"1","wanmodeequal":"1","ipstatus":"1","dnstatus":"1","netstatus":"1"}
 */
ZELTO_API int bs_GetNetworkDiagnosisInfo(const char* request, char* out);

/* ---- Port forwarding ------------------------------------------------------------------------ */

/**
 * The port forwarding rules. They are those of /etc/port_forward_list.
 *
 * @command  getforwarding
 * @access   read
 * @reply    list array  the rules in the order of the file. What does not fit the reply is left
 *           out, and logged
 * @reply    list[].name string
 * @reply    list[].ip string  a LAN host, or "all"
 * @reply    list[].sublist array  the mappings
 * @reply    list[].sublist[].lanport string
 * @reply    list[].sublist[].wanport string
 * @reply    list[].sublist[].protocol string
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"getforwarding"} => {"type":"getforwarding","list":[]}
 */
ZELTO_API int bs_GetForwardingInfo(const char* request, char* out);

/**
 * Adds, changes or removes a port forwarding rule: in the list and in the firewall's sections
 * redirect0, redirect1, ...
 *
 * Every copy under "name" and "name_old" is removed first. A rule has a name and an address without
 * blank or ";"; ports hold at most 47 characters, protocol words 23, the whole line 318. A rule
 * that does not fit is refused whole: nothing is changed. Sections from redirect65 on are not
 * found.
 *
 * @command  setforwarding
 * @access   change
 * @request  enable string|number optional  one of: 1 (adds the rule), 0 (only removes); as text or
 *           number, anything but 1 only removes
 * @request  name string required to add  the rule's name, at most 189 bytes
 * @request  name_old string optional  the name it had before
 * @request  ip string required to add  LAN host, or "all"
 * @request  list0 string optional  a mapping: WAN port, comma, LAN port, comma, protocol ("TCP",
 *           "UDP", any other word means both); and so on with list1, list2, ... up to the first
 *           that is missing
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a rule that is refused; or the list cannot be rewritten
 *           (logged): nothing was changed; or it cannot be added to (logged): copies are removed
 *           already
 * @unparsed -1, logs "json data is NULL!"
 * @effects  for each of the two names run mv /tmp/port_forward_list /etc/port_forward_list; uci del
 *           firewall.redirectN
 * @effects  for each mapping uci add firewall.redirectN=redirect, uci set target, src, dest,
 *           src_dport, dest_port, name, proto, dest_ip (not for "all")
 * @effects  start /etc/init.d/firewall restart &
 * @example  {"type":"setforwarding","enable":"1","name":"web server","ip":"192.168.10.20",
 *           "list0":"8080,80,TCP"} => {"type":"setforwarding","result":0}
 */
ZELTO_API int bs_SetForwardingInfo(const char* request, char* out);

/**
 * Looks for a rule in the list.
 *
 * @param[in] name  in base64, as the list has it
 * @retval 1  there is one
 * @retval 0  there is none, or the list cannot be opened (logged)
 */
ZELTO_API int forward_name_exist(const char* name);

/**
 * Removes the rules of a name from the list.
 *
 * @param[in] name  in base64, as the list has it
 * @retval 1  the list was rewritten
 * @retval 0  it could not be (logged)
 */
ZELTO_API int forward_name_del(const char* name);

/** Finds a section for a new mapping. @return the lowest n for which there is no redirectN */
ZELTO_API int get_new_redirect_id(void);

/**
 * Finds a section of a rule.
 *
 * @param[in] name  in base64, as the section has it
 * @return the lowest n from 0 to 64 for which redirectN has the name; -1 when none has
 */
ZELTO_API int get_exist_redirect_id(const char* name);

#ifdef __cplusplus
}
#endif
