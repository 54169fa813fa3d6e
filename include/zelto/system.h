/**
 * @file system.h
 * Login and router status. The conventions of zeltoapi.h hold; its @-lines are explained there.
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Login ---------------------------------------------------------------------------------- */

/**
 * Checks the administrator's name and password and issues a token.
 *
 * The account is system.route.routeusr (read up to 31 characters) and system.route.routepwd (up to
 * 127); an option that cannot be read counts as empty. Both must equal what is sent, exactly.
 * An account with neither name nor password therefore admits everyone who sends neither. A name of
 * more than 31 characters or a password of more than 127 never logs in.
 *
 * The token is the MD5 sum, 32 lower-case hexadecimal characters, of the uptime in seconds with two
 * decimals: it can be guessed by who knows when the login was, and two logins within a hundredth of
 * a second get the same one. It is added as a line to /tmp/token, where check_auth looks, and stays
 * valid until the router restarts. When the commands that make it fail, it is empty.
 *
 * @command  loginauth
 * @access   open
 * @request  user string optional  the name; missing counts as empty
 * @request  pass string optional  the password; missing counts as empty
 * @reply    token string  the new token
 * @reply    first_login number  system.route.webLoginFirst; 0 when it cannot be read
 * @reply    defmode string  system.route.operationmode; "router" when it cannot be read
 * @reply    wifiType string  only in mode "repeater" (internet.repeater.repeater_type) and "wisp"
 *           (internet.wisp.wisp_type): the band of the uplink; empty when it cannot be read
 * @reply    result number
 * @result   0 logged in
 * @result   1 wrong name or password, or wrong or missing "type"; no other member
 * @unparsed 0, logs "json data is NULL!"
 * @effects  run cat /proc/uptime | awk '{print $1}' | md5sum | awk '{print $1}' | tr -d '\n'
 * @effects  run echo TOKEN >> /tmp/token
 * @example  {"type":"loginauth","user":"admin","pass":"admin"} =>
 *           {"type":"loginauth","token":*,"first_login":*,"defmode":"router","result":0}
 */
ZELTO_API int bs_loginauth(const char* request, char* out);

/* ---- Status --------------------------------------------------------------------------------- */

/** Bits of the word that GetBasicstatus returns. */
#define ZELTO_STATUS_WAN 1U              /**< the WAN port has a link */
#define ZELTO_STATUS_LAN4 2U             /**< LAN port 4 has */
#define ZELTO_STATUS_LAN3 4U             /**< LAN port 3 has */
#define ZELTO_STATUS_LAN2 8U             /**< LAN port 2 has */
#define ZELTO_STATUS_LAN1 16U            /**< LAN port 1 has */
#define ZELTO_STATUS_ALWAYS 32U          /**< always set */
#define ZELTO_STATUS_ONLINE 64U          /**< the Internet can be reached */
#define ZELTO_STATUS_UNKNOWN 0xFFFFFFFFU /**< the ports could not be asked */

/**
 * Formats the time since the router started.
 *
 * @param[out] buffer  days, hours, minutes and seconds as "%d:%d:%d:%d", not padded with zeros
 * @param[in]  size    bytes of `buffer`
 * @retval 0   written
 * @retval -1  /proc/uptime cannot be opened (logged, "fopen error") or the text does not fit
 */
ZELTO_API int get_sysrun_time(char* buffer, int size);

/**
 * Reads the processor time that programs use, as top shows it: "12%" and a line feed, at most five
 * characters in all.
 *
 * @param[out] buffer  receives the text
 * @param[in]  size    bytes of `buffer`
 * @retval 0   written
 * @retval -1  top could not be started (logged, "fopen error") or the text does not fit
 */
ZELTO_API int GetCPUusage(char* buffer, int size);

/**
 * Reads the WAN throughput that a daemon keeps in /tmp/wan_speed_file, under an exclusive lock on
 * the file: two words, units as the daemon chose, and a line feed.
 *
 * @param[in,out] buffer  receives the first line, at most size - 2 characters; stays as it is when
 *                        the file cannot be opened (logged, "open /tmp/wan_speed_file fail") or
 *                        locked (logged, "flock for /tmp/wan_speed_file failed!") or is empty
 * @param[in]     size    bytes of `buffer`
 */
ZELTO_API void get_wan_speed(char* buffer, int size);

/**
 * Tells whether the Internet can be reached, by what a daemon keeps in /tmp/online_file: its first
 * line (up to 126 characters), read under an exclusive lock, contains "online".
 *
 * @retval 1  online
 * @retval 0  not, or the file cannot be opened (logged, "open /tmp/online_file fail") or locked
 *            (logged, "flock for online_file failed!")
 */
ZELTO_API int get_online_status(void);

/**
 * Reads the state of ports and uplink: get_online_status, then the link register of the Ethernet
 * switch through the firmware's tool ("switch reg r 83").
 *
 * @return ZELTO_STATUS_... bits; an answer of the tool that holds no register value counts as no
 *         port linked. ZELTO_STATUS_UNKNOWN when the tool could not be started
 */
ZELTO_API unsigned int GetBasicstatus(void);

/** Keeps its place in the interface. @return 0 */
ZELTO_API int getPortConnectStat(void);

/**
 * Reads the clock and the uptime through the system's tools.
 *
 * @param[out] date    32 bytes: "YYYY-MM-DD hh:mm:ss" and a line feed, local time; the text
 *                     "1970-01-01 08:00:00" when date cannot be started (traced on the console) or
 *                     answers less than 11 characters
 * @param[out] uptime  32 bytes: whole seconds since start; "0" when they cannot be read
 * @return 0
 */
ZELTO_API int get_system_current_time(char* date, char* uptime);

/**
 * Puts hardware NAT into the state that the user chose: copies system.route.mtkhnat (up to 31
 * characters; empty when it cannot be read) to mtkhnat.global.enable and switches the driver's hook
 * on when it is "1", else off.
 *
 * Effects: uci set mtkhnat.global.enable, run echo 1 > /sys/kernel/debug/hnat/hook_toggle (or 0).
 *
 * @return the status of the shell command
 */
ZELTO_API int init_network_run(void);

/**
 * The status page.
 *
 * When system.route.operationmode cannot be read, "operationmode" stands in the reply twice:
 * "router" first, then an empty text. In mode "router" the same holds for "connetype" when
 * system.route.conntype cannot be read ("dhcp", then empty; logged, "get wanConnectionMode
 * failed!"). Pages take the last one. While /tmp/wan_speed_file is missing, "downspeed" is the text
 * of "cpu" without its last character and "upspeed" is empty.
 *
 * @command  getrouterinfo
 * @access   read
 * @reply    uptime string  time since the start, "days:hours:minutes:seconds", not padded with
 *           zeros
 * @reply    cpu string  share of processor time that programs use, such as "12%"
 * @reply    downspeed string  first word of /tmp/wan_speed_file, at most 31 characters
 * @reply    upspeed string  second word, likewise
 * @reply    basicstat string  decimal sum: 1 the WAN port has a link, 2 LAN port 4, 4 port 3, 8
 *           port 2, 16 port 1; 32 always; 64 the Internet can be reached (GetBasicstatus)
 * @reply    netlink number  one of: 1 (the Internet can be reached), 0 (it cannot)
 * @reply    lan1 number  one of: 1 (LAN port 1 has a link), 0 (it has none)
 * @reply    lan2 number  one of: 1 (LAN port 2 has a link), 0 (it has none)
 * @reply    lan3 number  one of: 1 (LAN port 3 has a link), 0 (it has none)
 * @reply    lan4 number  one of: 1 (LAN port 4 has a link), 0 (it has none)
 * @reply    wan number  one of: 1 (the WAN port has a link), 0 (it has none)
 * @reply    operationmode string  system.route.operationmode
 * @reply    connetype string  only in mode "router": system.route.conntype
 * @reply    link number  one of: 1 (the status word says online), 0 (it does not)
 * @reply    ramtotal string  memory in kibibytes
 * @reply    ramfree string  free memory in kibibytes
 * @reply    producttype string  the board's model, "ZELTO" when it has none
 * @reply    smart string  the board's entry "smart", "0" when it has none
 * @reply    lanmac string  MAC address of br-lan
 * @reply    lanip string  IPv4 address of br-lan, empty when it has none
 * @reply    key string  system.route.CloudKey, empty when it cannot be read
 * @reply    server_type string  "1"
 * @reply    ver string  the firmware's version line, as GetFWVersion; empty when it cannot be read
 * @reply    hardwareversion string  "1.0"
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run top -n 1 | grep CPU | grep usr | awk '{print $2}'
 * @effects  run switch reg r 83
 * @effects  run nvram get zelto Model | tr -d '\n'
 * @effects  run nvram get zelto smart | tr -d '\n'
 * @example  {"type":"getrouterinfo"} => {"type":"getrouterinfo","uptime":*,"cpu":*,"downspeed":*,
 *           "upspeed":*,"basicstat":*,"netlink":1,"lan1":*,"lan2":*,"lan3":*,"lan4":*,"wan":1,
 *           "operationmode":"router","connetype":"dhcp","link":1,"ramtotal":*,"ramfree":*,
 *           "producttype":*,"smart":*,"lanmac":*,"lanip":"192.168.10.1","key":*,
 *           "server_type":"1","ver":*,"hardwareversion":"1.0"}
 */
ZELTO_API int bs_GetRouteInfo(const char* request, char* out);

/**
 * The language of the web pages. It is luci.main.lang (up to 15 characters), which is also logged.
 *
 * @command  getlanguage
 * @access   open
 * @reply    language string  one of: en (stored "auto" and "en"), zhcn (stored "zh_cn"), unknown
 * @result   none on success
 * @result   1 wrong or missing "type", or the option cannot be read
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getlanguage"} => {"type":"getlanguage","language":"en"}
 */
ZELTO_API int bs_getLanguage_info(const char* request, char* out);

/**
 * What a companion app needs to pair with the router. Holds the administrator's password in clear.
 *
 * @command  gethostinfo
 * @access   danger
 * @reply    hostname string  the board's model, "ZELTO" when it has none
 * @reply    hostmac string  MAC address of br-lan
 * @reply    hostkey string  system.route.CloudKey, empty when it cannot be read
 * @reply    hostpwd string  system.route.routepwd, empty when it cannot be read
 * @reply    hostmodel string  the firmware version, as GetFWVersion
 * @reply    wlanssid string  system.route.ssid_2g, empty when it cannot be read
 * @reply    hosttype string  "router"
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, traced on the console: "json data is NULL!"
 * @effects  run nvram get zelto Model | tr -d '\n'
 * @example  {"type":"gethostinfo"} => {"type":"gethostinfo","hostname":*,"hostmac":*,"hostkey":*,
 *           "hostpwd":"admin","hostmodel":*,"wlanssid":*,"hosttype":"router"}
 */
ZELTO_API int bs_GetHostInfo(const char* request, char* out);

/**
 * Clock and uptime. Has no row in the command table: call it directly.
 *
 * The reply's "type" is the request's own; without one the reply is {"result":1}.
 *
 * @command  getsystimeinfo
 * @access   read
 * @reply    systime string  local time, "YYYY-MM-DD hh:mm:ss" and a line feed
 * @reply    uptime string  whole seconds
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run date +"%Y-%m-%d %H:%M:%S"
 * @effects  run cat /proc/uptime
 * @example  {"type":"getsystimeinfo"} => {"type":"getsystimeinfo","systime":*,"uptime":*}
 */
ZELTO_API int bs_GetSysTimeInfo(const char* request, char* out);

/* ---- Firmware ------------------------------------------------------------------------------- */

/**
 * The firmware's version.
 *
 * @command  getversion
 * @access   read
 * @reply    version string  the firmware's version line, as GetFWVersion; empty when it cannot be
 *           read
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getversion"} => {"type":"getversion","version":*}
 */
ZELTO_API int bs_SysVersion(const char* request, char* out);

/**
 * Whether there is a newer firmware: starts the firmware's check, and tells what an earlier one has
 * left in /tmp/upgrade.txt. Ask again to see what this check finds.
 *
 * Called directly with the "type" "getstatus", the handler tells the stage of an upgrade: "status"
 * is "download" while /tmp/upgrade_status holds 1, "upgrade" while it holds 2; else "result" is 1.
 *
 * @command  getfirmver
 * @access   read
 * @reply    curver string  last comma-separated field of the version line
 * @reply    lastver string  newest version: second line of /tmp/upgrade.txt, up to 510 characters
 * @reply    content_zh string  empty
 * @reply    content_en string  empty
 * @result   none when a version is known
 * @result   1 wrong or missing "type", or /etc/FW-Version cannot be opened (logged)
 * @result   5 no newer version is known (logged); only "curver" stands before it
 * @unparsed -1, logs "json data is NULL!"
 * @effects  start upgrade check
 * @example  {"type":"getfirmver"} => {"type":"getfirmver","curver":*,"result":5}
 */
ZELTO_API int bs_GetFirmwareVer(const char* request, char* out);

/**
 * Starts the upgrade: sends signal 72 to the system daemon, which downloads and writes the newest
 * firmware. Only kernels for MIPS have a signal of that number; with others the request fails.
 *
 * @command  upgrade
 * @access   danger
 * @reply    result number
 * @result   0 the daemon was told
 * @result   1 wrong or missing "type", the daemon does not run, or it cannot be signalled (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run ps | grep sys_daemon | grep -v grep | awk -F ' ' '{print $1}'
 * @example  {"type":"upgrade"} => {"type":"upgrade","result":1}
 */
ZELTO_API int bs_Upgrade(const char* request, char* out);

/**
 * How far the upgrade is. The system daemon keeps it as a number in /tmp/upgrade_status.
 *
 * The reply's "type" is the request's own; without one the reply is {"result":1}.
 *
 * @command  getupgradestatus
 * @access   read
 * @reply    result number
 * @reply    status string  one of: downing (0, 1 and no number), burning (2), timeout (3), md5_Fail
 *           (4), down_Fail (5); missing when "result" is 1
 * @result   0 the state is known
 * @result   1 wrong or missing "type", or an unknown state
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run cat /tmp/upgrade_status | tr -d '\n'
 * @example  {"type":"getupgradestatus"} => {"type":"getupgradestatus","result":0,
 *           "status":"downing"}
 */
ZELTO_API int bs_GetUpgradeStatus(const char* request, char* out);

/* ---- Maintenance ---------------------------------------------------------------------------- */

/**
 * Restarts the router. The reply is written first; two seconds are left to deliver it.
 *
 * @command  reboot
 * @access   danger
 * @reply    result number
 * @result   0 the router is about to restart
 * @result   1 wrong or missing "type"
 * @unparsed 0, logs "json data is NULL!"
 * @effects  start sleep 2;/etc/init.d/Zelto_Cloud stop;sleep 1;reboot -f &
 * @example  {"type":"reboot"} => {"type":"reboot","result":0}
 */
ZELTO_API int bs_do_reboot(const char* request, char* out);

/**
 * Restores factory settings and restarts. Does not look at the request at all: its handler resets
 * the router whatever it is called with.
 *
 * @command  restore
 * @access   danger
 * @reply    result number
 * @result   0 the router is about to reset
 * @unparsed 0, resets as well
 * @effects  start sleep 2; firstboot -y;/etc/init.d/Zelto_Cloud stop;sleep 1; reboot -f &
 * @example  {"type":"restore"} => {"type":"restore","result":0}
 */
ZELTO_API int bs_do_restore(const char* request, char* out);

/**
 * The administrator's account. Holds the password in clear.
 *
 * @command  getmanpwd
 * @access   danger
 * @reply    routeusr string  system.route.routeusr, empty when unset
 * @reply    routepwd string  system.route.routepwd, empty when unset
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getmanpwd"} => {"type":"getmanpwd","routeusr":"admin","routepwd":"admin"}
 */
ZELTO_API int bs_GetManPwd(const char* request, char* out);

/**
 * Changes the administrator's account: first the password, which becomes that of the system's user
 * root as well, then the name. "result" is 0 even when the store does not take them (logged: "set
 * Password to ... failed!", "set Loginusr to ... failed!").
 *
 * @command  setmanpwd
 * @access   danger
 * @request  routepwd string optional  the new password, at most 127 characters
 * @request  routeusr string optional  the new name, at most 31 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a member that is too long or holds a line break; nothing
 *           is changed then
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.routepwd, run chpasswd.sh root PASSWORD
 * @effects  uci set system.route.routeusr
 * @example  {"type":"setmanpwd","routeusr":"admin","routepwd":"secret"} =>
 *           {"type":"setmanpwd","result":0}
 */
ZELTO_API int bs_SetManPwd(const char* request, char* out);

/**
 * Runs a shell command with the library's privileges, whatever it is, and waits for it.
 *
 * Output is taken in lines, a longer one in pieces of 510 characters, until more than 6000
 * characters have come; what does not fit 6143 characters, or the reply, is cut. NUL bytes are left
 * out.
 *
 * @command  setcmd
 * @access   danger
 * @request  cmd string required  the command; cut at 511 characters
 * @reply    cmd string  the command as it was run
 * @reply    cmdinfo string  its output
 * @result   none on success
 * @result   1 wrong or missing "type", no "cmd" (logged: "json get cmd error!"), or no shell could
 *           be started (logged: "popen for cmd error!")
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run COMMAND
 * @example  {"type":"setcmd","cmd":"echo hello"} =>
 *           {"type":"setcmd","cmd":"echo hello","cmdinfo":"hello\n"}
 */
ZELTO_API int bs_SetCmd(const char* request, char* out);

/**
 * The menu entries of the desktop web pages for the operation mode (system.route.operationmode).
 * Modes that begin with "AP", "repeater" or "wisp" have the menu of these.
 *
 * @command  getfunlist
 * @access   read
 * @reply    list array  the entries in the order of the menu
 * @reply    list[].fun string  an entry's name
 * @result   none on success
 * @result   1 wrong or missing "type", or an unknown mode
 * @unparsed -1
 * @effects  none
 * @example  {"type":"getfunlist"} => {"type":"getfunlist","list":[{"fun":"more_internet"},
 *           {"fun":"more_lan"},{"fun":"more_terminallist"},{"fun":"more_wifi"},{"fun":"adminPass"},
 *           {"fun":"channelSet"},{"fun":"macClone"},{"fun":"restore"},{"fun":"ReBoot"},
 *           {"fun":"BlackList"},{"fun":"advancedDNS"},{"fun":"vpnSet"},{"fun":"pptp_vpnSet"},
 *           {"fun":"forwarding"},{"fun":"ipv6"},{"fun":"dmz"},{"fun":"visitorNet"},
 *           {"fun":"wifiTiming"},{"fun":"upnp"},{"fun":"webadmin"},{"fun":"scheduleRestart"}]}
 */
ZELTO_API int bs_GetFunList(const char* request, char* out);

/**
 * The menu entries of the mobile web pages. As "getfunlist", for modes of exactly these names.
 *
 * @command  getmobilefunlist
 * @access   read
 * @reply    list array  the entries in the order of the menu
 * @reply    list[].fun string  an entry's name
 * @result   none on success
 * @result   1 wrong or missing "type", or an unknown mode
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getmobilefunlist"} => {"type":"getmobilefunlist",
 *           "list":[{"fun":"setup_terminallist"},{"fun":"baby_BlackList"},{"fun":"lan_set"},
 *           {"fun":"wifiSet"},{"fun":"channelSet"},{"fun":"ChangerMode"},{"fun":"VPN_pptp_set"},
 *           {"fun":"VPN_l2tp_set"},{"fun":"pro_term"},{"fun":"outNetSet"},{"fun":"misc_reboot"},
 *           {"fun":"rally_restore"},{"fun":"password"},{"fun":"update"},{"fun":"visitorNet"},
 *           {"fun":"wifiTiming"},{"fun":"upnp"},{"fun":"advancedDNS"},{"fun":"webadmin"},
 *           {"fun":"scheduleRestart"},{"fun":"macClone"},{"fun":"dmz"},{"fun":"ipv6"},
 *           {"fun":"forwarding"}]}
 */
ZELTO_API int bs_GetMobileFunList(const char* request, char* out);

/* ---- Periodic restart and remote management ------------------------------------------------- */

/**
 * The times at which the router restarts of itself. A scheduler of the firmware acts on their list,
 * /etc/periodic_restart_list; a missing one counts as empty.
 *
 * @command  get_periodic_restart
 * @access   read
 * @reply    Switch string  system.route.periodic_restart_switch, "0" when it cannot be read
 * @reply    list array  the times in the order of the list
 * @reply    list[].timing string  time as the scheduler reads it
 * @reply    list[].week string  its days
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"get_periodic_restart"} => {"type":"get_periodic_restart","Switch":*,"list":[]}
 */
ZELTO_API int bs_get_periodic_restart(const char* request, char* out);

/**
 * Adds a restart time, or takes it away wherever it stands. The list must exist. What is in the
 * list is not added again. No scheduler is restarted.
 *
 * @command  periodic_restart_apply
 * @access   change
 * @request  action string required  one of: add, del; anything but "add" takes away
 * @request  timing string required  time as the scheduler reads it, one word of at most 63
 *           characters
 * @request  week string required  its days, likewise; both together at least 5 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", no "action", an entry that cannot stand in the list, or the
 *           list cannot be opened or written (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  to take away: run rm -rf /etc/periodic_restart_list;mv /tmp/periodic_restart_list
 *           /etc/periodic_restart_list
 * @example  {"type":"periodic_restart_apply","action":"add","timing":"03:30","week":"1,3,5"} =>
 *           {"type":"periodic_restart_apply","result":0}
 */
ZELTO_API int bs_periodic_restart_apply(const char* request, char* out);

/**
 * Switches periodic restart on or off. No scheduler is restarted.
 *
 * @command  periodic_restart_switch
 * @access   change
 * @request  Switch string required  one of: 1 (on), 0 (off); stored as it is sent, at most 127
 *           characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", no "Switch", or one that cannot be stored
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.periodic_restart_switch
 * @example  {"type":"periodic_restart_switch","Switch":"1"} =>
 *           {"type":"periodic_restart_switch","result":0}
 */
ZELTO_API int bs_periodic_restart_switch(const char* request, char* out);

/**
 * How the web pages can be reached from the WAN.
 *
 * @command  get_remote_manage
 * @access   read
 * @reply    Switch string  system.route.remote_manage_switch, "0" when it cannot be read
 * @reply    remote_manage_port string  the port in the WAN, at most 7 characters; empty when it
 *           cannot be read
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"get_remote_manage"} => {"type":"get_remote_manage","Switch":"0",
 *           "remote_manage_port":*}
 */
ZELTO_API int bs_get_remote_manage(const char* request, char* out);

/**
 * Opens the web pages to the WAN on the stored port, or closes them. While no port is stored,
 * opening leaves the firewall's rule as it is.
 *
 * @command  remote_manage_switch
 * @access   change
 * @request  Switch string required  one of: 1 (opens), 0 (closes); any number or text but 1 closes;
 *           at most 127 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", no "Switch", or one that cannot be stored
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.remote_manage_switch, uci del firewall.remote_web_manage
 * @effects  to open: uci add firewall.remote_web_manage=redirect, uci set of its options target,
 *           src, dest, src_dport, dest_port and proto
 * @effects  run /etc/init.d/firewall restart &
 * @example  {"type":"remote_manage_switch","Switch":"0"} =>
 *           {"type":"remote_manage_switch","result":0}
 */
ZELTO_API int bs_remote_manage_switch(const char* request, char* out);

/**
 * Sets the port in the WAN that leads to the web pages, and opens it even when remote management is
 * switched off.
 *
 * @command  set_remote_manage
 * @access   change
 * @request  remote_manage_port string required  at most 7 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", no port, an empty one, or one that cannot be stored
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.remote_manage_port, then as "remote_manage_switch" to open
 * @example  {"type":"set_remote_manage","remote_manage_port":"8080"} =>
 *           {"type":"set_remote_manage","result":0}
 */
ZELTO_API int bs_set_remote_manage(const char* request, char* out);

#ifdef __cplusplus
}
#endif
