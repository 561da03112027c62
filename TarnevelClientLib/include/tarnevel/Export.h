#pragma once

/// @file
/// TARNEVEL_API marks the declarations libtarnevelclient exports; the library
/// is built with hidden visibility, so nothing else leaves it.
#if defined(__GNUC__)
#define TARNEVEL_API __attribute__((visibility("default")))
#else
#define TARNEVEL_API
#endif
