/* Android system properties: named texts that outlive a process. */
#ifndef CUTILS_PROPERTIES_H
#define CUTILS_PROPERTIES_H

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes of a value with its terminating zero. */
#define PROPERTY_VALUE_MAX 92

/* Copies the value of `key`, or `default_value` (may be NULL: empty) when it is unset, into `value`, which
 * holds PROPERTY_VALUE_MAX bytes. Returns the length of the text. Any thread. */
int property_get(const char* key, char* value, const char* default_value);

/* Sets a property; an empty value unsets it. Returns 0, or a negative number when the value is longer than 91
 * bytes or cannot be stored. Any thread. */
int property_set(const char* key, const char* value);

#ifdef __cplusplus
}
#endif
#endif
