/// @file
/// Marks what the shared library shows to its users; everything else stays hidden.
#pragma once

#if defined(__GNUC__) || defined(__clang__)
#define KT_EXPORT __attribute__((visibility("default")))
#else
#define KT_EXPORT
#endif
