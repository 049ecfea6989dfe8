#pragma once

#include "tests/support/CompoundFileEntry.h"
#include "tests/support/CompoundFileLayout.h"
#include "tests/support/SiblingTree.h"

namespace kelx::test {

/// The 512 bytes at the start of the file.
Bytes EncodeHeader(const Format& format, const Layout& layout);

/// The directory, empty slots to the end of its last sector included.
Bytes EncodeDirectory(std::span<const CompoundFileEntry> entries, std::span<const Links> links,
                      const Layout& layout);

}  // namespace kelx::test
