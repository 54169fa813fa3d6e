/**
 * @file wireless.h
 * The 2.4 GHz and the 5 GHz radio: names, security, switches, channels, guest networks, transmit
 * power, mode and schedule. The conventions of zeltoapi.h hold; its @-lines are explained there.
 *
 * Three stores. system.route keeps what the user chose and what pages show. The drivers' profiles
 * ("wifi 2.4G", "wifi 5G" in the effects; KEY[0] is the main, KEY[1] the guest network's element)
 * hold what is on the air. The firmware's wifi_setup.sh makes a radio load its profile. Driver
 * writes are not checked.
 *
 * A network that is off keeps its name in system.route only; in the profile it has a placeholder of
 * 32 hexadecimal characters and is hidden. While the schedule has switched Wi-Fi off
 * (system.route.wifi_schedule_set_wifi_disable is anything but "0"), switches change system.route
 * only.
 *
 * SSIDs and passphrases hold any characters but line breaks, at most 99 bytes; flags at most 7,
 * without semicolon. A request with another one is refused whole: "result" 1, one log line, nothing
 * stored.
 *
 * Security modes and the driver's keys, in the order written:
 *   mode             AuthMode        EncrypType  RekeyMethod  PMFMFPC  PMFMFPR
 *   open             OPEN            NONE        DISABLE      0        0
 *   wpa2             WPA2PSK         AES         TIME         0        0
 *   wpa3             WPA3PSK         AES         TIME         1        1
 *   wpawpa2-tkipaes  WPAPSKWPA2PSK   TKIPAES     TIME         0        0 (PMFMFPR first)
 *   wpawpa2          WPAPSKWPA2PSK   AES         TIME         0        0
 *   wpa2wpa3         WPA2PSKWPA3PSK  AES         TIME         1        0
 * Any other mode writes nothing. Modes and ciphers are read back through the rows "wlanpswmode" and
 * "wlanpswencry" of cmd_str, for both radios.
 *
 * Power levels 0, 1 and 2 are TxPower 40, 60 and 100 with PERCENTAGEenable 1, 1 and 0.
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Both radios at once -------------------------------------------------------------------- */

/**
 * Both radios' main networks.
 *
 * @command  getwlancfgall
 * @access   read
 * @reply    dualSwitch string  "1" when the 5 GHz radio follows the other one; "0" when unset
 * @reply    configurations array  two objects, 2.4 GHz first
 * @reply    configurations[].radio string  one of: 2.4G, 5G
 * @reply    configurations[].enable number  1 on, 0 off
 * @reply    configurations[].wlanssid string
 * @reply    configurations[].wlanpswencry string  cipher
 * @reply    configurations[].wlanpswmode string  security mode
 * @reply    configurations[].wlanpsw string  passphrase
 * @reply    configurations[].ssidhide number  1 hidden, 0 visible
 * @reply    configurations[].power number  power level; left out for a power that is none of the
 *           levels
 * @result   none on success
 * @result   1 wrong or missing "type"; or a driver's key cannot be read (logged, "lib_conf_get_2G
 *           <key> failed!"): no "configurations"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getwlancfgall"} => {"type":"getwlancfgall","dualSwitch":"0","configurations":[
 *           {"radio":"2.4G","enable":1,"wlanssid":"ZELTO-2.4G","wlanpswencry":"aes",
 *           "wlanpswmode":"wpawpa2","wlanpsw":"zelto12345","ssidhide":0,"power":2},
 *           {"radio":"5G","enable":1,"wlanssid":"ZELTO-5G","wlanpswencry":"aes",
 *           "wlanpswmode":"wpawpa2","wlanpsw":"zelto12345","ssidhide":0,"power":2}]}
 */
ZELTO_API int bs_GetWifiInfoAll(const char* request, char* out);

/**
 * Changes both radios' main networks: what is sent, and nothing else.
 *
 * An SSID goes to the driver only while its radio is on. With "dualSwitch" "1" the 5 GHz radio
 * takes over the other one's hidden flag, and its switch when an SSID was sent and the switches
 * differ: a radio whose SSID was not sent counts as having none.
 *
 * @command  setwlancfgall
 * @access   change
 * @request  dualSwitch string optional  one of: 1 (the 5 GHz radio follows the 2.4 GHz radio), 0
 *           (it does not); at most 7 characters
 * @request  wlanssid string optional  2.4 GHz SSID, at most 99 bytes
 * @request  wlanpsw string optional  2.4 GHz passphrase, at most 99 bytes
 * @request  power number optional  2.4 GHz power level, one of: 0 (40 %), 1 (60 %), 2 (100 %)
 * @request  wlanpswmode string optional  2.4 GHz security mode, one of: open, wpa2, wpa3,
 *           wpawpa2-tkipaes, wpawpa2, wpa2wpa3
 * @request  wlanssid_5 string optional  5 GHz SSID, at most 99 bytes
 * @request  wlanpsw_5 string optional  5 GHz passphrase, at most 99 bytes
 * @request  power_5 number optional  5 GHz power level, one of: 0 (40 %), 1 (60 %), 2 (100 %)
 * @request  wlanpswmode_5 string optional  5 GHz security mode, one of: open, wpa2, wpa3,
 *           wpawpa2-tkipaes, wpawpa2, wpa2wpa3
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a value that is refused
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.dualSwitch
 * @effects  for 2.4 GHz, then 5 GHz: uci set system.route.ssid_2g (ssid_5g), wifi set SSID1,
 *           WPAPSK1, the keys of the power level, the keys of the security mode
 * @effects  after the reply, coupled: uci set system.route.hidden_5g, wifi 5G set HideSSID[0], run
 *           iwpriv rai0 set HideSSID="FLAG"; uci set system.route.switch_5g, wifi 5G set
 *           WIFIEnable[0], SSID1, HideSSID[0]
 * @effects  after the reply: start wifi_setup.sh wifi_master_arguments all &; coupled and switched:
 *           start wifi_setup.sh wifi_master_arguments 2.4G;wifi_setup.sh wifi_master_enable 5.8G &
 *           or wifi_setup.sh wifi_master_disable 5.8G &, nothing while the schedule holds Wi-Fi off
 * @example  {"type":"setwlancfgall","wlanssid":"Home","wlanpswmode":"wpa3","power":1} =>
 *           {"type":"setwlancfgall","result":0}
 */
ZELTO_API int bs_SetWifiAll(const char* request, char* out);

/* ---- One radio's main network --------------------------------------------------------------- */

/**
 * The 2.4 GHz radio's main network.
 *
 * @command  getwlancfg
 * @access   read
 * @reply    wlanssid string  SSID as the user chose it
 * @reply    wlanpswencry string  cipher
 * @reply    wlanpswmode string  security mode; empty, like all here, when it cannot be read
 * @reply    wlanpsw string  passphrase
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed 0, not logged
 * @effects  none
 * @example  {"type":"getwlancfg"} => {"type":"getwlancfg","wlanssid":"ZELTO-2.4G",
 *           "wlanpswencry":"aes","wlanpswmode":"wpawpa2","wlanpsw":"zelto12345"}
 */
ZELTO_API int bs_GetWlanCfg(const char* request, char* out);

/**
 * The 5 GHz radio's main network. As "getwlancfg", in another order.
 *
 * @command  get5wlancfg
 * @access   read
 * @reply    wlan5ssid string  SSID
 * @reply    wlan5psw string  passphrase
 * @reply    wlan5pswencry string  cipher
 * @reply    wlan5pswmode string  security mode
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed 0, not logged
 * @effects  none
 * @example  {"type":"get5wlancfg"} => {"type":"get5wlancfg","wlan5ssid":"ZELTO-5G",
 *           "wlan5psw":"zelto12345","wlan5pswencry":"aes","wlan5pswmode":"wpawpa2"}
 */
ZELTO_API int bs_Get5WlanCfg(const char* request, char* out);

/**
 * Changes the 2.4 GHz radio's main network. The mode "wpawpa2-tkipaes" is not known here. A request
 * without "type" gets no reply.
 *
 * @command  setwlancfg
 * @access   change
 * @request  wlanssid string optional  SSID, at most 99 bytes; goes to the driver only while the
 *           radio is on
 * @request  wlanpswmode string optional  security mode, one of: open, wpa2, wpa3, wpawpa2, wpa2wpa3
 * @request  wlanpsw string optional  passphrase, at most 99 bytes
 * @reply    result number
 * @result   0 done
 * @result   1 wrong "type", or a value that is refused
 * @unparsed 0, not logged
 * @effects  uci set system.route.ssid_2g, wifi 2.4G set SSID1; the keys of the mode; WPAPSK1
 * @effects  after the reply: start wifi_setup.sh wifi_master_arguments 2.4G &
 * @example  {"type":"setwlancfg","wlanssid":"Home"} => {"type":"setwlancfg","result":0}
 */
ZELTO_API int bs_SetWlanCfg(const char* request, char* out);

/**
 * Changes the 5 GHz radio's main network. As "setwlancfg".
 *
 * @command  set5wlancfg
 * @access   change
 * @request  wlan5ssid string optional  SSID, at most 99 bytes; goes to the driver only while the
 *           radio is on
 * @request  wlan5pswmode string optional  security mode, one of: open, wpa2, wpa3, wpawpa2,
 *           wpa2wpa3
 * @request  wlan5psw string optional  passphrase, at most 99 bytes
 * @reply    result number
 * @result   0 done
 * @result   1 wrong "type", or a value that is refused
 * @unparsed 0, not logged
 * @effects  uci set system.route.ssid_5g, wifi 5G set SSID1; the keys of the mode; WPAPSK1
 * @effects  after the reply: start wifi_setup.sh wifi_master_arguments 5.8G &
 * @example  {"type":"set5wlancfg","wlan5psw":"much better"} => {"type":"set5wlancfg","result":0}
 */
ZELTO_API int bs_Set5WlanCfg(const char* request, char* out);

/**
 * Whether the 2.4 GHz radio is on.
 *
 * @command  getswitchwifi
 * @access   read
 * @reply    radioon number  one of: 1 (on: the driver's WIFIEnable[0] is 1), 0 (off)
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed 0, not logged
 * @effects  none
 * @example  {"type":"getswitchwifi"} => {"type":"getswitchwifi","radioon":1}
 */
ZELTO_API int bs_GetWifiStat(const char* request, char* out);

/**
 * Whether the 5 GHz radio is on. As "getswitchwifi".
 *
 * @command  get5switchwifi
 * @access   read
 * @reply    radioon number  one of: 1 (on: the driver's WIFIEnable[0] is 1), 0 (off)
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed 0, not logged
 * @effects  none
 * @example  {"type":"get5switchwifi"} => {"type":"get5switchwifi","radioon":1}
 */
ZELTO_API int bs_Get5WifiStat(const char* request, char* out);

/**
 * Switches the 2.4 GHz radio, which ends the coupling of the radios. Returns -1 when "radioon" is
 * missing.
 *
 * @command  setswitchwifi
 * @access   change
 * @request  radioon number required  one of: 0 (off), 1 (on)
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or no "radioon"
 * @unparsed 0, not logged
 * @effects  uci set system.route.switch_2g, system.route.dualSwitch=0
 * @effects  unless the schedule holds Wi-Fi off: wifi 2.4G set WIFIEnable[0], SSID1, HideSSID[0]
 * @effects  likewise, before the reply: start wifi_setup.sh wifi_master_enable 2.4G & (or
 *           wifi_master_disable)
 * @example  {"type":"setswitchwifi","radioon":0} => {"type":"setswitchwifi","result":0}
 */
ZELTO_API int bs_SetWifiStat(const char* request, char* out);

/**
 * Switches the 5 GHz radio. As "setswitchwifi".
 *
 * @command  set5switchwifi
 * @access   change
 * @request  radioon number required  one of: 0 (off), 1 (on)
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or no "radioon"
 * @unparsed 0, not logged
 * @effects  uci set system.route.switch_5g, system.route.dualSwitch=0
 * @effects  unless the schedule holds Wi-Fi off: wifi 5G set WIFIEnable[0], SSID1, HideSSID[0]
 * @effects  likewise, before the reply: start wifi_setup.sh wifi_master_enable 5.8G & (or
 *           wifi_master_disable)
 * @example  {"type":"set5switchwifi","radioon":1} => {"type":"set5switchwifi","result":0}
 */
ZELTO_API int bs_Set5WifiStat(const char* request, char* out);

/**
 * Switches one radio, or both and couples them. For one ("set2gswitch", "set5gswitch") it does as
 * "setswitchwifi" does. The reply's "type" is the request's own.
 *
 * @command  set2gswitch
 * @command  set5gswitch
 * @command  setAllswitch
 * @access   change
 * @request  radioon number|string required  one of: 0 (off), 1 (on)
 * @reply    result number
 * @result   0 done
 * @result   1 another or no "type", or no "radioon"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  one: as "setswitchwifi" and "set5switchwifi"
 * @effects  both: uci set system.route.dualSwitch=1, switch_2g, switch_5g; unless the schedule
 *           holds Wi-Fi off: wifi set WIFIEnable[0] of both, then SSID1 and HideSSID[0] of each;
 *           start wifi_setup.sh wifi_master_enable all & (or wifi_master_disable)
 * @example  {"type":"setAllswitch","radioon":"1"} => {"type":"setAllswitch","result":0}
 */
ZELTO_API int bs_SetWifiSwitchAll(const char* request, char* out);

/**
 * Whether a radio's main network is hidden. The reply's "type" is the request's own.
 *
 * @command  gethide2
 * @command  gethide5
 * @access   read
 * @reply    enable string  one of: 1 (hidden), 0 (visible), ""; empty when unset
 * @result   none on success
 * @result   1 another or no "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"gethide5"} => {"type":"gethide5","enable":"0"}
 */
ZELTO_API int bs_GetSSIDHide(const char* request, char* out);

/**
 * Hides the main network of one radio, which ends their coupling, or of both and couples them. A
 * radio that is off keeps its flag in the configuration only. The reply's "type" is the request's
 * own.
 *
 * @command  sethide2
 * @command  sethide5
 * @command  sethideall
 * @access   change
 * @request  enable number|string required  one of: 1 (hidden), 0 (visible)
 * @reply    result number
 * @result   0 done
 * @result   1 another or no "type", or no "enable"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  for each radio: uci set system.route.hidden_2g (hidden_5g); while it is on: wifi set
 *           HideSSID[0], run iwpriv ra0 set HideSSID="FLAG" (rai0), start /sbin/wifi_setup.sh
 *           wifi_master_arguments 2.4G (5.8G)
 * @effects  uci set system.route.dualSwitch
 * @example  {"type":"sethide2","enable":1} => {"type":"sethide2","result":0}
 */
ZELTO_API int bs_SetSSIDHide(const char* request, char* out);

/* ---- Channels ------------------------------------------------------------------------------- */

/**
 * Channel, country and bandwidth of both radios.
 *
 * @command  getchannelall
 * @access   read
 * @reply    configurations array  two objects, 2.4 GHz first
 * @reply    configurations[].radio string  one of: 2.4G, 5G
 * @reply    configurations[].channel number  0 automatic
 * @reply    configurations[].curchannel number  the channel in use
 * @reply    configurations[].countrycode string
 * @reply    configurations[].htbw number  bandwidth as it was set: 0 automatic, 1 20 MHz, 2 40 MHz,
 *           3 80 MHz
 * @reply    configurations[].curbw number  the same
 * @result   none on success
 * @result   1 wrong or missing "type"; or channel or country cannot be read (logged): no
 *           "configurations"; or a bandwidth cannot be read: behind "configurations"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  for an automatic channel: run iwconfig ra0 | grep Channel | awk '{print $2}' | cut -f2
 *           -d\= (rai0)
 * @example  {"type":"getchannelall"} => {"type":"getchannelall","configurations":[{"radio":"2.4G",
 *           "channel":0,"curchannel":*,"countrycode":"US","htbw":0,"curbw":0},{"radio":"5G",
 *           "channel":0,"curchannel":*,"countrycode":"US","htbw":0,"curbw":0}]}
 */
ZELTO_API int bs_GetChannelAll(const char* request, char* out);

/**
 * Tunes both radios. Values are texts here; channels hold at most 7 characters.
 *
 * A radio that is the uplink (modes "wisp" and "repeater") is not re-tuned. The radios are tuned
 * after every answer, also after a refusal. The reply's "type" is the request's own.
 *
 * @command  setchannelall
 * @access   change
 * @request  channel string optional  2.4 GHz channel, "0" automatic; 14 sets the mode to 802.11b;
 *           at most 7 characters
 * @request  countrycode string optional  country of the 2.4 GHz radio
 * @request  htbw string optional  2.4 GHz bandwidth, one of: 0 (automatic), 1 (20 MHz), 2 (40 MHz)
 * @request  channel_5 string optional  5 GHz channel, "0" automatic; at most 7 characters
 * @request  countrycode_5 string optional  country of the 5 GHz radio
 * @request  htbw_5 string optional  5 GHz bandwidth, one of: 0 (automatic), 1 (20 MHz), 2 (40 MHz),
 *           3 (80 MHz)
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a value that is refused
 * @unparsed -1, logs "json data is NULL!"
 * @effects  wifi 2.4G set WirelessMode[0] and [1] (into and out of channel 14), Channel,
 *           PERCENTAGEenable=0, HT_EXTCHA, AutoChannelSelect; CountryCode, CountryRegion; autobw,
 *           HT_BW, HT_BSSCoexistence
 * @effects  wifi 5G set Channel, AutoChannelSelect; CountryCode, CountryRegionABand; autobw, HT_BW,
 *           HT_BSSCoexistence, VHT_BW, WirelessMode[0] and [1]
 * @effects  after the reply: start wifi_setup.sh wifi_model;wifi_setup.sh wifi_channel all & (or
 *           2.4G, or 5.8G)
 * @example  {"type":"setchannelall","channel":"11","htbw":"1"} =>
 *           {"type":"setchannelall","result":0}
 */
ZELTO_API int bs_SetChannelAll(const char* request, char* out);

/**
 * Channel, country and bandwidth of the 2.4 GHz radio, as one element of "getchannelall".
 *
 * @command  get2channel
 * @access   read
 * @reply    channel number  0 automatic
 * @reply    curchannel number  the channel in use
 * @reply    countrycode string  two letters
 * @reply    htbw number  bandwidth as it was set: 0 automatic, 1 20 MHz, 2 40 MHz, 3 80 MHz
 * @reply    curbw number  the same
 * @result   none on success
 * @result   1 wrong or missing "type", or a value that cannot be read
 * @unparsed -1, logs "json data is NULL!"
 * @effects  as "getchannelall"
 * @example  {"type":"get2channel"} => {"type":"get2channel","channel":0,"curchannel":*,
 *           "countrycode":"US","htbw":0,"curbw":0}
 */
ZELTO_API int bs_GetAdvChannel(const char* request, char* out);

/**
 * Channel, country and bandwidth of the 5 GHz radio. As "get2channel".
 *
 * @command  get5channel
 * @access   read
 * @reply    channel number  0 automatic
 * @reply    curchannel number  the channel in use
 * @reply    countrycode string  two letters
 * @reply    htbw number  bandwidth as it was set: 0 automatic, 1 20 MHz, 2 40 MHz, 3 80 MHz
 * @reply    curbw number  the same
 * @result   none on success
 * @result   1 wrong or missing "type", or a value that cannot be read
 * @unparsed -1, logs "json data is NULL!"
 * @effects  as "getchannelall"
 * @example  {"type":"get5channel"} => {"type":"get5channel","channel":0,"curchannel":*,
 *           "countrycode":"US","htbw":0,"curbw":0}
 */
ZELTO_API int bs_Get5AdvChannel(const char* request, char* out);

/**
 * Tunes the 2.4 GHz radio. Numbers here, unlike in "setchannelall", and neither power nor the side
 * of the second channel is touched. The reply's "type" is the request's own.
 *
 * @command  set2channel
 * @access   change
 * @request  channel number optional  0 automatic; 14 sets the mode to 802.11b
 * @request  countrycode string optional  two letters
 * @request  htbw number optional  bandwidth, one of: 0 (automatic), 1 (20 MHz), 2 (40 MHz)
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a value that is refused
 * @unparsed -1, logs "json data is NULL!"
 * @effects  wifi 2.4G set WirelessMode[0] and [1] (into and out of channel 14), Channel,
 *           AutoChannelSelect; CountryCode, CountryRegion; autobw, HT_BW, HT_BSSCoexistence
 * @effects  start wifi_setup.sh wifi_master_enable 2.4G;wifi_setup.sh wifi_guest_arguments 2.4G &
 * @example  {"type":"set2channel","channel":6} => {"type":"set2channel","result":0}
 */
ZELTO_API int bs_SetAdvChannel(const char* request, char* out);

/**
 * Tunes the 5 GHz radio. As "set2channel"; channel 14 is nothing special.
 *
 * @command  set5channel
 * @access   change
 * @request  channel number optional  0 automatic
 * @request  countrycode string optional  two letters
 * @request  htbw number optional  bandwidth, one of: 0 (automatic), 1 (20 MHz), 2 (40 MHz), 3 (80
 *           MHz)
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or a value that is refused
 * @unparsed -1, logs "json data is NULL!"
 * @effects  wifi 5G set Channel, AutoChannelSelect; CountryCode, CountryRegionABand; autobw, HT_BW,
 *           HT_BSSCoexistence, VHT_BW, WirelessMode[0] and [1]
 * @effects  start wifi_setup.sh wifi_channel 5.8G &
 * @example  {"type":"set5channel","htbw":3} => {"type":"set5channel","result":0}
 */
ZELTO_API int bs_Set5AdvChannel(const char* request, char* out);

/* ---- Guest networks ------------------------------------------------------------------------- */

/**
 * The 2.4 GHz guest network.
 *
 * @command  getvisitorinfo
 * @access   read
 * @reply    gssidenable number  1 on
 * @reply    gssid string  SSID as the user chose it
 * @reply    gpsw string  passphrase
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getvisitorinfo"} => {"type":"getvisitorinfo","gssidenable":0,
 *           "gssid":"ZELTO-Guest","gpsw":"guest12345"}
 */
ZELTO_API int bs_GetVisitorInfo(const char* request, char* out);

/**
 * The 5 GHz guest network. As "getvisitorinfo".
 *
 * @command  getvisitor5info
 * @access   read
 * @reply    g5ssidenable number  1 on
 * @reply    g5ssid string  SSID as the user chose it
 * @reply    g5psw string  passphrase
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getvisitor5info"} => {"type":"getvisitor5info","g5ssidenable":0,
 *           "g5ssid":"ZELTO-Guest-5G","g5psw":"guest12345"}
 */
ZELTO_API int bs_GetVisitor5Info(const char* request, char* out);

/**
 * Switches the 2.4 GHz guest network and names it; its security is WPA and WPA2 together. While the
 * schedule holds Wi-Fi off, neither switch nor name reach the driver, passphrase and security do.
 *
 * @command  setvisitorinfo
 * @access   change
 * @request  gssidenable number required  one of: 1 (on), 0 (off); anything but 1 is off
 * @request  gssid string required to switch on  SSID, at most 99 bytes
 * @request  gpsw string required to switch on  passphrase, at most 99 bytes
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", a missing member, or a value that is refused: nothing stored
 * @unparsed -1, logs "json data is NULL!"
 * @effects  wifi 2.4G set WIFIEnable[1]; uci set system.route.switch_2g_guest; on: wifi 2.4G set
 *           SSID2, WPAPSK2, AuthMode[1], PMFMFPR[1], PMFMFPC[1], EncrypType[1], RekeyMethod[1]; uci
 *           set system.route.ssid_2g_guest
 * @effects  after every reply, unless the schedule holds Wi-Fi off: start wifi_setup.sh
 *           wifi_guest_arguments 2.4G &
 * @example  {"type":"setvisitorinfo","gssidenable":1,"gssid":"Friends","gpsw":"welcome!"} =>
 *           {"type":"setvisitorinfo","result":0}
 */
ZELTO_API int bs_SetVisitorInfo(const char* request, char* out);

/**
 * Switches the 5 GHz guest network and names it. As "setvisitorinfo".
 *
 * @command  setvisitor5info
 * @access   change
 * @request  g5ssidenable number required  one of: 1 (on), 0 (off); anything but 1 is off
 * @request  g5ssid string required to switch on  SSID, at most 99 bytes
 * @request  g5psw string required to switch on  passphrase, at most 99 bytes
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", a missing member, or a value that is refused: nothing stored
 * @unparsed -1, logs "json data is NULL!"
 * @effects  as "setvisitorinfo", of the 5 GHz radio and its options
 * @effects  after every reply, unless the schedule holds Wi-Fi off: start wifi_setup.sh
 *           wifi_guest_arguments 5.8G &
 * @example  {"type":"setvisitor5info","g5ssidenable":0} => {"type":"setvisitor5info","result":0}
 */
ZELTO_API int bs_SetVisitor5Info(const char* request, char* out);

/**
 * Both guest networks.
 *
 * @command  multi_ssid
 * @access   read
 * @reply    list array  two objects, 2.4 GHz first
 * @reply    list[].type string  one of: 2.4g, 5g
 * @reply    list[].Switch number  1 on
 * @reply    list[].ssid string
 * @reply    list[].encryption string  security mode
 * @reply    list[].pwd string  passphrase
 * @reply    list[].encry_alg string  always "aes"
 * @reply    list[].ssid_hide string  "1" hidden
 * @result   none on success
 * @result   1 wrong or missing "type"; or a driver's key cannot be read (logged): no "list"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"multi_ssid"} => {"type":"multi_ssid","list":[{"type":"2.4g","Switch":0,
 *           "ssid":"ZELTO-Guest","encryption":"open","pwd":"guest12345","encry_alg":"aes",
 *           "ssid_hide":"0"},{"type":"5g","Switch":0,"ssid":"ZELTO-Guest-5G",
 *           "encryption":"open","pwd":"guest12345","encry_alg":"aes","ssid_hide":"0"}]}
 */
ZELTO_API int bs_GetMultiWifi(const char* request, char* out);

/**
 * Changes both guest networks. While the schedule holds Wi-Fi off, switch, name and hidden flag do
 * not reach the driver, passphrase and security do.
 *
 * @command  multi_ssid_apply
 * @access   change
 * @request  list array required  two objects, one a radio, in either order
 * @request  list[].type string required  one of: 2.4g, 5g
 * @request  list[].Switch number required  one of: 1 (on), 0 (off)
 * @request  list[].ssid string required  at most 99 bytes
 * @request  list[].pwd string required  passphrase, at most 99 bytes
 * @request  list[].ssid_hide string required  one of: 1 (hidden), 0 (visible)
 * @request  list[].encryption string required  security mode, one of: open, wpa2, wpa3,
 *           wpawpa2-tkipaes, wpawpa2, wpa2wpa3
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", an entry or a member of one missing, or a value that is
 *           refused: nothing stored
 * @unparsed -1, logs "json data is NULL!"
 * @effects  for 2.4 GHz, then 5 GHz: wifi set WIFIEnable[1]; uci set switch_2g_guest,
 *           ssid_2g_guest; wifi set SSID2 (a placeholder when off), WPAPSK2; uci set
 *           hidden_2g_guest; wifi set HideSSID[1] (1 when off), the keys of the security mode
 * @effects  after the reply, unless the schedule holds Wi-Fi off: start wifi_setup.sh
 *           wifi_guest_arguments all &
 * @example  {"type":"multi_ssid_apply","list":[{"type":"2.4g","Switch":1,"ssid":"Friends",
 *           "pwd":"welcome!","ssid_hide":"0","encryption":"wpa2"},{"type":"5g","Switch":0,
 *           "ssid":"Friends 5","pwd":"welcome!","ssid_hide":"0","encryption":"wpa2"}]} =>
 *           {"type":"multi_ssid_apply","result":0}
 */
ZELTO_API int bs_SetMultiWifi(const char* request, char* out);

/* ---- Transmit power and mode ---------------------------------------------------------------- */

/**
 * The 2.4 GHz radio's transmit power.
 *
 * @command  getpamode
 * @access   read
 * @reply    pamode number  level; left out for a power that is none of the levels
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getpamode"} => {"type":"getpamode","pamode":2}
 */
ZELTO_API int bs_GetPaMode(const char* request, char* out);

/**
 * The 5 GHz radio's transmit power. As "getpamode".
 *
 * @command  getpa5mode
 * @access   read
 * @reply    pa5mode number  level
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getpa5mode"} => {"type":"getpa5mode","pa5mode":2}
 */
ZELTO_API int bs_GetPa5Mode(const char* request, char* out);

/**
 * Sets the 2.4 GHz radio's transmit power. The radio is told after every answer.
 *
 * @command  setpamode
 * @access   change
 * @request  pamode number required  level, one of: 0 (40 %), 1 (60 %), 2 (100 %); another number
 *           changes nothing
 * @reply    result number
 * @result   0 done, also when nothing changed
 * @result   1 wrong or missing "type", or no "pamode"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  wifi 2.4G set TxPower, PERCENTAGEenable
 * @effects  after every reply: start wifi_setup.sh wifi_txpower 2.4G &
 * @example  {"type":"setpamode","pamode":1} => {"type":"setpamode","result":0}
 */
ZELTO_API int bs_SetPaMode(const char* request, char* out);

/**
 * Sets the 5 GHz radio's transmit power. As "setpamode".
 *
 * @command  setpa5mode
 * @access   change
 * @request  pa5mode number required  level, one of: 0 (40 %), 1 (60 %), 2 (100 %); another number
 *           changes nothing
 * @reply    result number
 * @result   0 done, also when nothing changed
 * @result   1 wrong or missing "type", or no "pa5mode"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  wifi 5G set TxPower, PERCENTAGEenable
 * @effects  after every reply: start wifi_setup.sh wifi_txpower 5.8G &
 * @example  {"type":"setpa5mode","pa5mode":0} => {"type":"setpa5mode","result":0}
 */
ZELTO_API int bs_SetPa5Mode(const char* request, char* out);

/**
 * The radios' 802.11 modes. "type" is not checked; the reply's is the request's own.
 *
 * @command  getWifiMode
 * @access   read
 * @reply    twoWifiMode number  0 for the driver's mode 9 (and 1, of channel 14), 1 for 16
 * @reply    fiveWifiMode number  0 for the driver's mode 14, 1 for 17; each is left out otherwise
 * @result   none
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getWifiMode"} => {"type":"getWifiMode","twoWifiMode":0,"fiveWifiMode":0}
 */
ZELTO_API int bs_GetWifiMode(const char* request, char* out);

/**
 * Sets the radios' 802.11 modes, of main and guest network alike. "type" is not checked; the
 * reply's is the request's own.
 *
 * @command  setWifiMode
 * @access   change
 * @request  twoWifiMode number optional  one of: 0 (the driver's mode 9), 1 (16); missing counts as
 *           0, another number writes nothing
 * @request  fiveWifiMode number optional  one of: 0 (the driver's mode 14), 1 (17); missing counts
 *           as 0, another number writes nothing
 * @reply    result number
 * @result   0 done
 * @unparsed -1, logs "json data is NULL!"
 * @effects  wifi 2.4G set WirelessMode[0] and [1], wifi 5G set WirelessMode[0] and [1]
 * @effects  before the reply: start wifi_setup.sh wifi_master_enable all;wifi_setup.sh
 *           wifi_guest_arguments all &
 * @example  {"type":"setWifiMode","twoWifiMode":1,"fiveWifiMode":1} =>
 *           {"type":"setWifiMode","result":0}
 */
ZELTO_API int bs_SetWifiMode(const char* request, char* out);

/* ---- Schedule ------------------------------------------------------------------------------- */

/**
 * The times at which Wi-Fi is to be off. They are those of /etc/wifi_schedule_list.
 *
 * @command  wifi_schedule
 * @access   read
 * @reply    Switch string  system.route.wifi_schedule; "0" when it cannot be read
 * @reply    list array  the entries in the order of the file; empty when there is no file. What
 *           does not fit the reply is left out, and logged
 * @reply    list[].period string
 * @reply    list[].week string
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json is NULL"
 * @effects  none
 * @example  {"type":"wifi_schedule"} => {"type":"wifi_schedule","Switch":"0","list":[]}
 */
ZELTO_API int bs_GetWifiScheduleData(const char* request, char* out);

/**
 * Adds an entry to the schedule, or deletes every one that equals it. The file must exist. An agent
 * of the firmware acts on the list; nothing is started.
 *
 * @command  wifi_schedule_apply
 * @access   change
 * @request  action string required  one of: add, del; anything but "add" deletes
 * @request  period string required to add  a word of at most 23 characters
 * @request  week string required to add  a word of at most 23 characters; with the period at least
 *           11 characters
 * @reply    result number
 * @result   0 done, also when the entry was there already or was not there to be deleted
 * @result   1 wrong or missing "type", no "action", an entry that cannot be added; or the file
 *           cannot be read or written (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  deleting: run rm -rf /etc/wifi_schedule_list;mv /tmp/wifi_schedule_list
 *           /etc/wifi_schedule_list
 * @example  {"type":"wifi_schedule_apply","action":"add","period":"22:00-06:00","week":"12345"} =>
 *           {"type":"wifi_schedule_apply","result":0}
 */
ZELTO_API int bs_SetWifiScheduleData(const char* request, char* out);

/**
 * Switches the schedule.
 *
 * @command  wifi_schedule_switch
 * @access   change
 * @request  Switch string required  one of: 1 (on), 0 (off); stored as it is sent
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or no "Switch"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.wifi_schedule
 * @example  {"type":"wifi_schedule_switch","Switch":"1"} =>
 *           {"type":"wifi_schedule_switch","result":0}
 */
ZELTO_API int bs_SetWifiScheduleSwitch(const char* request, char* out);

#ifdef __cplusplus
}
#endif
