/**
 * The configuration store: UCI packages, each a file /etc/config/PACKAGE.
 *
 * A firmware supplies these functions in libeasyuci.so; a host build brings an implementation of
 * its own. This page is the whole contract.
 *
 * - Each call stands alone: a write is on the disk, whole, when the call returns. There is no
 *   transaction and no commit step. A failed write leaves the file as it was; only when the very
 *   last step fails, flushing the folder after the new file has taken its place, may the new value
 *   already be seen.
 * - Calls may come from several threads and processes at a time. Writers of one package wait for
 *   one another, so that no change is lost.
 * - All texts are NUL-terminated. Names of sections and options consist of letters, digits and
 *   '_'; names of packages of these and '-'; section types of printable ASCII characters without
 *   blank. Values hold any bytes but NUL, line breaks included.
 * - Every function returns 0 when done and -1 when it failed. Each of them fails on a null
 *   argument (unless said otherwise) and when memory runs out. A function that fails leaves the
 *   caller's buffer as it was.
 * - A package whose file cannot be read, or is no well-formed UCI file, fails every call and is
 *   never rewritten. So does a package whose file is absent, but for easy_uci_add_section.
 * - A write fails, beyond what its comment says, when the lock of the package cannot be taken or
 *   the new file cannot be written (full or read-only file system). The lock is a file of its own
 *   beside the package, /etc/config/.PACKAGE.lock.
 * - A rewritten file keeps its mode and owner, but loses its comments. A change that would leave
 *   everything as it is does not rewrite the file.
 * - An anonymous section answers to a generated name ("cfg", its ordinal in the file in
 *   hexadecimal, a hash of its type). Such a name holds only until a section of the package is
 *   deleted: fetch it afresh with easy_uci_get_nth_section_of_type.
 */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

#define EASY_UCI_API __attribute__((visibility("default")))

/** Bytes, the NUL included, that hold any section name that easy_uci_add_section accepts. */
#define EASY_UCI_NAME_SIZE 64

/**
 * Reads an option.
 *
 * @param package     [in]  package name
 * @param section     [in]  section name
 * @param option      [in]  option name
 * @param buffer      [out] the value; max_length + 1 bytes. The items of a list are joined by
 *                          single blanks
 * @param max_length  [in]  most bytes of the value to store, the NUL not counted; a longer value
 *                          is cut there
 * @return 0, or -1 when the package, section or option is absent or max_length is negative
 */
EASY_UCI_API int easy_uci_get_option_string(const char* package, const char* section,
                                            const char* option, char* buffer, int max_length);

/**
 * Stores an option, in the place of a former value or list. An empty value is not stored: it
 * removes the option, and is no failure where there is none.
 *
 * @param package  [in] package name
 * @param section  [in] section name
 * @param option   [in] option name
 * @param value    [in] the value, of any length
 * @return 0, or -1 when the section is absent (add it first), the option's name is none or the
 *         write fails
 */
EASY_UCI_API int easy_uci_set_option_string(const char* package, const char* section,
                                            const char* option, const char* value);

/**
 * Adds a section at the end of the package. Creates the package's file, with mode 0600, when it is
 * absent. A section that exists under this name already keeps its place and its options and takes
 * the type; when it was anonymous it has the name for good from then on.
 *
 * @param package  [in] package name
 * @param type     [in] section type
 * @param name     [in] section name, shorter than EASY_UCI_NAME_SIZE; null for an anonymous section
 * @return 0, or -1 when a name or the type is none, the name is too long or the write fails
 */
EASY_UCI_API int easy_uci_add_section(const char* package, const char* type, const char* name);

/**
 * Deletes a section with all its options.
 *
 * @param package  [in] package name
 * @param section  [in] section name
 * @return 0, or -1 when the section is absent or the write fails
 */
EASY_UCI_API int easy_uci_delete_section(const char* package, const char* section);

/**
 * Deletes an option, or a list with all its items.
 *
 * @param package  [in] package name
 * @param section  [in] section name
 * @param option   [in] option name
 * @return 0, or -1 when the section or option is absent or the write fails
 */
EASY_UCI_API int easy_uci_delete_option(const char* package, const char* section,
                                        const char* option);

/**
 * Tells whether a section exists, and its type.
 *
 * @param package  [in]  package name
 * @param section  [in]  section name
 * @param buffer   [out] the type
 * @param length   [in]  size of buffer in bytes, the NUL included; a longer type is cut to fit
 * @return 0, or -1 when the section does not exist or length is not positive
 */
EASY_UCI_API int easy_uci_get_section_type(const char* package, const char* section, char* buffer,
                                           int length);

/**
 * Finds the n-th section of a type, in the order of the file.
 *
 * @param package  [in]  package name
 * @param type     [in]  section type
 * @param n        [in]  which of them, counted from 0
 * @param name     [out] the section's name; EASY_UCI_NAME_SIZE bytes
 * @return 0, or -1 when there are not so many, n is negative, or that section's name, written into
 *         the file by hand, does not fit in EASY_UCI_NAME_SIZE
 */
EASY_UCI_API int easy_uci_get_nth_section_of_type(const char* package, const char* type, int n,
                                                  char* name);

#ifdef __cplusplus
}
#endif
