#pragma once

#include <cstdio>
#include <memory>

#include "KELXStStorage.h"

namespace kelst {

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};

using OpenedFile = std::unique_ptr<std::FILE, CloseFile>;

/// Null, with errno set, when the file cannot be read.
inline OpenedFile OpenForReading(const KELXFilePath& path) {
  return OpenedFile(path.OpenFile("rb"));
}

}  // namespace kelst
