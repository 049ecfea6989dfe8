#pragma once

#include <set>
#include <string>

#include "tests/analysis/MappedFile.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/PropertySetBuilder.h"
#include "tools/analysis/Analysis.h"

namespace kelx::test {

inline constexpr EntryIndex kOuter = 1;
inline constexpr EntryIndex kLarge = 2;
inline constexpr EntryIndex kSmall = 3;
inline constexpr EntryIndex kOther = 4;
inline constexpr EntryIndex kProperties = 5;
inline constexpr EntryIndex kEmpty = 6;
inline constexpr EntryIndex kSlot = 7;  // not in use

inline PropertySetBuilder Properties() {
  PropertySetBuilder set;
  set.Add(1, CodePage(1252)).Add(2, Lpstr("title")).Add(0, Dictionary({{2, std::string("Name")}}));
  return set;
}

/// A well-formed file with a stream of each kind.
inline CompoundFile Control(Format format = {}, const Bytes& properties = Properties().Build()) {
  CompoundFileBuilder builder(format);
  builder.AddStorage(kRoot, u"Outer");
  builder.AddStream(kRoot, u"Large", Pattern(70'000));
  builder.AddStream(kOuter, u"Small", Pattern(1000));
  builder.AddStream(kOuter, u"Other", Pattern(5000));
  builder.AddStream(kRoot, u"\x0005Properties", properties);
  builder.AddStream(kRoot, u"Empty", Content());
  return builder.Build();
}

inline kelst::FindingList FindingsOf(const MappedFile& file, std::uint64_t mostKept = 5) {
  kelst::FindingList findings(mostKept);
  kelst::CheckAll({file.tables, file.walk, file.map, file.File()}, findings);
  return findings;
}

using Codes = std::set<std::string>;

/// The codes of all that is found.
inline Codes CodesOf(const CompoundFile& built) {
  const MappedFile file(built.bytes);
  const kelst::FindingList findings = FindingsOf(file);
  Codes codes;
  for (const kelst::CodeFacts& facts : kelst::AllCodes()) {
    if (findings.Of(facts.code).count > 0) codes.emplace(facts.name);
  }
  return codes;
}

}  // namespace kelx::test
