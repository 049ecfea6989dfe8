#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// The compound file format as the tests write it: byte order, sector marks, field positions.
///
/// Kept apart from the library on purpose, so that one mistake cannot hide on both sides.
namespace kelx::test {

using Bytes = std::vector<unsigned char>;

enum class ByteOrder { kLittle, kBig };

/// Stores the low `width` bytes of `value` at `at`.
inline void Store(unsigned char* at, std::uint64_t value, std::size_t width, ByteOrder order) {
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t place = order == ByteOrder::kLittle ? i : width - 1 - i;
    at[place] = static_cast<unsigned char>(value >> (8 * i));
  }
}

inline constexpr std::uint32_t kDifatSector = 0xFFFFFFFC;
inline constexpr std::uint32_t kFatSector = 0xFFFFFFFD;
inline constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr std::uint32_t kFreeSector = 0xFFFFFFFF;
/// The link of an entry that has no such sibling or child.
inline constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;

inline constexpr std::uint8_t kStorageType = 1;
inline constexpr std::uint8_t kStreamType = 2;
inline constexpr std::uint8_t kRootType = 5;

inline constexpr std::uint32_t kMiniSectorSize = 64;
inline constexpr std::uint32_t kHeaderSize = 512;
inline constexpr std::uint32_t kHeaderDifatCount = 109;
inline constexpr std::uint32_t kEntrySize = 128;
inline constexpr std::size_t kNameUnits = 32;
inline constexpr std::size_t kClassIdSize = 16;

/// An integer inside a header or a directory entry; `offset` and `width` are in bytes.
struct Field {
  std::size_t offset;
  std::size_t width;
};

namespace HeaderField {
inline constexpr std::size_t kSignatureOffset = 0;
inline constexpr Field kMinorVersion{24, 2};
inline constexpr Field kMajorVersion{26, 2};
inline constexpr Field kByteOrder{28, 2};
inline constexpr Field kSectorShift{30, 2};
inline constexpr Field kMiniSectorShift{32, 2};
inline constexpr Field kReserved{34, 2};
inline constexpr Field kReserved1{36, 4};
inline constexpr Field kDirectorySectorCount{40, 4};
inline constexpr Field kFatSectorCount{44, 4};
inline constexpr Field kDirectoryStart{48, 4};
inline constexpr Field kTransactionSignature{52, 4};
inline constexpr Field kMiniStreamCutoff{56, 4};
inline constexpr Field kMiniFatStart{60, 4};
inline constexpr Field kMiniFatSectorCount{64, 4};
inline constexpr Field kDifatStart{68, 4};
inline constexpr Field kDifatSectorCount{72, 4};
/// Place `i` (0 to 108) of the FAT sector numbers that the header itself lists.
constexpr Field Difat(std::size_t i) { return {76 + 4 * i, 4}; }
}  // namespace HeaderField

namespace EntryField {
inline constexpr std::size_t kNameOffset = 0;
inline constexpr std::size_t kClassIdOffset = 80;
inline constexpr Field kNameLength{64, 2};
inline constexpr Field kType{66, 1};
inline constexpr Field kColour{67, 1};
inline constexpr Field kLeftSibling{68, 4};
inline constexpr Field kRightSibling{72, 4};
inline constexpr Field kChild{76, 4};
inline constexpr Field kStateBits{96, 4};
inline constexpr Field kCreatedLow{100, 4};
inline constexpr Field kCreatedHigh{104, 4};
inline constexpr Field kModifiedLow{108, 4};
inline constexpr Field kModifiedHigh{112, 4};
inline constexpr Field kStartSector{116, 4};
inline constexpr Field kSize{120, 4};
inline constexpr Field kSizeHigh{124, 4};
}  // namespace EntryField

}  // namespace kelx::test
