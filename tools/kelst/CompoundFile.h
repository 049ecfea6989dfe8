#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KELXStStorage.h"
#include "tools/kelst/FileState.h"
#include "tools/kelst/FullDirectory.h"
#include "tools/kelst/Report.h"
#include "tools/kelst/Tree.h"

namespace kelst {

/// An open compound file: what every command works on.
class CompoundFile {
 public:
  /// Null, with the reason reported, when the file cannot be opened or is no compound file.
  static std::unique_ptr<CompoundFile> Open(const std::string& path, Report& report);

  CompoundFile(const CompoundFile&) = delete;
  CompoundFile& operator=(const CompoundFile&) = delete;

  /// The path as given, fit to be printed, and as valid UTF-8.
  [[nodiscard]] const std::string& Name() const { return name_; }
  [[nodiscard]] std::string Utf8Path() const;

  /// In bytes, at the time of opening.
  [[nodiscard]] std::uint64_t Size() const { return state_.Size(); }

  /// Whether the file was written to, replaced or removed since. What was read of it then may be
  /// of no one state of the file, and bytes that it has lost were read as zeros.
  [[nodiscard]] bool HasChanged() const { return FileState::Of(path_) != state_; }

  /// Where in the file a mini sector begins, in bytes; a place beyond any file when it has none.
  [[nodiscard]] std::uint64_t MiniSectorOffset(unsigned int miniSector) const;

  /// The root storage, and its image. The storage lists nothing itself; it reads streams.
  [[nodiscard]] KELIStorage& Root() { return *root_; }
  [[nodiscard]] const KELStStorageFileInfo& Image() const { return *root_->getStStorageFileInfo(); }

  [[nodiscard]] const FullDirectory& Directory() const { return directory_; }
  [[nodiscard]] const Tree& Entries() const { return tree_; }

  /// Reports what is wrong with the links between the entries, and a change of the file.
  void ReportProblems(Report& report) const;
  void ReportChange(Report& report) const;

  /// The position in the tree of the entry that `path` names, as ParseEntryPath takes it. Nothing,
  /// with the reason reported, when there is none; `what` is what was looked for, such as "stream".
  std::optional<std::size_t> Find(const std::string& path, std::string_view what,
                                  Report& report) const;

  /// The same for a stream; that an entry is none is reported too.
  std::optional<std::size_t> FindStream(const std::string& path, Report& report) const;

 private:
  CompoundFile(const std::string& path, const FileState& state, std::unique_ptr<KELIStorage> root);

  std::string path_;
  std::string name_;
  FileState state_;
  std::unique_ptr<KELIStorage> root_;
  FullDirectory directory_;
  Tree tree_;
  std::vector<unsigned int> miniStreamSectors_;  // of the file, in the order of the mini stream
};

}  // namespace kelst
