#include "tools/analysis/SectorClaims.h"

#include <algorithm>
#include <utility>

#include "tools/kelst/Sectors.h"

namespace kelst {

namespace {

SectorUse UseWhenUnclaimed(std::uint32_t link) {
  if (link == kFreeMark) return SectorUse::kFree;
  return link == kUnknownLink ? SectorUse::kUnknown : SectorUse::kLost;
}

}  // namespace

SectorClaims::SectorClaims(const Table& table, IsHeld isHeld)
    : table_(table),
      isHeld_(std::move(isHeld)),
      count_(static_cast<std::uint32_t>(table.Count())),
      holders_(memory_.Extend(table.Count())) {
  std::transform(table.begin(), table.end(), holders_,
                 [](std::uint32_t link) { return HolderOf(UseWhenUnclaimed(link)); });
}

bool SectorClaims::ClaimOne(std::uint32_t sector, SectorUse use) {
  if (IsClaimed(sector)) return false;
  if (sector < count_) holders_[sector] = HolderOf(use);
  return true;
}

Chain SectorClaims::Claim(std::uint32_t start, SectorUse use, std::uint32_t owner) {
  Chain chain{.start = start};
  const std::uint32_t holder = use == SectorUse::kStream ? owner : HolderOf(use);
  for (std::uint32_t next = start;; next = Link(next)) {
    chain.at = next;
    if (next == kEndMark) return chain;
    chain.end = ChainEnd::kOtherMark;
    if (next >= kFirstMark) return chain;
    chain.end = ChainEnd::kUnknown;
    if (next == kUnknownLink && chain.length > 0) return chain;
    chain.end = ChainEnd::kNoEntry;
    if (next >= count_) return chain;
    chain.end = holders_[next] == holder ? ChainEnd::kLoop : ChainEnd::kCrossing;
    if (IsClaimed(next)) return chain;
    chain.end = ChainEnd::kProper;
    holders_[next] = holder;
    chain.last = next;
    ++chain.length;
    if (!isHeld_(next) && chain.missing++ == 0) chain.firstMissing = next;
  }
}

void SectorClaims::Append(std::uint32_t first, std::uint32_t end) {
  for (std::uint32_t sector = first; sector < std::min(end, count_); ++sector) {
    if (Use(sector) == SectorUse::kFree) holders_[sector] = HolderOf(SectorUse::kAppended);
  }
}

}  // namespace kelst
