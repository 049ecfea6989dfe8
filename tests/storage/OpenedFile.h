#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "storage/KELIStorage.h"
#include "storage/KELIStream.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {

inline KELXFilePath PathTo(const std::string& path) { return KELXFilePath(path.c_str()); }

/// A built file on disk, opened as a root storage.
struct OpenedFile {
  explicit OpenedFile(const CompoundFile& built)
      : file(built.bytes), root(std::make_unique<KELIStorage>(PathTo(file.Path()))) {}

  TemporaryFile file;
  std::unique_ptr<KELIStorage> root;
};

/// What a call left in the pointer that it was given.
enum class Out { kUntouched, kNull, kObject };

template <typename T>
struct Outcome {
  int status;
  Out out;
  std::unique_ptr<T> object;
};

/// Calls `open(&pointer)` with a pointer that is neither null nor what the call could store.
template <typename T, typename Open>
Outcome<T> Try(T& sentinel, Open open) {
  T* pointer = &sentinel;
  const int status = open(&pointer);
  if (pointer == &sentinel) return {status, Out::kUntouched, nullptr};
  return {status, pointer == nullptr ? Out::kNull : Out::kObject, std::unique_ptr<T>(pointer)};
}

inline Outcome<KELIStream> TryStream(KELIStorage& storage, std::string_view name) {
  KELIStream sentinel(0);
  return Try(sentinel, [&](KELIStream** stream) {
    return storage.openStream(KELXString::fromUtf8(name), stream);
  });
}

inline Outcome<KELIStorage> TryStorage(KELIStorage& storage, std::string_view name) {
  KELIStorage sentinel;
  return Try(sentinel, [&](KELIStorage** opened) {
    return storage.openStorage(KELXString::fromUtf8(name), opened);
  });
}

/// The bytes from the position to the end.
inline Bytes Rest(KELIStream& stream) {
  Bytes bytes;
  Bytes piece(4096);
  for (unsigned long read = piece.size(); read == piece.size();) {
    stream.Read(piece.data(), piece.size(), &read);
    bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(read));
  }
  return bytes;
}

/// What a child stream holds; nothing when it cannot be opened.
inline Bytes Contents(KELIStorage& storage, std::string_view name) {
  const auto stream = TryStream(storage, name);
  return stream.status == 0 && stream.object ? Rest(*stream.object) : Bytes();
}

inline std::vector<std::string> NamesIn(const KELXDynamicArray<KELStStorageDirEntry>& entries) {
  std::vector<std::string> names;
  for (const KELStStorageDirEntry& entry : entries) names.push_back(entry.getName().toUtf8());
  return names;
}

}  // namespace kelx::test
