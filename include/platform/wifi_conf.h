/**
 * Access to the radio driver's profile, one a band.
 *
 * A profile is a text of lines Key=Value. Keys are case-sensitive; a value may hold any byte but
 * the line end. Of a key that stands several times the first line counts. A key of which each
 * network has a setting of its own holds a list: the elements of its value are separated by ';',
 * element 0 is the main network, element 1 the guest network.
 *
 * Every call stands alone: a get reads what the last successful set of any process has stored.
 * All functions may be called from several threads and processes at a time; no change of another
 * caller is lost. They never block but for the disk and for other callers' changes.
 */
#pragma once

#if defined(__GNUC__)
#define WIFI_CONF_API __attribute__((visibility("default")))
#else
#define WIFI_CONF_API
#endif

/** Bytes, the final NUL included, that every buffer given to a get must offer. */
#define WIFI_CONF_VALUE_SIZE 4096

/** The index that stands for the whole value of a key. */
#define WIFI_CONF_WHOLE_VALUE (-1)

/** Elements that a list may have: the networks that a radio can carry. */
#define WIFI_CONF_NETWORKS 16

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reads a value of the 2.4 GHz radio's profile.
 *
 * @param[in]  key     Name of the key.
 * @param[in]  index   WIFI_CONF_WHOLE_VALUE, or 0 and up for one element of the list.
 * @param[out] buffer  WIFI_CONF_VALUE_SIZE bytes. Receives the value byte for byte with a final
 *                     NUL; of a value that is longer, its first WIFI_CONF_VALUE_SIZE - 1 bytes.
 *
 * @retval 0   The value was read; a key that is present without a value gives an empty text.
 * @retval -1  The key is absent, its list has no such element, @p index is below -1, the profile
 *             is absent (no such radio) or cannot be read, or an argument is null. @p buffer then
 *             holds an empty text.
 */
WIFI_CONF_API int lib_conf_get_2G(const char* key, int index, char* buffer);

/** As lib_conf_get_2G(), of the 5 GHz radio's profile. */
WIFI_CONF_API int lib_conf_get_5G(const char* key, int index, char* buffer);

/**
 * Stores a value in the 2.4 GHz radio's profile. A key that is absent is appended as a last line;
 * a list that is too short is extended with empty elements. All other lines stay byte for byte
 * as they are. The profile is replaced as a whole: a failure, a full disk or the end of the
 * process half-way leaves the old one.
 *
 * @param[in] key    Name of the key: printable ASCII without blanks and '=', not beginning with
 *                   '#'.
 * @param[in] index  WIFI_CONF_WHOLE_VALUE, or 0 to WIFI_CONF_NETWORKS - 1 for one element.
 * @param[in] value  The value, stored byte for byte; it may be empty.
 *
 * @retval 0   The profile holds the value.
 * @retval -1  Nothing was changed: @p value holds a line feed or a carriage return, or as an
 *             element a ';' (it would shift its neighbours); the key's whole value would not fit
 *             WIFI_CONF_VALUE_SIZE; @p key or @p index is none of those above; an argument is
 *             null; the profile is absent (no such radio); or reading or writing failed.
 */
WIFI_CONF_API int lib_conf_set_2G(const char* key, int index, const char* value);

/** As lib_conf_set_2G(), in the 5 GHz radio's profile. */
WIFI_CONF_API int lib_conf_set_5G(const char* key, int index, const char* value);

#ifdef __cplusplus
}
#endif
