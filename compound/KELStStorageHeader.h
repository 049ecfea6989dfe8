#pragma once

#include "base/KELXExport.h"

/// The header record of a compound file: plain fields, as read.
///
/// It owns nothing. Numbers are in host byte order, whatever order the file has. Copies are plain
/// copies of the fields.
class KELXSTSTORAGE_API KELStStorageHeader {
 public:
  /// Every field zero or null.
  KELStStorageHeader() = default;

  /// The same fields; the pointer is copied too.
  /// @{
  KELStStorageHeader(const KELStStorageHeader&) = default;
  KELStStorageHeader& operator=(const KELStStorageHeader&) = default;
  /// @}

  ~KELStStorageHeader() { headerDifSect = nullptr; }

  static constexpr int kDifatOffset = 76;    ///< where the header's DIFAT entries begin, in bytes
  static constexpr int kDifatEntries = 109;  ///< and how many there are

  unsigned int* headerDifSect = nullptr;  ///< the header's own DIFAT entries, numbers of FAT
                                          ///< sectors; null but while a file is loading
  unsigned char signature[8] = {};        ///< stored, not tested
  unsigned char clsID[16] = {};           ///< class identifier, bytes as stored
  unsigned short minorVersion = 0;        ///< stored, not tested
  unsigned short majorVersion = 0;        ///< stored, not tested
  unsigned short byteOrder = 0;           ///< 0xFFFE: the file's byte order is the host's
  unsigned short sectorShift = 0;         ///< a sector has 2 to this power bytes: 9 or 12
  unsigned short miniSectorShift = 0;     ///< the same of a mini sector: 6
  unsigned short reserved = 0;            ///< must be 0
  unsigned int reserved1 = 0;             ///< must be 0
  unsigned int numDirSects = 0;           ///< directory sectors; must be below 8, else not used
  unsigned int numFatSects = 0;           ///< FAT sectors; not used
  unsigned int dirStartSect = 0;          ///< first sector of the directory chain
  unsigned int transactionSignature = 0;  ///< not used
  unsigned int miniStreamCutoff = 0;      ///< streams of at least so many bytes lie in sectors of
                                          ///< the file, smaller ones in the mini stream
  unsigned int miniFatStartSect = 0;      ///< first sector of the mini FAT chain
  unsigned int numMiniFatSects = 0;       ///< mini FAT sectors; not used
  unsigned int difStartSect = 0;          ///< first DIFAT sector
  unsigned int numDifSects = 0;           ///< DIFAT sectors
  int sectorBase = 0;                     ///< the sector size less kDifatOffset, once that is known
};
