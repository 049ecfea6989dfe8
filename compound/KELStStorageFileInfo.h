#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

#include "base/KELXDynamicArray.h"
#include "base/KELXExport.h"
#include "base/KELXFilePath.h"
#include "compound/KELStStorageDirEntry.h"
#include "compound/KELStStorageHeader.h"

/// The container structure of one compound file, held in memory: header, allocation tables,
/// directory and mini stream.
///
/// It is loaded once and then only read. The file is open during loading alone. Copies share their
/// content and cost next to nothing; they live on when the image they were made from is gone, and
/// may be used on other threads. Every accessor returns a copy.
///
/// Whatever a file holds, loading takes time and memory in proportion to the length of the file,
/// plus a fixed allowance: chains end where they return to a sector they have met, and beyond so
/// many sectors that no well-formed file of that length could have them (docs/limits.md).
class KELXSTSTORAGE_API KELStStorageFileInfo {
 public:
  /// An empty, invalid image.
  KELStStorageFileInfo();

  /// Loads the file at `path`. Afterwards checkValidity tells whether it is a compound file: it
  /// could be opened and its header passed checkHeader. Damage further on does not make it
  /// invalid: what lies beyond the end of the file reads as zeros, and chains end where they can
  /// not go on. Of a file that was refused the image keeps the header.
  explicit KELStStorageFileInfo(const KELXFilePath& path);

  /// The same image.
  KELStStorageFileInfo(const KELStStorageFileInfo& other);

  /// Takes over the content of `other` and returns another copy of it, by value.
  KELStStorageFileInfo operator=(const KELStStorageFileInfo& other);

  ~KELStStorageFileInfo();

  /// Whether a compound file was loaded.
  [[nodiscard]] bool checkValidity() const;

  /// Whether the header is one of a compound file: both reserved fields 0, fewer than 8 directory
  /// sectors stated, a sector shift of 9 or 12 and a mini sector shift of 6. Signature, versions
  /// and byte-order mark are not tested.
  [[nodiscard]] bool checkHeader() const;

  /// The header as it was read, its `headerDifSect` null; of an empty image all zeros.
  [[nodiscard]] KELStStorageHeader getHeader() const;

  /// The FAT: entry i is the number of the sector that follows sector i in its chain. Numbers from
  /// 0xFFFFFFFC on are marks that end a chain.
  [[nodiscard]] KELXDynamicArray<unsigned int> getFatSector() const;

  /// The mini FAT, the same for the mini sectors.
  [[nodiscard]] KELXDynamicArray<unsigned int> getMiniFatSector() const;

  /// Every entry of the directory, empty slots included, so that index and identifier agree.
  [[nodiscard]] KELXDynamicArray<KELStStorageDirEntry> getDirArray() const;

  /// The bytes of the mini stream. Mini sector s begins at byte 64 s.
  [[nodiscard]] KELXDynamicArray<unsigned char> getMiniStream() const;

  /// The path that the image was loaded from.
  [[nodiscard]] KELXFilePath GetFilePath() const;

  /// The first directory entry, whatever its type; a default entry when there is none.
  [[nodiscard]] KELStStorageDirEntry getRootDirEntry() const;

  /// The offset in the file, in bytes, at which `sector` begins. Only 32 bits of the sector's
  /// distance from sector 0 count.
  [[nodiscard]] unsigned long getEquivalentFatBytePos(unsigned int sector) const;

  /// The offset in the mini stream, in bytes and modulo 2^32, at which mini sector `sector` begins.
  [[nodiscard]] unsigned int getEquivalentMiniFatBytePos(unsigned int sector) const;

  /// First sector and size in bytes of the mini stream, as the first directory entry states them;
  /// 0 when that is no root entry. Of a damaged file getMiniStream may hold less.
  /// @{
  [[nodiscard]] unsigned int getMiniStreamStartSect() const;
  [[nodiscard]] unsigned long getMiniStreamLength() const;
  /// @}

  /// The most sectors that a chain is followed for: as many as the file had when it was loaded,
  /// and some more for files that were cut short.
  [[nodiscard]] unsigned long getLongestChain() const;

  /// @name The steps of loading, in order
  /// The constructor takes them all; they are of use for looking into one of them. Each reads from
  /// `file`, which must be open for reading and stays the caller's, and does nothing when that is
  /// null. The steps after setHeader add to what the image holds and take for granted that
  /// checkHeader is true. None makes an image valid.
  /// @{

  /// Reads the header and decides the byte order. The header's own DIFAT entries, owned by the
  /// image, are then at `headerDifSect` of this image only, never of copies.
  void setHeader(std::FILE* file);

  /// Collects the numbers of the FAT sectors that DIFAT sectors hold.
  void readDifSector(std::FILE* file);

  /// Reads the FAT.
  void readFatSector(std::FILE* file);

  /// Reads the mini FAT by following its chain.
  void readMiniFatSector(std::FILE* file);

  /// Reads every directory entry by following the directory's chain.
  void readDirectorySector(std::FILE* file);

  /// Reads the 128-byte directory entry at the current position into `entry` and moves the
  /// position past it.
  void readDirEntry(std::FILE* file, KELStStorageDirEntry& entry);

  /// Reads the mini stream by following its chain.
  void setMiniStreamData(std::FILE* file);

  /// Appends `count` bytes from `bytes` to the mini stream; nothing when `count` is 0 or less.
  void addBytesToMiniBuffer(unsigned char* bytes, int count);

  /// @}

 private:
  void Load(std::FILE* file);
  void ReadTable(std::FILE* file, unsigned int firstSector, unsigned int sectorCount,
                 KELXDynamicArray<unsigned int>& table) const;
  template <typename ForEach>
  void ReadTables(std::FILE* file, std::uint64_t sectorCount, KELXDynamicArray<unsigned int>& table,
                  ForEach forEach) const;
  [[nodiscard]] unsigned int SectorShift() const;
  [[nodiscard]] unsigned int SectorSize() const { return 1U << SectorShift(); }
  [[nodiscard]] const KELStStorageDirEntry* RootEntry() const;

  KELXFilePath path_;
  KELStStorageHeader header_;
  KELXDynamicArray<unsigned int> fatSector_;
  KELXDynamicArray<unsigned int> miniFatSector_;
  KELXDynamicArray<unsigned int> difSector_;
  KELXDynamicArray<KELStStorageDirEntry> dirArray_;
  KELXDynamicArray<unsigned char> miniStream_;
  bool valid_ = false;
  bool sameByteOrder_ = true;
  std::unique_ptr<unsigned int[]> headerDifat_;
  std::uint64_t fileLength_ = 0;
};
