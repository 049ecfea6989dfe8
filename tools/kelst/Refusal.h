#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "KELXStStorage.h"
#include "tools/kelst/FileState.h"

namespace kelst {

/// Why the file at `path`, which is in `state`, cannot be read; the empty string when it can. Asked
/// right after the state, as it takes the reason for a missing one from errno.
std::string WhyNotOpened(const std::string& path, const std::optional<FileState>& state);

/// Why the library refuses a file of `size` bytes with this header.
std::string WhyRefused(const KELStStorageHeader& header, std::uint64_t size);

}  // namespace kelst
