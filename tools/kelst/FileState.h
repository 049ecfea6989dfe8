#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>

namespace kelst {

/// What is said of a file that is no longer as it was.
inline constexpr const char* kChanged = "the file changed while it was read";

/// What tells whether a path still leads to the same file, and that to the same content. The
/// library opens a file anew for each large stream, so what it reads may not be of one piece.
class FileState {
 public:
  /// Nothing, with errno set, when there is no file at `path`.
  static std::optional<FileState> Of(const std::string& path);

  [[nodiscard]] mode_t Mode() const { return facts_.st_mode; }
  [[nodiscard]] std::uint64_t Size() const { return static_cast<std::uint64_t>(facts_.st_size); }

  /// Of one file that was neither written to nor replaced in between.
  bool operator==(const FileState& other) const;

 private:
  explicit FileState(const struct stat& facts) : facts_(facts) {}

  struct stat facts_;
};

}  // namespace kelst
