/**
 * @file access.h
 * Attached devices, and what they may do: parental control, blacklist, aliases. The conventions of
 * zeltoapi.h hold; its @-lines are explained there.
 *
 * Lists. Each is a text file of one record a line. Every change holds one lock for all lists of the
 * library (/etc/zelto_list_lock_file) from reading to replacing, so requests at once lose nothing
 * of each other. A record that its reader could not read back, or with a line break, is refused:
 * "result" 1, one log line, nothing changed. Readers take the last character of each line for its
 * end; a change of the list keeps that of an unended line (but for parental rules).
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Devices -------------------------------------------------------------------------------- */

/**
 * The attached devices. They are read from /tmp/terminal_list, under the lock that its writer takes
 * (/etc/terminal_lock_file).
 *
 * @command  getterminallist
 * @access   read
 * @reply    ver string  always "2", also in a failure
 * @reply    list array  the devices in the order of the file. Empty when there is no file (logged).
 *           What does not fit the reply is left out, and logged
 * @reply    list[].ip string
 * @reply    list[].mac string
 * @reply    list[].upspeed string
 * @reply    list[].downspeed string
 * @reply    list[].totalup string
 * @reply    list[].totaldl string
 * @reply    list[].link_time string  time connected, "1-2:3:4" or "2:3:4"; days begin again after a
 *           month
 * @reply    list[].link_type string  one of: 0 (wire), 1 (2.4 GHz), 2 (5 GHz), ""; empty for any
 *           other
 * @reply    list[].name string
 * @reply    list[].ostype string  empty
 * @reply    list[].sign string  "0"
 * @result   none on success
 * @result   1 wrong or missing "type", or the lock cannot be had
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"getterminallist"} => {"type":"getterminallist","ver":"2","list":[]}
 */
ZELTO_API int bs_GetTerminalList(const char* request, char* out);

/**
 * Counts the attached devices by medium.
 *
 * @command  getclientnum
 * @access   read
 * @reply    cable number  by wire
 * @reply    _2g number  by 2.4 GHz
 * @reply    _5g number  by 5 GHz
 * @result   none on success
 * @result   1 wrong or missing "type", or as get_client_num fails
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getclientnum"} => {"type":"getclientnum","result":1}
 */
ZELTO_API int bs_ClientNum_info(const char* request, char* out);

/**
 * Counts the attached devices by medium. Other interfaces than eth0, ra0, ra1, rai0 and rai1 count
 * nowhere.
 *
 * @param[in,out] cable   grows by those on eth0
 * @param[in,out] wifi2g  grows by those on ra0 and ra1
 * @param[in,out] wifi5g  grows by those on rai0 and rai1
 * @retval 1  counted
 * @retval 0  the lock cannot be had (said on standard error when it is refused), or the list cannot
 *            be opened (logged, "open file terminal_list failed!")
 */
ZELTO_API int get_client_num(int* cable, int* wifi2g, int* wifi5g);

/**
 * The wireless stations. They are read from /tmp/wifi_list, under a lock on the file. Has no row in
 * the command table: call it directly. The reply's "type" is the request's own.
 *
 * @command  getwifistainfo
 * @access   read
 * @reply    list array  the devices; empty when there is no file (logged, "open file:wifi_list
 *           failed")
 * @reply    list[].mac string
 * @reply    list[].devname string
 * @reply    num string  how many; left out when there is no file
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getwifistainfo"} => {"type":"getwifistainfo","list":[]}
 */
ZELTO_API int bs_GetWiFiStaInfo(const char* request, char* out);

/**
 * The devices of /tmp/terminal_list that are not on the wire. Has no row in the command table: call
 * it directly. The reply's "type" is the request's own.
 *
 * @command  getcurstainfo
 * @access   read
 * @reply    list array  the devices; empty when there is no file (logged, "open file:terminal_list
 *           failed")
 * @reply    list[].mac string
 * @reply    list[].devname string
 * @reply    num string  how many; left out when there is no file
 * @result   none on success
 * @result   1 wrong or missing "type", or the lock cannot be had (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getcurstainfo"} => {"type":"getcurstainfo","list":[]}
 */
ZELTO_API int bs_GetCurStaInfo(const char* request, char* out);

/* ---- Parental control ----------------------------------------------------------------------- */

/**
 * The parental rules and their switch. The rules are those of /etc/parental_list.
 *
 * @command  getparentalinfo
 * @access   read
 * @reply    Switch string  one of: on, off; off when system.route.parental_switch is 0 or cannot be
 *           read
 * @reply    list array  the rules in the order of the file; empty when there is no file. What does
 *           not fit the reply is left out, and logged
 * @reply    list[].alias string  the rule's name
 * @reply    list[].devname string  the device's name
 * @reply    list[].mac string  the device
 * @reply    list[].accesstime string  start and stop time, joined by "-"
 * @reply    list[].day string  digits of the days, "1" Monday to "7" Sunday
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"getparentalinfo"} => {"type":"getparentalinfo","Switch":"off","list":[]}
 */
ZELTO_API int bs_GetParentalInfo(const char* request, char* out);

/**
 * Adds, changes or removes a parental rule. Rules of the names "alias" and "alias_old" are removed
 * first. The firewall is not touched: see parental_switch_on.
 *
 * Words hold at most 23 characters, an alias 189 bytes, a device's name 255 of which blanks become
 * "_", the whole line 318.
 *
 * @command  setparentalinfo
 * @access   change
 * @request  cfg_type string required  one of: add, del; anything but "add" only removes
 * @request  alias string required to add  the rule's name, at most 189 bytes
 * @request  alias_old string optional  the name it had before
 * @request  devname string optional  the device's name, at most 255 characters; "unknow" when empty
 * @request  mac string required to add  the device, at most 23 characters
 * @request  accesstime string required to add  start and stop time, joined by "-", at most 23
 *           characters
 * @request  day string required to add  digits of the days, "1" Monday to "7" Sunday
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", no "cfg_type", a rule that is refused; or the list cannot be
 *           rewritten or added to (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  twice run mv /tmp/parental_list /etc/parental_list
 * @example  {"type":"setparentalinfo","cfg_type":"add","alias":"school nights","devname":"tablet",
 *           "mac":"02:AA:00:00:00:03","accesstime":"16:00-20:00","day":"12345"} =>
 *           {"type":"setparentalinfo","result":0}
 */
ZELTO_API int bs_SetParentalInfo(const char* request, char* out);

/**
 * Stores the switch of parental control. The firewall is not touched.
 *
 * @command  setparentalswitch
 * @access   change
 * @request  Switch string required  one of: on, off; anything but "on" is off
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or no "Switch"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.parental_switch
 * @example  {"type":"setparentalswitch","Switch":"on"} => {"type":"setparentalswitch","result":0}
 */
ZELTO_API int bs_SetParentalSwitch(const char* request, char* out);

/** Stores the switch: "on", or anything else for off. @return 0, or -1 when that failed */
ZELTO_API int set_parental_state(const char* state);

/**
 * Looks for a rule in the list.
 *
 * @param[in] alias  in base64, as the list has it
 * @retval 1  there is one
 * @retval 0  there is none, or the list cannot be opened (logged)
 */
ZELTO_API int parental_name_exist(const char* alias);

/**
 * Removes the rules of a name from the list.
 *
 * @param[in] alias  in base64, as the list has it
 * @retval 1  the list was rewritten
 * @retval 0  it could not be (logged)
 */
ZELTO_API int parental_name_del(const char* alias);

/**
 * Makes the firewall's sections of all rules: parental_accept0, 1, ... one a rule, and
 * parental_reject0, 1, ... one a device. To be called by what applies the firewall's configuration,
 * as are all functions below. Only logs when the list cannot be opened.
 */
ZELTO_API void parental_switch_on(void);

/** Removes the sections of all rules. Only logs when the list cannot be opened. */
ZELTO_API void parental_switch_off(void);

/** Finds a section for a new rule. @return the lowest n for which there is no parental_acceptN */
ZELTO_API int get_new_parental_accept_id(void);

/**
 * Removes the first of parental_accept0 to parental_accept32 that carries a name; gaps do not
 * matter.
 *
 * @param[in] alias  in base64
 */
ZELTO_API void del_parental_accept_mac(const char* alias);

/**
 * Adds a device to the rejected ones: writes them all to /tmp/parental_reject_mac, the new one last
 * unless it is there, and removes their sections. set_parental_reject_list makes the sections
 * again, numbered from 0, and removes the file. The sections end at the first number that is
 * missing.
 *
 * @param[in] mac  the device, at most 23 characters
 */
ZELTO_API void handle_parental_reject_mac(const char* mac);
ZELTO_API void set_parental_reject_list(void);

/**
 * Removes a device from the rejected ones, its first section only: as above, by way of
 * /tmp/parental_reject_mac_del.
 *
 * @param[in] mac  the device
 */
ZELTO_API void del_parental_reject_mac(const char* mac);
ZELTO_API void set_parental_reject_list_del(void);

/**
 * Removes a device from the rejected ones when no rule of the list is about it any more.
 *
 * @param[in] mac  the device
 */
ZELTO_API void deal_with_parental_reject_mac(const char* mac);

/**
 * Notes a device in /tmp/record_set_mac, looks for it there, and makes reject sections of all noted
 * ones, removing the file.
 *
 * @param[in] mac  the device
 * @return find_set_mac: 1 when some line contains the text, else 0
 */
ZELTO_API void record_set_mac(const char* mac);
ZELTO_API int find_set_mac(const char* mac);
ZELTO_API void set_parental_reject_list_on(void);

/* ---- Blacklist ------------------------------------------------------------------------------ */

/**
 * The devices that are cut off. They are those of /etc/blacklist.
 *
 * @command  getblacklist
 * @access   read
 * @reply    list array  the devices in the order of the file; empty when there is no file
 * @reply    list[].mac string  the device
 * @reply    list[].name string  its name, the first word of it
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"getblacklist"} => {"type":"getblacklist","list":[]}
 */
ZELTO_API int bs_GetBlackList(const char* request, char* out);

/**
 * Cuts a device off, or lets it in again: in /etc/blacklist, at once, and in /etc/firewall.user, so
 * that it stays when the firewall restarts.
 *
 * An address is one word of at most 23 printable characters. Devices are found by a part of their
 * address: letting in removes every entry that contains the text. The user's own lines of
 * /etc/firewall.user stay as they are.
 *
 * @command  setmacblack
 * @access   change
 * @request  mac string required  the device, at most 23 printable characters
 * @request  enable string|number required  one of: 1 (cuts off), 0 (lets in); as text or number,
 *           anything but 1 lets in
 * @request  devname string optional  its name; "unknow" when empty
 * @reply    result number
 * @result   0 done; letting in always is
 * @result   1 wrong or missing "type", a missing or refused member; or a file cannot be added to
 *           (logged)
 * @result   2 some entry contains the address already
 * @result   3 there are 32 entries already
 * @unparsed -1, logs "json data is NULL!"
 * @effects  letting in: run mv /tmp/blacklist /etc/blacklist, run mv /tmp/firewall.user
 *           /etc/firewall.user
 * @effects  run iptables -t filter -I FORWARD -m mac --mac-source MAC -m comment --comment
 *           blacklist -j DROP (-D to let in), and the same on INPUT
 * @example  {"type":"setmacblack","mac":"02:AA:00:00:00:02","enable":"1","devname":"phone"} =>
 *           {"type":"setmacblack","result":0}
 */
ZELTO_API int bs_SetMacBlack(const char* request, char* out);

/**
 * Looks for a device in the blacklist.
 *
 * @param[in] mac  text that its line contains
 * @retval 1   there is one
 * @retval 0   there is none
 * @retval -1  the list cannot be opened (logged, "fopen /etc/blacklist failed!")
 */
ZELTO_API int find_mac_from_blacklist(const char* mac);

/** Counts the blacklist's entries. @return the count; 0 when it cannot be opened (logged) */
ZELTO_API int get_blacklist_num(void);

/**
 * Removes the entries of a device from the blacklist, or our rules for it from /etc/firewall.user.
 *
 * @param[in] mac  text that the lines contain; the empty text removes nothing
 * @retval 1  the file was rewritten
 * @retval 0  it could not be (logged), or the text is empty
 */
ZELTO_API int del_mac_from_blacklist(const char* mac);
ZELTO_API int del_mac_from_firewall(const char* mac);

/* ---- Aliases -------------------------------------------------------------------------------- */

/**
 * Gives a device a friendly name. It is kept in /etc/mac_alias_list.
 *
 * @command  setalias
 * @access   change
 * @request  mac string required  the device, one word of at most 23 characters
 * @request  alias string required  the name; blanks are kept
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", a missing or refused member; or the list cannot be rewritten
 *           or added to (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run mv /tmp/mac_alias_list /etc/mac_alias_list
 * @example  {"type":"setalias","mac":"02:AA:00:00:00:03","alias":"kitchen tablet"} =>
 *           {"type":"setalias","result":0}
 */
ZELTO_API int bs_SetAlias(const char* request, char* out);

/**
 * Removes the alias of a device.
 *
 * @param[in] mac  the device, compared exactly
 * @retval 1  the list was rewritten
 * @retval 0  it could not be (logged)
 */
ZELTO_API int alias_name_del(const char* mac);

#ifdef __cplusplus
}
#endif
