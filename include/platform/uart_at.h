/**
 * Talking to the modem: AT commands over a serial line.
 *
 * The device is /dev/ttyUSB1, or the one that the UCI option mobile.global.port names by its path.
 * It is used at 115200 8N1, raw. Callers in any number of threads and processes take turns: the
 * device is locked for the length of one command and its answer.
 */
#pragma once

#if defined(__GNUC__)
#define UART_AT_API __attribute__((visibility("default")))
#else
#define UART_AT_API
#endif

/** Bytes, the final NUL included, that a reply buffer must offer. */
#define UART_AT_REPLY_SIZE 1024

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Sends one AT command to the modem and waits for its answer.
 *
 * The answer is the lines up to and with the final result code (OK, ERROR, +CME ERROR: n, ...),
 * each ended by CR LF; empty lines, the echo of the command and NUL bytes are left out.
 *
 * Left out as well is what the modem tells unasked: the words that it announces a call or its own
 * start with (RING, RDY, ...), a message (+CMT: or +CBM: and the text behind), and, when all of the
 * command is of the extended kind (AT+CPIN?, AT^HCSQ?), a line that opens like the response to
 * another extended command (+CREG: ..., ^RSSI:...); lines that begin with @p prefix stay. A line
 * without such an opening, or with that of the command asked, cannot be told from the answer and
 * is taken as part of it.
 *
 * Waits at most 10 s for its turn, then 3 s for the answer (45 s to commands that have the modem
 * talk to the network, such as AT+COPS=?).
 *
 * @param[in]  command  The command line without its final carriage return, such as "AT+CPIN?".
 * @param[in]  prefix   Null for the whole answer; otherwise what is wanted of it begins with the
 *                      first occurrence of this text, at the start of a line or within one.
 * @param[out] reply    UART_AT_REPLY_SIZE bytes. Receives, with a final NUL, the answer from
 *                      @p prefix on to its end, cut after UART_AT_REPLY_SIZE - 1 bytes. Empty when
 *                      the answer does not hold @p prefix, and whenever -1 is returned.
 *
 * @retval 0   The modem has answered, be it with an error code.
 * @retval -1  It has not: @p command is null, empty or holds a control character; @p reply is
 *             null; the device is missing, no serial line, in use for too long or lost meanwhile;
 *             or no final result code came in time.
 */
UART_AT_API int get_uart_ATCMD_result(const char* command, const char* prefix, char* reply);

#ifdef __cplusplus
}
#endif
