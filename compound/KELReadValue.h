#pragma once

#include <cstdint>
#include <cstdio>

#include "base/KELXExport.h"

/// @file
/// Reading of fixed-width values and byte runs from stdio files.
///
/// No reader of values reports a short read: what the file does not deliver, at its end or because
/// of a read error, is zero. A value that is delivered in part keeps its delivered bytes, with
/// zeros after them, and is then put into byte order: of the two bytes 12 34 KELReadUINT makes
/// 0x3412, or 0x12340000 when the order is reversed. The position moves on by the bytes delivered.
///
/// `sameByteOrder` true takes the bytes in the order of the file, which on the little-endian hosts
/// that are served reads little-endian values; false takes them reversed. Files are open for
/// reading in binary mode, never null, and stay the caller's.

/// The offset from the start of the file, in bytes; -1 when the file cannot tell.
KELXSTSTORAGE_API std::int64_t KELGetPosition(std::FILE* file);

/// Moves to `offset` bytes from the start of the file. 0 on success, else not 0.
KELXSTSTORAGE_API int KELSetPosition(std::FILE* file, std::uint64_t offset);

/// Reads up to `size` bytes from the current position into `buffer`, which has room for `size`,
/// and returns how many were read. The rest of the `size` bytes becomes zero. A negative `size`
/// reads and writes nothing and gives 0.
KELXSTSTORAGE_API std::int64_t KELReadBytes(std::FILE* file, std::int64_t size,
                                            unsigned char* buffer);

/// The same from `offset` bytes from the start of the file. Where the file cannot be moved there,
/// it is read from where it stands.
KELXSTSTORAGE_API std::int64_t KELReadBytes(std::FILE* file, std::int64_t offset, std::int64_t size,
                                            unsigned char* buffer);

/// Reads a value of `size` bytes, 0 to 32, into `value`. With any other `size` nothing is read and
/// `value` stays untouched, as it does with 0.
KELXSTSTORAGE_API void KELReadValue(std::FILE* file, void* value, int size, bool sameByteOrder);

/// Copies `size` bytes from `bytes` to `value`, reversed unless `sameByteOrder`. The two must not
/// overlap. A `size` of 0 or less writes nothing.
KELXSTSTORAGE_API void KELMakeValue(const unsigned char* bytes, void* value, int size,
                                    bool sameByteOrder);

/// Reads one value from the current position: 1, 2, 4 or 8 bytes, as many as the type of `value`
/// has. One byte has no order, so the flag is ignored there.
/// @{
KELXSTSTORAGE_API void KELReadBYTE(std::FILE* file, unsigned char& value, bool sameByteOrder);
KELXSTSTORAGE_API void KELReadCHAR(std::FILE* file, char& value, bool sameByteOrder);
KELXSTSTORAGE_API void KELReadSHORT(std::FILE* file, short& value, bool sameByteOrder);
KELXSTSTORAGE_API void KELReadUSHORT(std::FILE* file, unsigned short& value, bool sameByteOrder);
KELXSTSTORAGE_API void KELReadINT(std::FILE* file, int& value, bool sameByteOrder);
KELXSTSTORAGE_API void KELReadUINT(std::FILE* file, unsigned int& value, bool sameByteOrder);
KELXSTSTORAGE_API void KELReadLONG(std::FILE* file, long& value, bool sameByteOrder);
KELXSTSTORAGE_API void KELReadULONG(std::FILE* file, unsigned long& value, bool sameByteOrder);
KELXSTSTORAGE_API void KELReadFLOAT(std::FILE* file, float& value, bool sameByteOrder);
KELXSTSTORAGE_API void KELReadDOUBLE(std::FILE* file, double& value, bool sameByteOrder);
/// @}

/// The same eight bits as a value of 0 to 255.
KELXSTSTORAGE_API unsigned char AsUChar(char character);
