#pragma once

/// @file
/// DATACOM_API marks the declarations libdatacom exports. The library is built
/// with hidden visibility, so whatever this macro does not mark stays inside it
/// and may change without a new SONAME.
#if defined(__GNUC__)
#define DATACOM_API __attribute__((visibility("default")))
#else
#define DATACOM_API
#endif
