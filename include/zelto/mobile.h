/**
 * @file mobile.h
 * The cellular modem: what it says of SIM and network, the access point it dials, data accounting.
 * The conventions of zeltoapi.h hold; its @-lines are explained there.
 *
 * The modem daemon writes the modem's kind, a number, to /tmp/mob_type. Kinds 1 to 3 report the
 * signal through AT+CESQ, 4 and 5 through the serving-cell query; any other number, or no file,
 * means that there is no modem to be asked. A modem that does not answer never fails a command:
 * what it was asked for stays empty.
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Rows of `apnlist`. */
#define ZELTO_APN_COUNT 1752

/** What an operator calls its access point. Texts are padded with NULs. */
typedef struct ApnEntry {
  char country[32];       /**< English name; "null" in rows of no particular country */
  char operator_name[64]; /**< as web pages show it */
  char apn[64];           /**< access point name */
  char mccmnc[32];        /**< country and network code, decimal digits */
} ApnEntry;

/**
 * The known operators, grouped by country. A SIM's operator is the first row whose code occurs in
 * its identity, so longer codes stand before those that they begin with.
 */
extern ZELTO_API const ApnEntry apnlist[ZELTO_APN_COUNT];

/**
 * Asks the modem what the status page shows.
 *
 * @param[out] signal         64 bytes: the signal as decimal text, a positive attenuation where
 *                            less is stronger; "0" without modem. A figure that the modem did not
 *                            give counts as 0 before it is converted
 * @param[out] operator_name  64 bytes: name in `apnlist` of the SIM's operator, empty when not
 *                            known
 * @param[out] technology     12 bytes: access technology, the fourth field of the answer to
 *                            AT+COPS?; 11 and 13 are 5G; empty when not known
 * @return 0
 */
ZELTO_API int getmobilebasicinfo(char* signal, char* operator_name, char* technology);

/**
 * SIM, operator and signal.
 *
 * Bars of "rssi" by the signal of getmobilebasicinfo: below 32 "5", 33 to 85 "4", 86 to 95 "3", 96
 * to 105 "2", everything else (32 as well) "1".
 *
 * @command  get4gbasicinfo
 * @access   read
 * @reply    simcardstatus string  one of: 1 (the router is online or the SIM is ready), 0 (neither)
 * @reply    serviceinfo string  the operator: "UNICOM", "CMCC", "CTNET", any other by its name;
 *           "unknow" when there is none
 * @reply    nettype string  one of: 5G, 4G, unknow; the last when not registered
 * @reply    rssi string  bars, one of: 1, 2, 3, 4, 5
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  modem AT+CPIN? unless the router is online
 * @effects  run cat /tmp/mob_type | tr -d '\n'
 * @effects  modem AT+CIMI, and for kinds 1 to 3 modem AT+CESQ and modem AT+COPS?, for kinds 4 and 5
 *           modem AT+COPS? and modem AT+QENG="SERVINGCELL"
 * @example  {"type":"get4gbasicinfo"} => {"type":"get4gbasicinfo","simcardstatus":"1",
 *           "serviceinfo":"unknow","nettype":"unknow","rssi":"5"}
 */
ZELTO_API int bs_Get4gBasicInfo(const char* request, char* out);

/**
 * Whether there is a modem. Has no row in the command table: call it directly.
 *
 * @command  get4gmodulestatus
 * @access   read
 * @reply    module_4Gstatus string  one of: 1 (/dev/ttyUSB1 exists), 0 (it does not)
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"get4gmodulestatus"} => {"type":"get4gmodulestatus","module_4Gstatus":"0"}
 */
ZELTO_API int bs_Get_4Gmodule_status(const char* request, char* out);

/**
 * How the modem dials: the options of mobile.global. Holds the password of the access point in
 * clear.
 *
 * @command  getapninfo
 * @access   read
 * @reply    authtype string  "0" when unset
 * @reply    apn string  access point name
 * @reply    username string  for the access point
 * @reply    passwd string  for the access point
 * @reply    iptype string  "0" when unset
 * @reply    profileName string  the profile's name (option apnprofile)
 * @reply    nettype string  "0" when unset
 * @reply    enable string  "0" when unset
 * @reply    simcardstatus string  one of: 1, 0; as "get4gbasicinfo"
 * @reply    serviceinfo string  as "get4gbasicinfo"
 * @reply    modlever string  the modem's firmware revision; empty when it gives none
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  as "get4gbasicinfo", then modem ATI
 * @example  {"type":"getapninfo"} => {"type":"getapninfo","authtype":*,"apn":*,"username":*,
 *           "passwd":*,"iptype":*,"profileName":*,"nettype":*,"enable":*,"simcardstatus":"1",
 *           "serviceinfo":"unknow","modlever":""}
 */
ZELTO_API int bs_Get_apn_info(const char* request, char* out);

/**
 * Sets how the modem dials, and dials anew. A member that is missing empties its option.
 *
 * @command  setapninfo
 * @access   change
 * @request  authtype string optional  at most 31 characters
 * @request  apn string optional  access point name, at most 63 characters
 * @request  username string optional  at most 63 characters
 * @request  passwd string optional  at most 63 characters
 * @request  iptype string optional  at most 31 characters
 * @request  profileName string optional  at most 63 characters
 * @request  nettype string optional  at most 31 characters
 * @request  enable string optional  at most 11 characters
 * @reply    result number
 * @result   0 stored
 * @result   1 wrong or missing "type", or a member that is too long or holds a line break; nothing
 *           is stored then
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set mobile.global.authtype, apn, username, passwd, iptype, apnprofile, nettype and
 *           enable
 * @effects  start /etc/init.d/mob_daemon restart &
 * @example  {"type":"setapninfo","authtype":"0","apn":"cmnet","iptype":"0","profileName":"home",
 *           "nettype":"0","enable":"1"} => {"type":"setapninfo","result":0}
 */
ZELTO_API int bs_Set_apn_info(const char* request, char* out);

/**
 * The monthly data allowance and the traffic so far. The modem daemon counts the latter.
 *
 * The allowance is read from mobile.action.monthlypackage, which is not the option that
 * "set4gflowassistant" writes.
 *
 * @command  get4gflowassistant
 * @access   read
 * @reply    Switch number  one of: 1 (mobile.action.flowswitch begins with "1"), 0 (it does not)
 * @reply    MonthlyPackage string  at most 31 characters; "0" when unset
 * @reply    MonUp string  bytes sent: sum of the options monup and curup
 * @reply    MonDown string  bytes received: sum of the options mondown and curdown
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"get4gflowassistant"} => {"type":"get4gflowassistant","Switch":*,
 *           "MonthlyPackage":*,"MonUp":*,"MonDown":*}
 */
ZELTO_API int bs_get_4gflowassistant(const char* request, char* out);

/**
 * Switches the data assistant and stores the allowance. The options are mobile.action.flowswitch
 * and mobile.action.MonthlyPackage. A member that is missing empties its option.
 *
 * @command  set4gflowassistant
 * @access   change
 * @request  Switch string optional  one of: 1 (on), 0 (off); stored as it is sent, at most 63
 *           characters
 * @request  MonthlyPackage string optional  as the web page counts it; at most 63 characters
 * @reply    result number
 * @result   0 stored
 * @result   1 wrong or missing "type", or a member that is too long or holds a line break; nothing
 *           is stored then
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set mobile.action.flowswitch and mobile.action.MonthlyPackage
 * @example  {"type":"set4gflowassistant","Switch":"1","MonthlyPackage":"10240"} =>
 *           {"type":"set4gflowassistant","result":0}
 */
ZELTO_API int bs_set_4gflowassistant(const char* request, char* out);

#ifdef __cplusplus
}
#endif
