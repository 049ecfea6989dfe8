#include "tools/analysis/Finding.h"

#include <array>

namespace kelst {

namespace {

using Code = FindingCode;

constexpr auto kCodes = std::to_array<CodeFacts>({
    {Code::kSignatureWrong, Severity::kError, "signature-wrong"},
    {Code::kByteOrderUnknown, Severity::kError, "byte-order-unknown"},
    {Code::kByteOrderReversed, Severity::kWarning, "byte-order-reversed"},
    {Code::kVersionWrong, Severity::kWarning, "version-wrong"},
    {Code::kCutoffUnusual, Severity::kWarning, "cutoff-unusual"},
    {Code::kHeaderCut, Severity::kError, "header-cut"},
    {Code::kFileTooLarge, Severity::kNote, "file-too-large"},
    {Code::kHeaderCountWrong, Severity::kWarning, "header-count-wrong"},
    {Code::kFatSectorOutside, Severity::kError, "fat-sector-outside"},
    {Code::kFatSectorRepeated, Severity::kError, "fat-sector-repeated"},
    {Code::kFatListGap, Severity::kWarning, "fat-list-gap"},
    {Code::kFatSectorUnmarked, Severity::kWarning, "fat-sector-unmarked"},
    {Code::kDifatSectorUnmarked, Severity::kWarning, "difat-sector-unmarked"},
    {Code::kChainLoops, Severity::kError, "chain-loops"},
    {Code::kChainOutside, Severity::kError, "chain-outside"},
    {Code::kChainCrosses, Severity::kError, "chain-crosses"},
    {Code::kChainCut, Severity::kError, "chain-cut"},
    {Code::kChainShort, Severity::kError, "chain-short"},
    {Code::kChainLong, Severity::kWarning, "chain-long"},
    {Code::kMiniChainLong, Severity::kError, "mini-chain-long"},
    {Code::kSectorFreeButUsed, Severity::kError, "sector-free-but-used"},
    {Code::kSectorMarkedWrong, Severity::kWarning, "sector-marked-wrong"},
    {Code::kSectorLost, Severity::kWarning, "sector-lost"},
    {Code::kFatEntryStray, Severity::kWarning, "fat-entry-stray"},
    {Code::kTablePadding, Severity::kNote, "table-padding"},
    {Code::kMiniStreamShort, Severity::kError, "mini-stream-short"},
    {Code::kAppendedData, Severity::kWarning, "appended-data"},
    {Code::kFreeTail, Severity::kNote, "free-tail"},
    {Code::kRootMissing, Severity::kError, "root-missing"},
    {Code::kRootRepeated, Severity::kError, "root-repeated"},
    {Code::kRootHasSiblings, Severity::kWarning, "root-has-siblings"},
    {Code::kEntryTypeUnknown, Severity::kError, "entry-type-unknown"},
    {Code::kEntryNameInvalid, Severity::kError, "entry-name-invalid"},
    {Code::kEntryNameCharacter, Severity::kWarning, "entry-name-character"},
    {Code::kEntryColourInvalid, Severity::kError, "entry-colour-invalid"},
    {Code::kEntryLinkOutside, Severity::kError, "entry-link-outside"},
    {Code::kEntryReachedTwice, Severity::kError, "entry-reached-twice"},
    {Code::kEntryEmptyLinked, Severity::kError, "entry-empty-linked"},
    {Code::kEntryUnreachable, Severity::kWarning, "entry-unreachable"},
    {Code::kEntryNamesEqual, Severity::kError, "entry-names-equal"},
    {Code::kEntryOutOfOrder, Severity::kWarning, "entry-out-of-order"},
    {Code::kStreamHasChild, Severity::kWarning, "stream-has-child"},
    {Code::kStreamTooLarge, Severity::kNote, "stream-too-large"},
    {Code::kSizeHighBits, Severity::kNote, "size-high-bits"},
    {Code::kPropertySetRejected, Severity::kError, "property-set-rejected"},
    {Code::kPropertySetCut, Severity::kError, "property-set-cut"},
    {Code::kPropertySectionCount, Severity::kWarning, "property-section-count"},
    {Code::kPropertySectionMoved, Severity::kWarning, "property-section-moved"},
    {Code::kPropertyValueOutside, Severity::kError, "property-value-outside"},
    {Code::kPropertyTypeUnknown, Severity::kNote, "property-type-unknown"},
    {Code::kPropertySetTooLarge, Severity::kNote, "property-set-too-large"},
});

constexpr bool StandInTheOrderOfTheEnumeration() {
  for (std::size_t i = 0; i < kCodes.size(); ++i) {
    if (static_cast<std::size_t>(kCodes[i].code) != i) return false;
  }
  return true;
}
static_assert(StandInTheOrderOfTheEnumeration());

}  // namespace

std::span<const CodeFacts> AllCodes() { return kCodes; }

const CodeFacts& FactsOf(FindingCode code) { return kCodes[static_cast<std::size_t>(code)]; }

std::string_view NameOf(Severity severity) {
  constexpr std::array<std::string_view, 3> kNames{"error", "warning", "note"};
  return kNames[static_cast<std::size_t>(severity)];
}

}  // namespace kelst
