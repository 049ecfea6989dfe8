#pragma once

#include <cstdio>
#include <string>

#include "base/KELXExport.h"

/// The name of a file: a value type. It need not exist.
class KELXBASE_API KELXFilePath {
 public:
  /// A path that names nothing; it cannot be opened.
  KELXFilePath() = default;

  /// The path at `utf8Path`, NUL-terminated and copied; null gives a path that names nothing.
  /// The bytes go to the system as they are, so a name that is not UTF-8 can be opened too.
  explicit KELXFilePath(const char* utf8Path);

  /// Names the same file.
  /// @{
  KELXFilePath(const KELXFilePath& other) = default;
  KELXFilePath& operator=(const KELXFilePath& other) = default;
  /// @}
  virtual ~KELXFilePath();

  /// The bytes of the path, as they were given.
  [[nodiscard]] std::string toUtf8() const { return path_; }

  /// Opens the file as `fopen` does with the same `mode`. The caller closes the result with
  /// `fclose`. Null when the file cannot be opened; `errno` then tells why. What a derived class
  /// makes of this is seen by WriteStreamToFile only: files that are read are opened through a copy
  /// of the path.
  virtual std::FILE* OpenFile(const char* mode) const;

 private:
  std::string path_;
};
