#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/CompoundFileBuilder.h"

// The files that are measured, made once by the project's own builder and kept in the build folder.
// Each function returns the path of a file.

namespace kelx::bench {

/// The bytes of a small stream: eleven mini sectors.
inline constexpr std::size_t kSmallStream = 700;

std::string SmallStreams(int count, test::Siblings siblings);
std::string LargeStream(std::uint64_t bytes, test::Placement placement);

/// Storages below the root, each with two small streams.
std::string SubStorages(int count);

/// A file whose FAT has about `fatSectors` sectors, which DIFAT sectors list, and little else.
std::string LargeFat(std::uint32_t fatSectors);

/// The stream of a property set with so many properties of mixed types.
std::vector<unsigned char> PropertySet(int properties);

/// The name of small stream or storage number `i`.
std::u16string NameOf(int i);

}  // namespace kelx::bench
