/**
 * @file fields.h
 * The words of web pages and those of the stores: value translation, and the WAN and LAN settings
 * by field name. The conventions of zeltoapi.h hold.
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Bytes of a text in the tables below, NUL padding included. */
#define ZELTO_FIELD_TEXT_SIZE 40

/** Rows of `cmd_str` and of `cmd_convert`. */
#define ZELTO_TRANSLATION_COUNT 36
#define ZELTO_FIELD_COUNT 18

/** Bytes that the reader of a field may write, its NUL included. */
#define ZELTO_FIELD_VALUE_SIZE 128

/** One value in both spellings. */
typedef struct TranslationRow {
  char field[ZELTO_FIELD_TEXT_SIZE];  /**< the setting it belongs to */
  char web[ZELTO_FIELD_TEXT_SIZE];    /**< as web pages write it */
  char stored[ZELTO_FIELD_TEXT_SIZE]; /**< as configuration and driver write it */
} TranslationRow;

/** All translations; the first row that matches wins. May be written to. No terminating row. */
extern ZELTO_API TranslationRow cmd_str[ZELTO_TRANSLATION_COUNT];

/**
 * Translates a value from the web spelling to the stored one, or back, by `cmd_str`.
 *
 * Comparison is exact. A value without a row for the field stays as it is, and the caller cannot
 * tell; nor can a null argument.
 *
 * @param[in]     field  the setting, such as "wlanpswmode"
 * @param[in,out] value  the value; at least ZELTO_FIELD_TEXT_SIZE bytes
 * @return 0
 */
ZELTO_API int translate_cmd(const char* field, char* value);
ZELTO_API int translate_lcmd(const char* field, char* value);

/** One field: its web name, the key it stands for, and the functions that serve the key. */
typedef struct FieldRow {
  char web_field[ZELTO_FIELD_TEXT_SIZE];
  char config_key[ZELTO_FIELD_TEXT_SIZE];
  int (*getter)(const char* key, char* output);      /**< null: cannot be read */
  int (*setter)(const char* key, const char* value); /**< null: cannot be written */
  int (*validator)(const char* value);               /**< 0 refuses the value; null: none */
  int (*after_failed_set)(const char* key, const char* value); /**< see zelto_set_config */
} FieldRow;

/**
 * All fields. May be written to: every call walks it, and each of its columns counts. No
 * terminating row.
 *
 *   lan_mac, wan_mac            MAC address of br-lan and of eth0.2; read only
 *   wanmode                     network.wan.proto, see zelto_set_general_cfg
 *   wanip, wanmsk, wangw        network.wan.ipaddr, .netmask, .gateway
 *   dns1, dns2                  first and second word of network.wan.dns
 *   mtu                         network.wan.mtu
 *   pppoename, pppoepsw         network.wan.username, .password
 *   server_name                 network.wan.service
 *   lanip, lanmsk               network.lan.ipaddr, .netmask
 *   landhcp                     dhcp.lan.ignore: read raw ("1": server off), written inverted
 *                               ("1": server on)
 *   startip, endip              dhcp.lan.start, .limit
 *   version                     first line of /etc/FW-Version; read only
 */
extern ZELTO_API FieldRow cmd_convert[ZELTO_FIELD_COUNT];

/**
 * Reads a field by its web name.
 *
 * @param[in]  web_field  such as "wanip"
 * @param[out] output     ZELTO_FIELD_VALUE_SIZE bytes
 * @return what the row's reader returns; -1 when the field cannot be read; 0 when no row has the
 *         name (output untouched)
 */
ZELTO_API int zelto_get_config(const char* web_field, char* output);

/**
 * Writes a field by its web name. Nothing is restarted.
 *
 * A value that the row's validator refuses is logged ("<field>: Parameters invalid"). When the
 * write fails and the row has a function for that case ("lanip" has), the function is called and
 * the failure counts as success.
 *
 * @param[in] web_field  such as "wanip"
 * @param[in] value      at most 127 characters, without line break
 * @retval 0   written, or no row has the name
 * @retval -1  the field cannot be written, the value was refused or the write failed
 */
ZELTO_API int zelto_set_config(const char* web_field, const char* value);

/**
 * Reads a configuration key from the UCI store.
 *
 * A failed read is logged ("get <key> failed!", but for "dhcpEnabled") and gives the key's default:
 * "1480" for "MTUpppoevalue", "255.255.255.0" for "lan_netmask", "0" for "dhcpEnabled", else the
 * empty text. An unknown key is logged ("unknown get name:<key>") and gives "unknown".
 *
 * @param[in]  key     "wanConnectionMode", "wan_ipaddr", "wan_netmask", "wan_gateway",
 *                     "wan_primary_dns", "wan_secondary_dns", "MTUpppoevalue", "wan_pppoe_user",
 *                     "wan_pppoe_pass", "wan_pppoe_server", "lan_ipaddr", "lan_netmask",
 *                     "dhcpEnabled", "dhcpStart" or "dhcpEnd"
 * @param[out] output  ZELTO_FIELD_VALUE_SIZE bytes; a longer stored value is cut at 127 characters
 * @return 0
 */
ZELTO_API int zelto_get_general_cfg(const char* key, char* output);

/**
 * Writes a configuration key to the UCI store. A failure is logged, mostly as "set <key> to <value>
 * failed!".
 *
 * "wanConnectionMode" takes the stored spellings "DHCP", "STATIC" and "PPPOE" only; any other value
 * changes nothing and returns 0. "wan_secondary_dns" adds a word to the resolvers that are there,
 * "wan_primary_dns" replaces them all. "dhcpEnabled" turns the DHCP server on for "1" and off for
 * anything else.
 *
 * @param[in] key    as for zelto_get_general_cfg, and "Password" and "Loginusr" (the account of
 *                   the web pages)
 * @param[in] value  at most 127 characters, without line break
 * @retval 0   written
 * @retval -1  the write failed, the value does not fit, or the key is unknown
 */
ZELTO_API int zelto_set_general_cfg(const char* key, const char* value);

/**
 * Called when the LAN address could not be written: passes it on under the keys "dhcpPriDns" and
 * "dhcpGateway". Firmwares without such keys, and this one is, only get two log lines.
 *
 * @param[in] key    the key whose write failed
 * @param[in] value  the value that was to be written
 * @retval 0   the key is "lan_ipaddr"
 * @retval -1  it is not; nothing was done
 */
ZELTO_API int write_lan_ip_dep(const char* key, const char* value);

/**
 * Reads the hardware address of a network interface from the kernel.
 *
 * @param[in]  interface  name, at most 15 characters
 * @param[out] output     18 bytes: six upper-case hexadecimal pairs joined by colons, and a NUL
 * @retval 0   read
 * @retval -1  no such interface; output untouched
 */
ZELTO_API int zelto_get_general_mac(const char* interface, char* output);

/**
 * Reads the firmware's version text: the first line of /etc/FW-Version.
 *
 * @param[in]  key     not looked at; the function has the form of a field's reader
 * @param[out] output  50 bytes; a longer line is cut at 49 characters
 * @retval 0  read
 * @retval 1  the file cannot be opened; logged, output untouched
 */
ZELTO_API int GetFWVersion(const char* key, char* output);

#ifdef __cplusplus
}
#endif
