/**
 * @file utilities.h
 * Running commands, looking at processes and files, small text work, base64.
 * The conventions of zeltoapi.h hold.
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Starts a shell command and forgets it: nearly every service restart goes this way.
 *
 * The command runs under /bin/sh in a session of its own, as nobody's child: with every descriptor
 * closed, in "/", with file-creation mask 0, all signals unblocked and at their defaults, and with
 * a copy of the caller's environment, which no other thread may change during the call.
 *
 * The call returns as soon as the command has a process of its own, which is about to become the
 * shell, in a time that does not depend on how large the calling process is. The caller may end
 * then, and signals to its process group no longer reach the command. Nothing is left for the
 * caller to reap, and its buffered output is not touched. What becomes of the command is not known.
 *
 * A process that ends by exit(), or unloads the library, waits at most a second until the commands
 * it has just started have their shells.
 *
 * @param[in] command  text for /bin/sh -c, shorter than 32 memory pages (128 KB with usual ones)
 * @retval 0   the command's process was started
 * @retval -1  the command is null or too long, there is no /bin/sh that may be executed, or no
 *             process or memory could be had
 */
ZELTO_API int zelto_system(const char* command);

/**
 * Runs a shell command and keeps the beginning of its output.
 *
 * Waits for the command. Its standard error is the caller's.
 *
 * @param[in]  command  text for /bin/sh -c
 * @param[out] buffer   receives at most `n` bytes. No NUL is added: clear one byte more beforehand
 * @param[in]  n        bytes wanted; further output is dropped
 * @return `buffer`, or null when the command could not be started (buffer untouched)
 */
ZELTO_API char* shellcmd(const char* command, char* buffer, int n);

/**
 * Runs a shell command with its output and errors on the console, after a trace line there.
 *
 * The command and its redirection " 1>/dev/console 2>&1" are cut at 255 characters together.
 *
 * @param[in] format  printf format of the command, with its arguments. What is inserted is not
 *                    quoted: the caller vouches for it
 * @return the status of system(), or -1 when the format is null or cannot be printed
 */
ZELTO_API int do_system(const char* format, ...) __attribute__((format(printf, 1, 2)));

/**
 * Finds the firmware's system daemon `sys_daemon` in the process list.
 *
 * @return its process id, or -1 when it does not run or the list could not be read
 */
ZELTO_API int get_sys_daemon_pid(void);

/**
 * Tells whether one process of a name runs.
 *
 * @param[in] name  text that its line in the output of ps holds; a basic regular expression of
 *                  grep. At most 66 characters, not beginning with "-"
 * @retval 0   exactly one line of the process list holds it
 * @retval -1  none or several do, or the name cannot be asked for
 */
ZELTO_API int check_status(const char* name);

/**
 * Tells whether a file has content.
 *
 * @param[in] path  the file
 * @retval 1  it can be opened for reading and is longer than 0 bytes
 * @retval 0  otherwise, an empty file included
 */
ZELTO_API int check_file_exist(const char* path);

/**
 * Cuts a line end: at most two characters, each a carriage return or a line feed.
 *
 * @param[in,out] text  may be empty
 * @return the last character it looked at (NUL when there was none); of no meaning to callers
 */
ZELTO_API char rm_eol(char* text);

/**
 * Splits a text at delimiter characters; delimiters in a row count as one.
 *
 * @param[in,out] text        is cut into the tokens
 * @param[in]     delimiters  the delimiter characters
 * @param[out]    tokens      receives a pointer into `text` for each token, in order. It must have
 *                            room for all: (length of text + 1) / 2 always suffices
 * @param[out]    count       receives the number of tokens. Neither output is written when text or
 *                            delimiters are null or empty
 */
ZELTO_API void split(char* text, const char* delimiters, char** tokens, int* count);

/**
 * Removes every occurrence of a character.
 *
 * @param[in,out] text       is shortened in place; may be null
 * @param[in]     character  what to remove
 * @return `text`
 */
ZELTO_API char* del_mychar(char* text, char character);

/**
 * Reads the MAC address of the LAN or the WAN side from the board, through the firmware's script
 * /sbin/get_7628_lan_wan_mac.sh.
 *
 * @param[out] buffer  receives the 17 characters of the address and no NUL: 18 bytes, cleared
 * @return as shellcmd
 */
ZELTO_API char* get_7628_lan_mac(char* buffer);
ZELTO_API char* get_7628_wan_mac(char* buffer);

/** The 64 characters of base64 (RFC 4648), by value; both functions below go through it. */
extern ZELTO_API const char* base64char;

/**
 * Encodes bytes as base64: padded with "=", without line breaks, with a NUL at the end.
 *
 * @param[in]  source       the bytes
 * @param[out] destination  4 * ceil(length / 3) + 1 bytes
 * @param[in]  length       how many bytes; less than 1 gives the empty text
 * @return 1
 */
ZELTO_API int zelto_base64_encode(const unsigned char* source, char* destination, int length);

/**
 * Decodes base64.
 *
 * Foreign characters are not reported: each counts as the value 255. Characters missing from the
 * last group count the same. Decoding ends at the first "=" that pads a group.
 *
 * @param[in]  text         base64 text
 * @param[out] destination  3 * ceil(length of text / 4) bytes; no NUL is added
 * @return number of bytes written
 */
ZELTO_API int zelto_base64_decode(const char* text, unsigned char* destination);

#ifdef __cplusplus
}
#endif
