#pragma once

#include <string>

#include "tests/support/DiskFormat.h"

namespace kelx::test {

/// The bytes of a compound file whose names and values try to be more than text in a page, to have
/// a function "intruder" called.
Bytes HostileFile();

/// The name that such a file has on disk.
inline constexpr char kHostileFileName[] = "<img src=x onerror=intruder()>&\"'\x01.doc";

}  // namespace kelx::test
