#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "tools/analysis/Analysis.h"
#include "tools/kelst/EntryPaths.h"
#include "tools/kelst/FileState.h"
#include "tools/kelst/OpenedFile.h"
#include "tools/kelst/Report.h"

namespace kelst {

/// A compound file of which everything is known but what its streams hold: what check, map and
/// report work on.
class InspectedFile {
 public:
  /// Null, with the reason reported, when the file cannot be opened or is no compound file.
  static std::unique_ptr<InspectedFile> Open(const std::string& path, Report& report);

  InspectedFile(const InspectedFile&) = delete;
  InspectedFile& operator=(const InspectedFile&) = delete;

  [[nodiscard]] const FileTables& Tables() const { return *tables_; }
  [[nodiscard]] const SectorMap& Map() const { return map_; }
  [[nodiscard]] EntryPaths& Paths() const { return paths_; }

  /// Reports when the file is not any more what it was at opening.
  void ReportChange(Report& report) const;

  /// All that is wrong with the file.
  [[nodiscard]] FindingList Check(std::uint64_t mostKept) const;

 private:
  InspectedFile(std::string path, const FileState& state, OpenedFile file,
                std::unique_ptr<const FileTables> tables)
      : path_(std::move(path)),
        state_(state),
        file_(std::move(file)),
        tables_(std::move(tables)),
        walk_(tables_->Directory()),
        map_(*tables_, walk_),
        paths_(tables_->Directory()) {}

  std::string path_;
  FileState state_;
  OpenedFile file_;
  std::unique_ptr<const FileTables> tables_;
  DirectoryWalk walk_;
  SectorMap map_;
  mutable EntryPaths paths_;  // made when they are asked for
};

}  // namespace kelst
