#include <algorithm>

#include "tools/analysis/Analysis.h"
#include "tools/analysis/Runs.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

/// The sector with this byte, if a file has it, belongs to nobody: programs that share the file
/// lock bytes there.
constexpr std::uint64_t kLockedByte = 0x7FFFFF00;

/// What makes neighbouring sectors one finding.
struct Kind {
  FindingCode code = FindingCode::kSectorLost;
  std::uint32_t owner = SectorClaims::kNoOwner;
  std::uint32_t mark = kFreeMark;  // of sectors that are marked wrong

  bool operator==(const Kind&) const = default;
};

bool IsTableMark(std::uint32_t link) { return link == kFatMark || link == kDifatMark; }

std::string TextOf(const Kind& kind) {
  const std::string mark = kind.mark == kFatMark ? "a FAT sector" : "a DIFAT sector";
  switch (kind.code) {
    case FindingCode::kFatSectorUnmarked:
      return "part of the FAT, but not marked so in it";
    case FindingCode::kDifatSectorUnmarked:
      return "part of the DIFAT, but not marked so in the FAT";
    case FindingCode::kSectorFreeButUsed:
      return "marked as free, but in use";
    case FindingCode::kSectorMarkedWrong:
      return "marked as " + mark + ", but not listed as one";
    case FindingCode::kTablePadding:
      return "marked as the end of a chain where there is no sector, to fill the table";
    case FindingCode::kFatEntryStray:
      return "marked as in use, but beyond the end of the file";
    default:
      return "marked as in use, but part of nothing";
  }
}

/// What is wrong with a sector, given what the table says of it; nothing mostly.
std::optional<Kind> FaultOf(const SectorClaims& claims, std::uint32_t sector, bool isThere,
                            bool isPadding) {
  const std::uint32_t link = claims.Link(sector);
  if (link == kUnknownLink) return std::nullopt;
  switch (claims.Use(sector)) {
    case SectorUse::kFat:
      return link == kFatMark ? std::nullopt
                              : std::optional(Kind{.code = FindingCode::kFatSectorUnmarked});
    case SectorUse::kDifat:
      return link == kDifatMark ? std::nullopt
                                : std::optional(Kind{.code = FindingCode::kDifatSectorUnmarked});
    case SectorUse::kLost:
      if (!isThere) {
        return Kind{.code = isPadding ? FindingCode::kTablePadding : FindingCode::kFatEntryStray};
      }
      if (!IsTableMark(link)) return Kind{};
      return Kind{.code = FindingCode::kSectorMarkedWrong, .mark = link};
    default:
      if (!claims.IsClaimed(sector)) return std::nullopt;
      if (link == kFreeMark) {
        return Kind{.code = FindingCode::kSectorFreeButUsed, .owner = claims.Owner(sector)};
      }
      if (!IsTableMark(link)) return std::nullopt;
      return Kind{FindingCode::kSectorMarkedWrong, claims.Owner(sector), link};
  }
}

/// The end of the part of a table that chains use. Some programs fill up the rest with end marks.
std::uint32_t UsedEnd(const SectorClaims& claims) {
  const auto isUsed = [&](std::uint32_t sector) {
    const std::uint32_t link = claims.Link(sector);
    return claims.IsClaimed(sector) || link < kUnknownLink || IsTableMark(link);
  };
  std::uint32_t end = claims.Count();
  while (end > 0 && !isUsed(end - 1)) --end;
  return end;
}

/// `there`: how many sectors there are, of those that the table has entries for. `locked`: one that
/// may be marked as in use and belong to nobody.
void CheckTable(const SectorClaims& claims, Place::Unit unit, std::uint32_t there,
                std::uint32_t locked, FindingList& findings) {
  const auto add = [&](const Kind& kind, std::uint32_t first, std::uint32_t length) {
    // Mini sectors beyond the mini stream are an error of their own.
    if (kind.code == FindingCode::kFatEntryStray && unit == Place::Unit::kMiniSector) return;
    findings.Add(kind.code, [&] {
      const bool isOwned = kind.owner != SectorClaims::kNoOwner;
      return Finding{{unit, first, length, isOwned ? std::optional(kind.owner) : std::nullopt},
                     TextOf(kind)};
    });
  };
  Runs<Kind, decltype(add)> runs(add);
  const std::uint32_t usedEnd = UsedEnd(claims);
  for (std::uint32_t sector = 0; sector < claims.Count(); ++sector) {
    const bool isLocked = sector == locked && claims.Link(sector) == kEndMark;
    if (isLocked && claims.Use(sector) == SectorUse::kLost) continue;
    const auto kind = FaultOf(claims, sector, sector < there, sector >= usedEnd);
    if (kind) runs.Add(*kind, sector);
  }
}

void CheckMiniStreamLength(const SectorMap& map, FindingList& findings) {
  const std::uint32_t used = UsedEnd(map.MiniSectors());
  const std::uint32_t room = map.MiniSectorCount();
  if (used <= room) return;
  findings.Add(FindingCode::kMiniStreamShort, [&] {
    return Finding{{Place::Unit::kMiniSector, room, used - room, {}},
                   "in use by the mini FAT, but beyond the end of the mini stream"};
  });
}

void CheckTail(const Subject& subject, FindingList& findings) {
  const FileTables& tables = subject.tables;
  const std::uint32_t first = subject.map.TailStart();
  if (first >= tables.SectorCount()) return;
  if (subject.map.Sectors().Use(first) == SectorUse::kFree) {
    findings.Add(FindingCode::kFreeTail, [&] {
      return Finding{{Place::Unit::kSector, first, tables.SectorCount() - first, {}},
                     "free, at the end of the file"};
    });
    return;
  }
  const std::uint64_t offset = tables.OffsetOf(first);
  findings.Add(FindingCode::kAppendedData, [&] {
    return Finding{{.first = offset},
                   WithUnit(tables.FileLength() - offset, "byte") +
                       " follow the last sector in use, where the FAT knows of nothing"};
  });
}

}  // namespace

void CheckSectors(const Subject& subject, FindingList& findings) {
  const SectorMap& map = subject.map;
  const auto locked = static_cast<std::uint32_t>(kLockedByte / subject.tables.SectorSize() - 1);
  CheckTable(map.Sectors(), Place::Unit::kSector, subject.tables.SectorCount(), locked, findings);
  CheckTable(map.MiniSectors(), Place::Unit::kMiniSector, map.MiniSectorCount(), kFreeMark,
             findings);
  CheckMiniStreamLength(map, findings);
  CheckTail(subject, findings);
}

}  // namespace kelst
