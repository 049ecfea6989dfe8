#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "tests/support/Content.h"
#include "tests/support/DiskFormat.h"

namespace kelx::test {

/// A directory identifier: the root is 0, the others count up in the order of adding.
using EntryIndex = std::uint32_t;
inline constexpr EntryIndex kRoot = 0;

/// What an entry carries beside its name and content. Times are 100 ns units since 1601.
struct EntryOptions {
  std::array<unsigned char, kClassIdSize> classId{};
  std::uint32_t stateBits = 0;
  std::uint64_t created = 0;
  std::uint64_t modified = 0;
  std::optional<std::uint8_t> type{};    ///< instead of that of a root, storage or stream
  std::optional<std::uint8_t> colour{};  ///< instead of that of a valid sibling tree
};

struct CompoundFileEntry {
  std::u16string name;
  EntryIndex parent = kRoot;
  std::uint8_t type = kStorageType;
  Content content;
  EntryOptions options;
};

}  // namespace kelx::test
