/* The operating system's additions to the C library. */
#ifndef PLATFORM_HVS_LIBC_H
#define PLATFORM_HVS_LIBC_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Sets `count` bytes of `dest`, which has room for `room` bytes, to `byte` (C11, K.3.7.4.1). Returns zero, or non-zero
 * when `dest` is null or `count` exceeds `room`; then nothing beyond `room` is written.
 */
int memset_s(void *dest, size_t room, int byte, size_t count);

/*
 * Writes an IPv4 address, in network byte order, as dotted quad into `buffer` of `size` bytes (16 hold every address),
 * cut and terminated. Returns `buffer`.
 */
char *inet_ntoa_r(uint32_t address, char *buffer, size_t size);

#ifdef __cplusplus
}
#endif

#endif
