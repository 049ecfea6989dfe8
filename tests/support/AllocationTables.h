#pragma once

#include <cstdint>
#include <vector>

#include "tests/support/CompoundFileLayout.h"
#include "tests/support/Content.h"

namespace kelx::test {

/// What the allocation tables of a planned file hold, from their first value on.
std::vector<std::uint32_t> FatValues(const Layout& layout);
std::vector<std::uint32_t> MiniFatValues(const Layout& layout);
/// The FAT sectors from place `inHeader` on, and the links between the DIFAT sectors.
std::vector<std::uint32_t> DifatValues(const Layout& layout, std::size_t inHeader);

/// `size` bytes of a table: its values, then free ones to the end.
Content TableContent(std::vector<std::uint32_t> values, std::uint64_t size, ByteOrder order);

}  // namespace kelx::test
