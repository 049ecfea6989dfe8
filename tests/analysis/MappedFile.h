#pragma once

#include "tests/support/TemporaryFile.h"
#include "tools/analysis/SectorMap.h"
#include "tools/kelst/OpenedFile.h"

namespace kelx::test {

/// A file on disk with its tables and its map.
class MappedFile {
 public:
  explicit MappedFile(std::span<const unsigned char> bytes)
      : file_(bytes), opened_(kelst::OpenForReading(KELXFilePath(file_.Path().c_str()))) {}

  std::FILE* File() const { return opened_.get(); }

 private:
  TemporaryFile file_;
  kelst::OpenedFile opened_;

 public:
  const kelst::FileTables tables{opened_.get()};
  const kelst::DirectoryWalk walk{tables.Directory()};
  const kelst::SectorMap map{tables, walk};
};

}  // namespace kelx::test
