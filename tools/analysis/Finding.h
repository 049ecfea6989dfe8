#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kelst {

enum class Severity : std::uint8_t {
  kError,    ///< content is lost or doubtful
  kWarning,  ///< a rule is broken, and yet all can be read
  kNote,     ///< no fault, but worth knowing
};

/// What can be wrong with a file. docs/findings.md explains each under its name.
enum class FindingCode : std::uint8_t {
  kSignatureWrong,
  kByteOrderUnknown,
  kByteOrderReversed,
  kVersionWrong,
  kCutoffUnusual,
  kHeaderCut,
  kFileTooLarge,
  kHeaderCountWrong,
  kFatSectorOutside,
  kFatSectorRepeated,
  kFatListGap,
  kFatSectorUnmarked,
  kDifatSectorUnmarked,
  kChainLoops,
  kChainOutside,
  kChainCrosses,
  kChainCut,
  kChainShort,
  kChainLong,
  kMiniChainLong,
  kSectorFreeButUsed,
  kSectorMarkedWrong,
  kSectorLost,
  kFatEntryStray,
  kTablePadding,
  kMiniStreamShort,
  kAppendedData,
  kFreeTail,
  kRootMissing,
  kRootRepeated,
  kRootHasSiblings,
  kEntryTypeUnknown,
  kEntryNameInvalid,
  kEntryNameCharacter,
  kEntryColourInvalid,
  kEntryLinkOutside,
  kEntryReachedTwice,
  kEntryEmptyLinked,
  kEntryUnreachable,
  kEntryNamesEqual,
  kEntryOutOfOrder,
  kStreamHasChild,
  kStreamTooLarge,
  kSizeHighBits,
  kPropertySetRejected,
  kPropertySetCut,
  kPropertySectionCount,
  kPropertySectionMoved,
  kPropertyValueOutside,
  kPropertyTypeUnknown,
  kPropertySetTooLarge,
};

/// The name of a code never changes: scripts look for it.
struct CodeFacts {
  FindingCode code;
  Severity severity;
  std::string_view name;
};

/// Every code, in the order of the enumeration.
std::span<const CodeFacts> AllCodes();

const CodeFacts& FactsOf(FindingCode code);

std::string_view NameOf(Severity severity);  ///< "error", "warning", "note"

/// Where something was found.
struct Place {
  enum class Unit : std::uint8_t { kByte, kSector, kMiniSector };

  Unit unit = Unit::kByte;
  std::uint64_t first = 0;               ///< a byte of the file, or a sector
  std::uint64_t count = 1;               ///< neighbouring sectors
  std::optional<std::uint32_t> entry{};  ///< the directory entry that it is about
};

struct Finding {
  Place place;
  std::string text;  ///< a sentence without its end; nothing in it comes from the file but numbers
};

}  // namespace kelst
