#include "tools/analysis/Analysis.h"
#include "tools/kelst/Sectors.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr std::uint64_t kMiniSectorSize = 64;

/// A chain and whose it is.
struct Held {
  const Chain& chain;
  std::string name;  ///< "its chain", "the chain of the directory"
  std::optional<std::uint32_t> entry;
  bool isMini = false;
};

class ChainChecks {
 public:
  ChainChecks(const Subject& subject, FindingList& findings)
      : subject_(subject), map_(subject.map), findings_(findings) {}

  void Run() {
    CheckLinks({map_.DirectoryChain(), "the chain of the directory", {}});
    CheckLinks({map_.MiniFatChain(), "the chain of the mini FAT", {}});
    const FullDirectory& directory = subject_.tables.Directory();
    for (std::uint32_t index = 0; index < directory.Count(); ++index) {
      const bool isStream = index == 0 ? directory.At(0).isRoot() : directory.At(index).isStream();
      if (isStream && map_.SizeOf(index) > 0) CheckStream(index);
    }
    CheckCutSector();
  }

 private:
  [[nodiscard]] std::uint64_t Needed(std::uint32_t index) const {
    const std::uint64_t sectorSize =
        map_.IsMini(index) ? kMiniSectorSize : subject_.tables.SectorSize();
    const std::uint64_t size = map_.SizeOf(index);
    return size / sectorSize + (size % sectorSize == 0 ? 0 : 1);
  }

  template <typename Text>
  void Add(FindingCode code, const Held& held, std::uint64_t sector, Text text) {
    findings_.Add(code, [&] {
      const auto unit = held.isMini ? Place::Unit::kMiniSector : Place::Unit::kSector;
      return Finding{{unit, sector, 1, held.entry}, held.name + ' ' + text()};
    });
  }

  /// The same at the end of a chain; of a chain without sectors that is the entry where it begins.
  template <typename Text>
  void AddAtEnd(FindingCode code, const Held& held, Text text) {
    if (held.chain.length > 0 || !held.entry) return Add(code, held, held.chain.last, text);
    findings_.Add(code, [&] {
      return Finding{{.first = map_.EntryOffsetOf(*held.entry), .entry = held.entry},
                     held.name + ' ' + text()};
    });
  }

  void CheckStream(std::uint32_t index) {
    const Chain& chain = map_.ChainOf(index);
    const Held held{chain, index == 0 ? "the chain of the mini stream" : "its chain", index,
                    map_.IsMini(index)};
    CheckLinks(held);
    if (chain.end != ChainEnd::kProper && chain.end != ChainEnd::kOtherMark) return;
    const std::uint64_t needed = Needed(index);
    if (chain.length == needed) return;
    FindingCode code = FindingCode::kChainShort;
    if (chain.length > needed) {
      code = held.isMini ? FindingCode::kMiniChainLong : FindingCode::kChainLong;
    }
    AddAtEnd(code, held, [&] {
      return "has " + WithUnit(chain.length, "sector") + ", but its size of " +
             WithUnit(map_.SizeOf(index), "byte") + " takes " + Grouped(needed);
    });
  }

  void CheckLinks(const Held& held) {
    const Chain& chain = held.chain;
    const auto table = [&] { return std::string(held.isMini ? "the mini FAT" : "the FAT"); };
    if (chain.missing > 0) {
      Add(FindingCode::kChainCut, held, chain.firstMissing, [&] {
        return "has " + WithUnit(chain.length, "sector") + ", " + Grouped(chain.missing) +
               " of them beyond the end of " + (held.isMini ? "the mini stream or " : "") +
               "the file";
      });
    }
    if (chain.end == ChainEnd::kLoop) {
      AddAtEnd(FindingCode::kChainLoops, held,
               [&] { return "comes back from here to its own sector " + Grouped(chain.at); });
    } else if (chain.end == ChainEnd::kCrossing) {
      Add(FindingCode::kChainCrosses, held, chain.at,
          [&] { return "runs into this sector, which belongs to " + OwnerOf(held); });
    } else if (chain.end == ChainEnd::kNoEntry) {
      Add(FindingCode::kChainOutside, held, chain.at,
          [&] { return "goes on to this sector, for which " + table() + " has no entry"; });
    } else if (chain.end == ChainEnd::kUnknown) {
      AddAtEnd(FindingCode::kChainOutside, held,
               [&] { return "cannot be followed from here: " + table() + " has lost that part"; });
    }
  }

  /// Who has the sector that a chain runs into.
  [[nodiscard]] std::string OwnerOf(const Held& held) const {
    const SectorClaims& claims = held.isMini ? map_.MiniSectors() : map_.Sectors();
    const SectorUse use = claims.Use(held.chain.at);
    return use == SectorUse::kStream ? "entry " + std::to_string(claims.Owner(held.chain.at))
                                     : TextOf(use);
  }

  static std::string TextOf(SectorUse use) {
    switch (use) {
      case SectorUse::kFat:
        return "the FAT";
      case SectorUse::kDifat:
        return "the DIFAT";
      case SectorUse::kDirectory:
        return "the directory";
      case SectorUse::kMiniFat:
        return "the mini FAT";
      default:
        return "the mini stream";
    }
  }

  /// Of the last sector of a stream no more needs to be there than its size takes.
  void CheckCutSector() {
    const FileTables& tables = subject_.tables;
    const std::uint64_t there = tables.FileLength() % tables.SectorSize();
    if (there == 0 || tables.SectorCount() == 0) return;
    const std::uint32_t sector = tables.SectorCount() - 1;
    if (!map_.Sectors().IsClaimed(sector)) return;
    const SectorUse use = map_.Sectors().Use(sector);
    const std::uint32_t owner =
        use == SectorUse::kMiniStream ? 0 : map_.Sectors().Owner(sector);  // the root's
    std::uint64_t needed = tables.SectorSize();
    if (owner != SectorClaims::kNoOwner) {
      const Chain& chain = map_.ChainOf(owner);
      const std::uint64_t rest = map_.SizeOf(owner) % tables.SectorSize();
      if (chain.last == sector && chain.length == Needed(owner) && rest > 0) needed = rest;
    }
    if (there >= needed) return;
    const std::optional<std::uint32_t> entry =
        use == SectorUse::kStream ? std::optional(owner) : std::nullopt;
    findings_.Add(FindingCode::kChainCut, [&] {
      return Finding{{Place::Unit::kSector, sector, 1, entry},
                     "the file ends within this sector, where " +
                         (entry ? "the stream" : TextOf(use)) + " has bytes"};
    });
  }

  const Subject& subject_;
  const SectorMap& map_;
  FindingList& findings_;
};

}  // namespace

void CheckChains(const Subject& subject, FindingList& findings) {
  ChainChecks(subject, findings).Run();
}

}  // namespace kelst
