/**
 * @file storage.h
 * USB disks, and their folders shared over FTP and Samba. The conventions of zeltoapi.h hold; its
 * @-lines are explained there.
 *
 * A disk is an entry of /mnt. Accounts and shares are kept in files at its top, one value a line,
 * so they travel with the disk: .ftp_user_pass and .samba_user_pass (name, password),
 * .ftp_share_dir (the FTP user's home directory) and .samba_share_dir (a directory a line). They
 * are read from the first disk that has them (in the order of the directory) and written there, or
 * to the first disk when none has. What a disk brings along is checked like a request: names,
 * passwords and paths that would be refused count as missing, and so do files that are links or
 * anything else than files. When writing fails the old file stays as it was.
 *
 * Checks. A user is one word of letters, digits, "_", "-" and ".", not beginning with "-" and not
 * of digits and "." alone, of at most 32 characters, and no account of the system's own (a user id
 * below 1000 or above 60000). A password has 1 to 511 characters, none of them a control character,
 * and is none of echo's options (-n, -e, -E). A path begins with /mnt/, has at most 511 characters,
 * none of them a control character, and no component "..".
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Bytes of a name, a password or a path, the NUL included. */
#define ZELTO_SHARE_PATH_SIZE 512

/** Directories that Samba may share; one less is read back. */
#define ZELTO_SHARE_COUNT 8

/** Directories to be shared. */
typedef struct ZeltoShareList {
  int count;                                            /**< how many of `paths` are in use */
  char paths[ZELTO_SHARE_COUNT][ZELTO_SHARE_PATH_SIZE]; /**< full paths */
} ZeltoShareList;

/* ---- For firmware: accounts and shares ------------------------------------------------------ */

/**
 * Reads a service's account from the disks.
 *
 * @param[out] user      ZELTO_SHARE_PATH_SIZE bytes
 * @param[out] password  ZELTO_SHARE_PATH_SIZE bytes. Neither is written when no disk has a name and
 *                       a password
 */
ZELTO_API void get_ftp_user_passwd(char* user, char* password);
ZELTO_API void get_samba_user_passwd(char* user, char* password);

/**
 * Reads the FTP user's home directory from the disks.
 *
 * @param[out] path  ZELTO_SHARE_PATH_SIZE bytes; not written when no disk names one
 */
ZELTO_API void get_ftp_share_dir(char* path);

/**
 * Reads Samba's directories: up to 7 of the first disk that has a list, be it an empty one.
 *
 * @param[in,out] list  they are added at its end, as far as there is room
 */
ZELTO_API void get_samba_share_dir(ZeltoShareList* list);

/**
 * Sets the FTP account: writes it to disk, deletes the system account of the old one (unless
 * Samba's has the same name), and makes the new one with the home directory that is set.
 *
 * @param[in] user      the name
 * @param[in] password  the password
 * @retval 0  done
 * @retval 1  refused, no disk (logged: "not have mount usb!"), or not written (logged)
 */
ZELTO_API int set_ftp_user_passwd(const char* user, const char* password);

/**
 * Sets the Samba account: writes it to disk; with the service running (it is started for that, and
 * stopped again, when it is switched off) deletes the old account (unless the FTP account has the
 * same name), makes the new one, and rebuilds the share sections for it.
 *
 * @param[in] user      the name
 * @param[in] password  the password
 * @return as set_ftp_user_passwd
 */
ZELTO_API int set_samba_user_passwd(const char* user, const char* password);

/**
 * Looks for a line of /etc/passwd whose text up to the first ";" is the user's name. Fields there
 * are divided by ":", so users are not found: accounts are made anew each time.
 *
 * @param[in] user  the name
 * @retval 1   found
 * @retval 0   not found
 * @retval -1  the file cannot be opened (logged: "fopen /etc/passwd for read error!")
 */
ZELTO_API int check_system_user(const char* user);

/**
 * Rebuilds the share sections (type "sambashare", package "samba"): deletes all, then adds an
 * anonymous one a path with name (the path's last component), path, users, read_only "no", guest_ok
 * "no", create_mask "0777" and dir_mask "0777".
 *
 * @param[in] users  who may log in
 * @param[in] list   the directories
 * @retval 0  done
 * @retval 1  a null argument
 */
ZELTO_API int edit_samba_config(const char* users, const ZeltoShareList* list);

/**
 * Sets the FTP user's home directory, and makes the system account anew with it.
 *
 * @param[in] path  the directory
 * @return as set_ftp_user_passwd
 */
ZELTO_API int set_ftp_share_dir(const char* path);

/** Forgets the FTP user's home directory, and makes the account anew without. As above. */
ZELTO_API int del_ftp_share_dir(void);

/**
 * Sets Samba's directories, and rebuilds the share sections.
 *
 * @param[in] list  the directories
 * @return as set_ftp_user_passwd
 */
ZELTO_API int set_samba_share_dir(const ZeltoShareList* list);

/**
 * Takes a directory from Samba's, wherever it stands in the list, and rebuilds the share sections.
 * Without a list on any disk that removes all sections.
 *
 * @param[in] path  the directory, as it was set
 * @retval 0  done
 * @retval 1  /mnt cannot be read, or the list cannot be written (logged)
 */
ZELTO_API int del_samba_share_dir(const char* path);

/* ---- Disks ---------------------------------------------------------------------------------- */

/**
 * Whether a disk is mounted.
 *
 * @command  getusbenable
 * @access   read
 * @reply    usbenable string  one of: enable (something is mounted below /mnt), disable
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run cat /proc/mounts | grep /mnt/
 * @example  {"type":"getusbenable"} => {"type":"getusbenable","usbenable":"disable"}
 */
ZELTO_API int bs_GetUsbEnable(const char* request, char* out);

/**
 * The folders at the top of every disk, hidden ones included, such as may be shared.
 *
 * @command  getusballpath
 * @access   read
 * @reply    list array  the folders
 * @reply    list[].usbpath string  a full path that ends in "/"
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getusballpath"} => {"type":"getusballpath","list":[]}
 */
ZELTO_API int bs_GetUsbAllPath(const char* request, char* out);

/**
 * Ejects all disks: stops the services that use them, unmounts them and removes their mount points.
 * What is on a disk that could not be unmounted is removed as well. The services' switches stay.
 *
 * @command  umountusb
 * @access   danger
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run /etc/init.d/samba stop 2>/dev/null &
 * @effects  run /etc/init.d/vsftpd stop 2>/dev/null &
 * @effects  run umount /mnt/\*;rm -rf /mnt/\*
 * @example  {"type":"umountusb"} => {"type":"umountusb","result":0}
 */
ZELTO_API int bs_UmountUsb(const char* request, char* out);

/* ---- FTP ------------------------------------------------------------------------------------ */

/**
 * The FTP service. Holds the account's password in clear.
 *
 * @command  getftpcfg
 * @access   read
 * @reply    Switch string  one of: on (system.route.vsftpd is "1"), off
 * @reply    ftpuser string  the account, empty when none is set
 * @reply    ftppasswd string  its password
 * @reply    path string  its home directory, empty when none is set
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getftpcfg"} => {"type":"getftpcfg","Switch":*,"ftpuser":"","ftppasswd":"",
 *           "path":""}
 */
ZELTO_API int bs_GetFtpCfg(const char* request, char* out);

/**
 * Sets the FTP account: see set_ftp_user_passwd.
 *
 * @command  setftpcfg
 * @access   change
 * @request  ftpuser string required  the name, at most 32 characters
 * @request  ftppasswd string required  the password, at most 511 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", a missing or refused member, no disk (logged), or a disk
 *           that cannot be written (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run userdel OLD 2>/dev/null, when there was an account that Samba does not share
 * @effects  run echo "USER" > /etc/vsftpd/vsftpd.users
 * @effects  run useradd -d HOME -s /bin/false USER, without -d HOME while there is none
 * @effects  run echo "USER:PASSWORD" | chpasswd
 * @effects  run touch /etc/vsftpd/chroot_list
 * @effects  start /etc/init.d/vsftpd restart &
 * @example  {"type":"setftpcfg","ftpuser":"family","ftppasswd":"secret"} =>
 *           {"type":"setftpcfg","result":1}
 */
ZELTO_API int bs_SetFtpCfg(const char* request, char* out);

/**
 * Switches the FTP service.
 *
 * @command  setftpswitch
 * @access   change
 * @request  Switch string required  one of: on, off; anything but "on" switches it off
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or no "Switch"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.vsftpd
 * @effects  start /etc/init.d/vsftpd restart & or start /etc/init.d/vsftpd stop &
 * @example  {"type":"setftpswitch","Switch":"on"} => {"type":"setftpswitch","result":0}
 */
ZELTO_API int bs_SetFtpSwitch(const char* request, char* out);

/**
 * Sets the FTP user's home directory: see set_ftp_share_dir. While no account is set only the path
 * is kept.
 *
 * @command  setftppath
 * @access   change
 * @request  ftppath string required  the directory, below /mnt/, at most 511 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", a missing or refused path, no disk (logged), or a disk that
 *           cannot be written (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run userdel USER 2>/dev/null
 * @effects  run useradd -d PATH -s /bin/false USER
 * @effects  run echo "USER:PASSWORD" | chpasswd
 * @effects  run touch /etc/vsftpd/chroot_list
 * @effects  start /etc/init.d/vsftpd restart &
 * @example  {"type":"setftppath","ftppath":"/mnt/sda1/films/"} => {"type":"setftppath","result":1}
 */
ZELTO_API int bs_SetFtpPath(const char* request, char* out);

/**
 * Forgets the FTP user's home directory.
 *
 * @command  delftppath
 * @access   change
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", no disk (logged), or a disk that cannot be written (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  as "setftppath", with run useradd -s /bin/false USER
 * @example  {"type":"delftppath"} => {"type":"delftppath","result":1}
 */
ZELTO_API int bs_DelFtpPath(const char* request, char* out);

/* ---- Samba ---------------------------------------------------------------------------------- */

/**
 * The Samba service. Holds the account's password in clear.
 *
 * @command  getsambacfg
 * @access   read
 * @reply    Switch string  one of: on (system.route.samba is "1"), off
 * @reply    sambauser string  the account, empty when none is set
 * @reply    sambapasswd string  its password
 * @reply    list array  the shared directories, at most 7
 * @reply    list[].path string
 * @result   none on success
 * @result   1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  none
 * @example  {"type":"getsambacfg"} => {"type":"getsambacfg","Switch":*,"sambauser":"",
 *           "sambapasswd":"","list":[]}
 */
ZELTO_API int bs_GetSambaCfg(const char* request, char* out);

/**
 * Sets the Samba account: see set_samba_user_passwd. A service that is switched off runs afterwards
 * all the same, until it is stopped: every change ends with a restart.
 *
 * @command  setsambacfg
 * @access   change
 * @request  sambauser string required  the name, at most 32 characters
 * @request  sambapasswd string required  the password, at most 511 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", a missing or refused member, no disk (logged), or a disk
 *           that cannot be written (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  run /etc/init.d/samba restart; when switched off: uci set system.route.samba=1 and run
 *           /etc/init.d/samba start
 * @effects  run smbpasswd -x OLD 1>/dev/null 2>&1;userdel OLD 1>/dev/null 2>&1, when there was an
 *           account that FTP does not share
 * @effects  run useradd -s /bin/false USER;(echo PASSWORD;echo PASSWORD) | smbpasswd -a -s USER
 *           1>/dev/null 2>&1
 * @effects  uci del and uci add of the samba.sambashare sections, uci set of their options
 * @effects  when switched off: uci set system.route.samba=0, run /etc/init.d/samba stop
 * @effects  start /etc/init.d/samba restart &
 * @example  {"type":"setsambacfg","sambauser":"family","sambapasswd":"secret"} =>
 *           {"type":"setsambacfg","result":1}
 */
ZELTO_API int bs_SetSambaCfg(const char* request, char* out);

/**
 * Switches the Samba service.
 *
 * @command  setsambaswitch
 * @access   change
 * @request  Switch string required  one of: on, off; anything but "on" switches it off
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", or no "Switch"
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci set system.route.samba
 * @effects  start /etc/init.d/samba restart & or start /etc/init.d/samba stop &
 * @example  {"type":"setsambaswitch","Switch":"on"} => {"type":"setsambaswitch","result":0}
 */
ZELTO_API int bs_SetSambaSwitch(const char* request, char* out);

/**
 * Sets the directories that Samba shares. 8 can be set; "getsambacfg" reads 7 back.
 *
 * @command  setsambapath
 * @access   change
 * @request  list array required  the directories, at most 8
 * @request  list[].sambapath string required  a directory below /mnt/, at most 511 characters
 * @reply    result number
 * @result   0 done
 * @result   1 wrong or missing "type", no list, a missing or refused path, no disk (logged), or a
 *           disk that cannot be written (logged)
 * @result   2 more than 8
 * @unparsed -1, logs "json data is NULL!"
 * @effects  uci del and uci add of the samba.sambashare sections, uci set of their options
 * @effects  start /etc/init.d/samba restart &
 * @example  {"type":"setsambapath","list":[{"sambapath":"/mnt/sda1/films/"}]} =>
 *           {"type":"setsambapath","result":1}
 */
ZELTO_API int bs_SetSambaPath(const char* request, char* out);

/**
 * Takes a directory from those that Samba shares.
 *
 * @command  delsambapath
 * @access   change
 * @request  sambapath string required  the directory, as it was set
 * @reply    result number
 * @result   0 done, also when it was not shared
 * @result   1 wrong or missing "type", no path, or a disk that cannot be written (logged)
 * @unparsed -1, logs "json data is NULL!"
 * @effects  as "setsambapath"
 * @example  {"type":"delsambapath","sambapath":"/mnt/sda1/films/"} =>
 *           {"type":"delsambapath","result":0}
 */
ZELTO_API int bs_DelSambaPath(const char* request, char* out);

#ifdef __cplusplus
}
#endif
