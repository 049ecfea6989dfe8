#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "KELXStStorage.h"
#include "tools/kelst/FileState.h"
#include "tools/kelst/Report.h"

namespace kelst {

/// The state of the file at `path`; nothing, with the reason reported, when it cannot be read.
std::optional<FileState> StateToRead(const std::string& path, Report& report);

/// Reports why the library refuses the file of `size` bytes at `path`, which has this header.
void ReportRefusal(const std::string& path, const KELStStorageHeader& header, std::uint64_t size,
                   Report& report);

/// Reports when the file at `path` is not in `before` any more.
void ReportChange(const std::string& path, const FileState& before, Report& report);

}  // namespace kelst
