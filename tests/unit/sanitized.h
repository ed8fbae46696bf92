// SPDX-License-Identifier: MIT
// Whether a sanitizer is built in, which takes many times the time and memory.
#pragma once

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define NORVIX_SANITIZED
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define NORVIX_SANITIZED
#endif

#ifdef NORVIX_SANITIZED
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif
