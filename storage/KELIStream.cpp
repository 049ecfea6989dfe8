#include "storage/KELIStream.h"

#include <algorithm>
#include <climits>
#include <cstring>

KELIStream::KELIStream(unsigned long size) { bytes_.Reserve(static_cast<int>(size)); }

KELIStream::~KELIStream() = default;

int KELIStream::Read(void* buffer, unsigned long count, unsigned long* read) {
  const auto held = static_cast<unsigned long>(bytes_.Count());
  const unsigned long copied = position_ < held ? std::min(count, held - position_) : 0;
  if (copied > 0) std::memcpy(buffer, bytes_.begin() + position_, copied);
  position_ += copied;
  if (read != nullptr) *read = copied;
  return 0;
}

int KELIStream::Write(void* data, unsigned long count, unsigned long* written) {
  const int held = bytes_.Count();
  if (count <= INT_MAX) {
    bytes_.Append(static_cast<const unsigned char*>(data), static_cast<int>(count));
  }
  if (written != nullptr) *written = static_cast<unsigned long>(bytes_.Count() - held);
  return 0;
}

int KELIStream::Seek(unsigned long offset, unsigned long origin) {
  position_ = origin + offset;
  return 0;
}

int KELIStream::SeekCur(unsigned long delta) {
  position_ += delta;
  return 0;
}

int KELIStream::Dump(std::FILE* file) {
  const auto held = static_cast<std::size_t>(bytes_.Count());
  if (file != nullptr && held > 0) {
    static_cast<void>(std::fwrite(bytes_.begin(), 1, held, file));
  }
  return 0;
}

int KELIStream::Stat(KELStStorageDirEntry* entry) {
  if (entry != nullptr) *entry = entry_;
  return 0;
}

void KELIStream::setDirEntry(const KELStStorageDirEntry& entry) { entry_ = entry; }

KELStStorageDirEntry KELIStream::getDirEntry() { return entry_; }
