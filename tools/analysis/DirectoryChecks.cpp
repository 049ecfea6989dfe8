#include <algorithm>

#include "tools/analysis/Analysis.h"
#include "tools/analysis/NameOrder.h"
#include "tools/kelst/Sectors.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr std::size_t kMostNameUnits = 32;  // the final zero included
constexpr std::uint64_t kReadableSizesEnd = std::uint64_t{1} << 31;
constexpr std::u16string_view kForbidden = u"/\\:!";

std::string Entry(std::uint32_t index) { return "entry " + std::to_string(index); }

class DirectoryChecks {
 public:
  DirectoryChecks(const Subject& subject, FindingList& findings)
      : subject_(subject), directory_(subject.tables.Directory()), findings_(findings) {}

  void Run() {
    CheckRoot();
    for (std::uint32_t index = 0; index < directory_.Count(); ++index) {
      if (directory_.At(index).getType() != 0) CheckEntry(index);
    }
    for (const BadLink& link : subject_.walk.BadLinks()) AddBadLink(link);
    subject_.walk.ForEachFamily(
        [this](std::span<const std::uint32_t> family) { CheckFamily(family); });
  }

 private:
  template <typename Text>
  void Add(FindingCode code, std::uint32_t index, Text text) {
    findings_.Add(code, [&] {
      return Finding{{.first = subject_.map.EntryOffsetOf(index), .entry = index}, text()};
    });
  }
  void Add(FindingCode code, std::uint32_t index, const char* text) {
    Add(code, index, [text] { return std::string(text); });
  }

  void CheckRoot() {
    const KELStStorageDirEntry& root = directory_.At(0);
    if (!root.isRoot()) {
      Add(FindingCode::kRootMissing, 0, [&] {
        return "the first entry is no root but of type " + std::to_string(root.getType());
      });
    } else if (root.getLeftSib() < kFirstMark || root.getRightSib() < kFirstMark) {
      Add(FindingCode::kRootHasSiblings, 0, "the root has siblings, which nothing lists");
    }
  }

  void CheckEntry(std::uint32_t index) {
    const KELStStorageDirEntry& entry = directory_.At(index);
    const unsigned int type = entry.getType();
    if (entry.isRoot() && index > 0) {
      Add(FindingCode::kRootRepeated, index, "a root that is not the first entry");
    } else if (!entry.isRoot() && !entry.isStorage() && !entry.isStream()) {
      Add(FindingCode::kEntryTypeUnknown, index,
          [type] { return "of type " + std::to_string(type) + ", neither storage nor stream"; });
    }
    CheckName(index);
    const unsigned int colour = directory_.FullAt(index).colour;
    if (colour > 1) {
      Add(FindingCode::kEntryColourInvalid, index,
          [colour] { return "its colour is " + std::to_string(colour) + " (0 or 1 expected)"; });
    }
    if (!subject_.walk.IsReached(index)) {
      Add(FindingCode::kEntryUnreachable, index, "no link leads to it");
    }
    if (entry.isStream()) CheckStream(index);
  }

  /// Names end with a zero that their length counts, and hold no other.
  void CheckName(std::uint32_t index) {
    const FullEntry& full = directory_.FullAt(index);
    const std::size_t units = full.nameBytes / sizeof(char16_t);
    const bool fits = directory_.At(index).isNameValid() && full.nameBytes % sizeof(char16_t) == 0;
    if (!fits) {
      Add(FindingCode::kEntryNameInvalid, index,
          [&] { return "its name of " + WithUnit(full.nameBytes, "byte") + " cannot be"; });
    } else if (units > kMostNameUnits || full.name.size() + 1 != units) {
      Add(FindingCode::kEntryNameInvalid, index, "its name does not end with a zero");
    } else if (full.name.find(u'\0') != std::u16string::npos) {
      Add(FindingCode::kEntryNameInvalid, index, "its name holds a zero");
    } else if (full.name.find_first_of(kForbidden) != std::u16string::npos) {
      Add(FindingCode::kEntryNameCharacter, index, "its name holds a slash, backslash, : or !");
    }
  }

  void CheckStream(std::uint32_t index) {
    const KELStStorageDirEntry& entry = directory_.At(index);
    if (entry.getChild() < kFirstMark) {
      Add(FindingCode::kStreamHasChild, index,
          [&] { return "a stream with a child, " + Entry(entry.getChild()); });
    }
    const std::uint64_t size = subject_.map.SizeOf(index);
    if (size >= kReadableSizesEnd) {
      Add(FindingCode::kStreamTooLarge, index,
          [&] { return "kelst reads no streams of 2 GiB and more (" + SizeText(size) + ")"; });
    }
    if (size != directory_.FullAt(index).size) {
      Add(FindingCode::kSizeHighBits, index,
          "the upper half of its size is not 0; version 3 does not use it");
    }
  }

  void AddBadLink(const BadLink& link) {
    switch (link.kind) {
      case BadLink::Kind::kOutside:
        return Add(FindingCode::kEntryLinkOutside, link.from, [&] {
          return "a link leads to " + Entry(link.to) + ", but the directory has only " +
                 Grouped(directory_.Count());
        });
      case BadLink::Kind::kRepeated:
        return Add(FindingCode::kEntryReachedTwice, link.to,
                   [&] { return "reached a second time, from " + Entry(link.from); });
      case BadLink::Kind::kEmpty:
        return Add(FindingCode::kEntryEmptyLinked, link.from,
                   [&] { return "a link leads to " + Entry(link.to) + ", which is empty"; });
    }
  }

  [[nodiscard]] std::weak_ordering Compare(std::uint32_t a, std::uint32_t b) const {
    return CompareNames(directory_.FullAt(a).name, directory_.FullAt(b).name);
  }

  void CheckFamily(std::span<const std::uint32_t> family) {
    bool isSorted = true;
    for (std::size_t i = 1; i < family.size(); ++i) {
      const std::weak_ordering order = Compare(family[i - 1], family[i]);
      if (order < 0) continue;
      isSorted = false;
      if (order == 0) continue;
      Add(FindingCode::kEntryOutOfOrder, family[i], [&] {
        return "comes behind " + Entry(family[i - 1]) +
               ", whose name should follow; programs that search by name may miss it";
      });
    }
    if (!isSorted) FindEqualNames(std::vector(family.begin(), family.end()));
  }

  void FindEqualNames(std::vector<std::uint32_t> family) {
    std::ranges::stable_sort(
        family, [this](std::uint32_t a, std::uint32_t b) { return Compare(a, b) < 0; });
    for (std::size_t i = 1; i < family.size(); ++i) {
      if (Compare(family[i - 1], family[i]) != 0) continue;
      Add(FindingCode::kEntryNamesEqual, family[i],
          [&] { return "has the same name as " + Entry(family[i - 1]) + " beside it"; });
    }
  }

  const Subject& subject_;
  const FullDirectory& directory_;
  FindingList& findings_;
};

}  // namespace

void CheckDirectory(const Subject& subject, FindingList& findings) {
  DirectoryChecks(subject, findings).Run();
}

}  // namespace kelst
