#pragma once

#include <span>
#include <string>

#include "tools/kelst/FileDescriptor.h"

namespace kelst {

/// An open folder. Whatever happens to the names on the way to it, files that are made in it are
/// made in that same folder.
///
/// Names are single path components, never "." or "..". Symbolic links in the folder are not
/// followed. Failures are thrown as std::system_error with the system's code.
class Folder {
 public:
  /// Opens the folder at `path`, here following links.
  static Folder Open(const std::string& path);

  /// The same, but makes it first where it is missing.
  static Folder OpenOrMake(const std::string& path);

  /// The same for a folder in this one.
  [[nodiscard]] Folder OpenOrMakeInside(const std::string& name) const;

  /// Whether anything stands under this name, be it a link that leads nowhere.
  [[nodiscard]] bool Has(const std::string& name) const;

  [[nodiscard]] int Descriptor() const { return descriptor_.Get(); }

 private:
  explicit Folder(FileDescriptor descriptor) : descriptor_(std::move(descriptor)) {}

  FileDescriptor descriptor_;
};

/// A file that comes to stand under its name when it is complete, and not before.
class NewFile {
 public:
  /// Makes the file in `folder`, which must outlive it, under another name.
  explicit NewFile(const Folder& folder);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Removes the file unless it was kept.
  ~NewFile();

  void Write(std::span<const unsigned char> bytes);

  /// Gives the file its name. What stands there is replaced, or else makes it fail with EEXIST.
  void Keep(const std::string& name, bool replace);

 private:
  const Folder& folder_;
  std::string temporaryName_;
  FileDescriptor descriptor_;
};

}  // namespace kelst
