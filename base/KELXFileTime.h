#pragma once

/// @file
/// A moment as the file format stores it.

#if defined(_WIN32)
#include <windows.h>
#else

/// A moment as the file format stores it: a count of 100-nanosecond intervals since
/// 1601-01-01T00:00:00Z, split into two 32-bit halves. Zero stands for "not recorded".
struct tagFILETIME {
  unsigned int dwLowDateTime;   ///< low 32 bits of the count
  unsigned int dwHighDateTime;  ///< high 32 bits of the count
};

/// The usual name of the record.
using FILETIME = tagFILETIME;

#endif
