#pragma once

#include <cstdio>

#include "base/KELXDynamicArray.h"
#include "base/KELXExport.h"
#include "compound/KELStStorageDirEntry.h"

/// One stream of a compound file, held in memory: its bytes, a read position and its directory
/// entry.
///
/// A stream knows nothing of the storage and the file that it came from and outlives both. It
/// belongs to whoever received it, who deletes it (or calls CloseStream). One stream is for one
/// thread at a time.
///
/// The bytes held and the size in the directory entry are separate facts: a damaged file can give
/// a stream fewer bytes than its entry says. Reads are bounded by the bytes held.
///
/// Operations that return a status return 0; none of them fails. Counts and positions are in
/// bytes.
class KELXSTSTORAGE_API KELIStream {
 public:
  /// An empty stream with room for `size` bytes; no room is made for 2^31 and more.
  explicit KELIStream(unsigned long size);
  ~KELIStream();

  /// Copies up to `count` bytes from the position to `buffer`, moves the position past them and
  /// stores their number in `*read` unless that is null. The rest of `buffer` is not touched. At
  /// or past the end 0 bytes are copied, which is the only sign of the end.
  int Read(void* buffer, unsigned long count, unsigned long* read);

  /// Appends `count` bytes from `data` at the end, wherever the position is, and stores the number
  /// appended in `*written` unless that is null. The position stays. A stream holds at most
  /// 2^31 - 1 bytes; a write that would pass that appends nothing.
  int Write(void* data, unsigned long count, unsigned long* written);

  /// Sets the position to `origin + offset`, modulo 2^64. `origin` is a position, not a code. The
  /// position may lie past the end.
  int Seek(unsigned long offset, unsigned long origin);

  /// Adds `delta` to the position, modulo 2^64.
  int SeekCur(unsigned long delta);

  /// Writes every byte held to `file`, which stays the caller's; null is ignored. The position
  /// plays no part, and whether the bytes could be written is not looked at.
  int Dump(std::FILE* file);

  /// Copies the stream's directory entry to `*entry`; null is ignored.
  int Stat(KELStStorageDirEntry* entry);

  /// Replaces the stream's directory entry by a copy of `entry`.
  void setDirEntry(const KELStStorageDirEntry& entry);

  /// A copy of the stream's directory entry; a default one until one is set.
  [[nodiscard]] KELStStorageDirEntry getDirEntry();

 private:
  friend class KELIStorage;  // fills the bytes straight from the file

  KELXDynamicArray<unsigned char> bytes_;
  unsigned long position_ = 0;
  KELStStorageDirEntry entry_;
};
