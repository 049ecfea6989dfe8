#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "KELXStStorage.h"

namespace kelst {

/// What the library keeps to itself of a directory entry, or keeps in part.
struct FullEntry {
  std::u16string name;                    ///< as long as the entry says, at most 32 units
  std::uint16_t nameBytes;                ///< the length of the name as stated, in bytes
  std::uint8_t colour;                    ///< in the tree of siblings
  std::array<unsigned char, 16> classId;  ///< as stored
  std::uint32_t stateBits;
  std::uint64_t created;   ///< 100 ns units since 1601-01-01T00:00:00Z; 0 when not recorded
  std::uint64_t modified;  ///< the same
  std::uint64_t size;      ///< in bytes, all 64 bits of it
};

/// The directory of a compound file, with all that its entries hold.
class FullDirectory {
 public:
  /// Reads the file of `image` again: `file`, which stays the caller's; where that is null every
  /// byte is zero. It ends with the library's, or before where `fat` says kUnknownLink.
  FullDirectory(const KELStStorageFileInfo& image, std::FILE* file,
                const KELXDynamicArray<unsigned int>& fat);

  [[nodiscard]] std::uint32_t Count() const { return static_cast<std::uint32_t>(full_.size()); }

  /// The entry with a directory index below Count(), as the library has it and in full.
  [[nodiscard]] const KELStStorageDirEntry& At(std::uint32_t index) const {
    return *entries_.At(static_cast<int>(index));
  }
  [[nodiscard]] const FullEntry& FullAt(std::uint32_t index) const { return full_[index]; }

 private:
  const KELXDynamicArray<KELStStorageDirEntry> entries_;
  std::vector<FullEntry> full_;
};

}  // namespace kelst
