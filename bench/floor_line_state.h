/* SPDX-License-Identifier: MIT */
/* Floor of the line-state query: no patterns, one look backwards over the bytes. */
#pragma once
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The state (0, 1, 3, 4; 5 unknown) that the last driver line of a log of that size tells. */
int floor_line_state(const char *log, size_t size, int vendor_id);

#ifdef __cplusplus
}
#endif
