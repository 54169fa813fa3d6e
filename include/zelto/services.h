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
 * The speed limits of devices, from /etc/qos_limit_list.
 *
 * @command  getqos
 * @access   read
 * @request  MAC string required  a device, compared exactly, or "ALL"
 * @reply    list array  for "ALL": objects, all members strings: MAC, Up_Speed, Dl_Speed
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
 * @request  IP string required to limit  its address, likewise
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

#ifdef __cplusplus
}
#endif
