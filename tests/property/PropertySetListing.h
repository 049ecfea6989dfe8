#pragma once

#include <string>
#include <vector>

#include "property/KELIPropertyStorageHandle.h"
#include "tests/support/DiskFormat.h"

namespace kelx::test {

/// A property as text: `id[name]kind=value`, the identifier in hexadecimal.
std::string Describe(const KELXPropertyHandle& property);
std::vector<std::string> Listing(const KELXDynamicArray<KELXPropertyHandle>& properties);

/// The number of bytes of the value's text as UTF-8.
std::size_t ValueLength(const KELXPropertyHandle& property);

/// The property set in `stream`; an invalid handle when it is refused.
KELIPropertyStorageHandle Parse(const Bytes& stream);

/// The listing of the set in `stream`, which is not refused.
std::vector<std::string> ListingOf(const Bytes& stream);

}  // namespace kelx::test
