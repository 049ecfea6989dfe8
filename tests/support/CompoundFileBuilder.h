#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/CompoundFileEntry.h"
#include "tests/support/CompoundFileLayout.h"
#include "tests/support/Content.h"

namespace kelx::test {

/// A file in memory.
struct CompoundFile {
  Bytes bytes;
  Layout layout;
};

/// Makes compound files, well-formed unless an option says otherwise.
///
///     CompoundFileBuilder builder({.sectorSize = 4096});
///     const EntryIndex pool = builder.AddStorage(kRoot, u"Pool");
///     builder.AddStream(pool, u"Small", Pattern(100), {.stateBits = 7});
///     CompoundFile file = builder.Build();
class CompoundFileBuilder {
 public:
  explicit CompoundFileBuilder(Format format = {}, EntryOptions root = {});

  /// A name has up to 32 code units of any value; with 32 it is stored without its final zero.
  EntryIndex AddStorage(EntryIndex parent, std::u16string_view name, EntryOptions options = {});
  EntryIndex AddStream(EntryIndex parent, std::u16string_view name, Content content,
                       EntryOptions options = {});

  CompoundFile Build() const;

  /// Writes the same bytes to an empty seekable file, holding no stream but the mini stream.
  Layout WriteTo(std::FILE* file) const;
  Layout WriteTo(const std::string& path) const;

 private:
  EntryIndex Add(CompoundFileEntry entry);

  Format format_;
  std::vector<CompoundFileEntry> entries_;
};

}  // namespace kelx::test
