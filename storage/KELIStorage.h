#pragma once

#include <memory>

#include "base/KELXDynamicArray.h"
#include "base/KELXExport.h"
#include "base/KELXFilePath.h"
#include "base/KELXString.h"
#include "compound/KELStStorageDirEntry.h"
#include "compound/KELStStorageFileInfo.h"
#include "property/KELIPropertySetStorageHandle.h"

class KELIStream;

/// A storage of a compound file: the root of the file, or a storage below it.
///
/// Each storage has its own copy of the file's image (a cheap one: copies share their content).
/// Nothing refers back to the storage that it came from, so storages and streams of one file may
/// be deleted in any order. A storage belongs to whoever received it, who deletes it (or calls
/// CloseStorage). It remembers what it has listed, so one storage is for one thread at a time;
/// different storages, of one file too, may be used on different threads.
///
/// Operations that return a status return 0 for success and -1 for failure. What a failure does to
/// the out-pointer stands at each of them.
class KELXSTSTORAGE_API KELIStorage {
 public:
  /// A storage without an image, without children.
  KELIStorage();

  /// The root storage of the file at `path`. When the file cannot be opened or is no compound
  /// file, getStStorageFileInfo()->checkValidity() is false and the storage has no children.
  explicit KELIStorage(const KELXFilePath& path);

  KELIStorage(const KELIStorage&) = delete;
  KELIStorage& operator=(const KELIStorage&) = delete;
  ~KELIStorage();

  /// Opens the child stream `name`, letter case ignored; of several the one with the lowest
  /// directory index. On success the caller owns `*stream`. On failure:
  /// - no image, a stream of 0 bytes, or a large stream whose file cannot be opened again:
  ///   `*stream` is untouched, so set it to null before the call;
  /// - no such child, a child that is no stream or not valid, or a large stream whose chain of
  ///   sectors loops or leaves the FAT: `*stream` is null;
  /// - a small stream whose chain of mini sectors loops, leaves the mini stream or is longer than
  ///   the size: `*stream` holds the bytes read so far, those of a loop again and again up to the
  ///   size, without a directory entry, and the caller owns it.
  /// A chain that ends early is no failure: the stream then holds fewer bytes than its entry says,
  /// and none when the entry says 2^31 or more. Bytes that the file has lost are zero.
  int openStream(const KELXString& name, KELIStream** stream);

  /// Finds the stream `name`, letter case ignored, and copies its entry to `entry`; false, with
  /// `entry` untouched, when there is none. With `directOnly` only children count. Without it the
  /// children of each child storage are looked at too, when its turn comes in directory order: a
  /// stream in an earlier child storage is found before a later child.
  bool searchStream(const KELXString& name, KELStStorageDirEntry& entry, bool directOnly);

  /// Reads the stream that `entry` describes from sectors of the file, whatever its size. Succeeds
  /// and fails as openStream does with a large stream; -1 also when `stream` is null.
  int getStreamFromFat(const KELStStorageDirEntry& entry, KELIStream** stream);

  /// Reads the stream that `entry` describes from the mini stream, whatever its size. Succeeds and
  /// fails as openStream does with a small stream; -1 also when `stream` is null.
  int getStreamFromMiniFat(const KELStStorageDirEntry& entry, KELIStream** stream);

  /// Opens the child storage `name`, letter case included, of several the one with the lowest
  /// directory index, and reads its property sets. In a damaged file a storage can contain itself:
  /// a walk through all storages needs a bound of its own. On success the caller owns `*storage`;
  /// when there is no such valid child storage `*storage` is null.
  int openStorage(const KELXString& name, KELIStorage** storage);

  /// Finds the storage `name`, letter case included, as searchStream finds a stream.
  bool searchStorage(const KELXString& name, KELStStorageDirEntry& entry, bool directOnly);

  /// Lists every child, whatever its type, in ascending directory index: replaces the content of
  /// `elements` by copies of their entries. -1 when there are none; `elements` is then empty, or
  /// untouched when the storage's entry has no child link at all: give an empty one. The first list
  /// that is not empty is kept and answers every later call.
  int enumElements(KELXDynamicArray<KELStStorageDirEntry>& elements);

  /// Appends to `indices` the directory index `index` and those of all entries that sibling links
  /// reach from it, each unless `indices` holds it already. An index beyond the directory is
  /// listed, and nothing is reached from it. Without an image nothing is appended.
  void getColleagueIndexArray(unsigned long index, KELXDynamicArray<unsigned long>& indices);

  /// The storage's property sets, read on the first call, and again on each call that has found
  /// none before. Never null. Lent: it is good while this storage lives and is not given another
  /// collection; raise its count to keep it longer.
  KELIPropertySetStorage* getPropertySetStorage();

  /// Replaces the storage's property sets by `set`, whose count is raised, or by none when it is
  /// null.
  void setPropertySetStorage(KELIPropertySetStorage* set);

  /// Gives this storage a copy of `*image`, which stays the caller's, in the place of the one it
  /// has. The children listed before stay. Null is ignored.
  void setStStorageFileInfo(KELStStorageFileInfo* image);

  /// This storage's image, lent for as long as the storage keeps it; null when it has none.
  KELStStorageFileInfo* getStStorageFileInfo();

  /// Replaces the storage's own entry by a copy of `entry`. The children listed before stay.
  void setDirectoryEntry(const KELStStorageDirEntry& entry);

  /// A copy of the storage's own entry.
  [[nodiscard]] KELStStorageDirEntry getDirectoryEntry();

 private:
  struct NameIndexes;

  void FillElements(unsigned int child);
  const NameIndexes& Names();
  template <typename Search>
  bool SearchChildStorages(int end, Search search);

  std::unique_ptr<KELStStorageFileInfo> image_;
  KELStStorageDirEntry entry_;
  KELXDynamicArray<KELStStorageDirEntry> elements_;
  KELIPropertySetStorageHandle propertySets_{nullptr};
  std::unique_ptr<NameIndexes> names_;  // of elements_, once there are any
};
