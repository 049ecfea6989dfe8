#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kelx::test {

/// A new empty folder, removed with all it holds in the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& Path() const { return path_; }
  /// The path that a file of this name has; makes no file.
  std::string PathOf(std::string_view name) const;
  /// Makes or replaces the file of this name. The result is its path.
  std::string Write(std::string_view name, std::span<const unsigned char> bytes) const;

 private:
  std::string path_;
};

/// A file that holds the given bytes, in a folder of its own.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::span<const unsigned char> bytes = {});

  const std::string& Path() const { return path_; }

 private:
  TemporaryFolder folder_;
  std::string path_;
};

}  // namespace kelx::test
