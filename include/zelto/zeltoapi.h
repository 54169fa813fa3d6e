/**
 * @file zeltoapi.h
 * The front door of libzeltoapi.so: one JSON request in, one JSON reply out.
 *
 * Conventions of every header in this folder
 *
 * Encoding. Texts are NUL-terminated. Requests are JSON in UTF-8; replies are one JSON object
 * without line breaks. Bytes of the router's files and tools that are not UTF-8 stand in a reply
 * as U+FFFD. Member names of a request are compared without regard to case, commands exactly.
 *
 * Ownership. The library keeps no pointer that it is given and hands out none that must be freed.
 *
 * Sizes. A reply, its NUL included, never exceeds ZELTO_REPLY_SIZE bytes, and every `out` that
 * takes a reply must offer that many. Other buffers state their size where they are declared. A
 * value that its stated size cannot hold is refused, unless the text says that it is cut.
 *
 * Threads. Every function may be called from several threads at once, but for the exported tables:
 * who writes to one must see to it that nobody is calling. The library starts no threads. Nothing
 * of a request outlives its call but the text of a detached command, until its shell has started.
 * Descriptors it opens are closed on exec.
 *
 * Errors. A handler tells its failures in the reply's number "result", a failure of the machine is
 * logged through syslog at priority 3 (LOG_ERR), and no exception leaves the library: when memory
 * runs out in the middle of a command its reply is {"type":<command>,"result":1}. Other functions
 * state their return values. A member of the wrong JSON type counts as missing; unknown members are
 * ignored. Texts with a line break are never stored: the request is refused with "result" 1.
 *
 * Trust. The library trusts its caller: no handler checks a login token (see check_auth), and the
 * commands act with the privileges of the process. What a request puts into a shell command is
 * quoted and never run, except by "setcmd", whose purpose that is.
 *
 * "result" numbers: 0 done; 1 failed, also for a wrong or missing "type" (such a command touches
 * nothing, unless its text says otherwise); 2, 3 and 5 as the command's text says; 6 unknown
 * command; 7 no command in the request; 9 alive. Most commands that only read have no "result" when
 * they succeed.
 *
 * The form of a handler's comment, one fact a line:
 *   @command  the "type" that reaches it
 *   @access   what a front end should ask for: "open" nothing, "read" a login (the command only
 *             tells), "change" a login that may change the router, "danger" one that may run
 *             anything, erase or interrupt the router, see or set the administrator's password
 *   @request  member, JSON type, required or optional, meaning with unit and limits; "one of: 1
 *             (on), 0 (off)" names all values, list[].mac is a member of the objects in "list"
 *   @reply    member, JSON type, meaning; in the order of the reply, after "type"
 *   @result   number and meaning, or "none" and when
 *   @unparsed what happens to a text that is not JSON: return value and log line
 *   @effects  what it changes or runs, in order; "none" for a command that only reads
 *   @example  a request => its reply on a router with factory settings; * stands for a value that
 *             differs from router to router or from time to time
 */
#pragma once

#include <zelto/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Bytes that a reply may take, its NUL included. */
#define ZELTO_REPLY_SIZE 16384

/** Bytes of a command name in the table, NUL padding included. */
#define ZELTO_COMMAND_NAME_SIZE 64

/** Rows of `zelto_handle`. */
#define ZELTO_COMMAND_COUNT 123

/**
 * A command's function.
 *
 * @param[in]  request  the whole request as JSON text
 * @param[out] out      receives the reply; ZELTO_REPLY_SIZE bytes
 * @return 0 when a reply was written; -1 (a few: 0) when the request could not be parsed, with
 *         `out` untouched. Failures of the command itself are told in the reply only.
 */
typedef int (*CommandHandler)(const char* request, char* out);

/** A row of the command table. */
typedef struct CommandEntry {
  char name[ZELTO_COMMAND_NAME_SIZE]; /**< the "type" of its requests, padded with NULs */
  CommandHandler handler;             /**< null: not there, answered like an unknown command */
} CommandEntry;

/**
 * The command table, in the order in which it is searched. It may be written to: the dispatcher
 * walks it at every request and the first row that matches wins. There is no terminating row.
 */
extern ZELTO_API CommandEntry zelto_handle[ZELTO_COMMAND_COUNT];

/**
 * Runs the command that a request names.
 *
 * The request's "type" is looked up in `zelto_handle` by exact comparison.
 *
 * @param[in]  request  the request, one JSON object as text; may be null (not JSON)
 * @param[out] out      receives the reply; ZELTO_REPLY_SIZE bytes
 * @retval 0   a reply was written: the handler's own, or {"type":"<name>","result":6} for a name
 *             that no live row carries. In the latter the name stands as it was sent, without JSON
 *             escapes, cut at 255 bytes.
 * @retval -1  the request is not JSON: `out` is untouched and must not be read; or it has no
 *             string member "type": {"result":7} was written. Also when `out` is null.
 */
ZELTO_API int share_func(const char* request, char* out);

/**
 * Tells whether a login token was issued since the router started.
 *
 * The answer is 1 when some line of /tmp/token (see "loginauth") CONTAINS the text: the empty text
 * and any part of a token pass. A front end must therefore first check that what it was sent is
 * exactly 32 lower-case hexadecimal characters (0-9, a-f), and refuse everything else itself.
 * Tokens do not expire and there is no logout: both are the front end's business as well.
 *
 * @param[in] token  what the client presented; null never passes
 * @retval 1  some line of the token file contains it
 * @retval 0  none does, or there is no token file
 */
ZELTO_API int check_auth(const char* token);

/**
 * Tells that the library answers.
 *
 * @command getheartbeat
 * @access open
 * @reply result number  9
 * @result 9 alive
 * @result 1 wrong or missing "type"
 * @unparsed -1, logs "json data is NULL!"
 * @effects none
 * @example {"type":"getheartbeat"} => {"type":"getheartbeat","result":9}
 */
ZELTO_API int bs_GetHeartBeat(const char* request, char* out);

#ifdef __cplusplus
}
#endif
