#pragma once

#include <cstdio>
#include <memory>

#include "base/KELXFilePath.h"

namespace kelx::internal {

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};

using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;

/// The file at `path`, open for reading; null when it cannot be opened. It has no buffer: it is
/// read a sector or more at a time, straight to where the bytes belong.
OwnedFile OpenForReading(const KELXFilePath& path);

}  // namespace kelx::internal
