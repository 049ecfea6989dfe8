#include <algorithm>
#include <array>

#include "tools/analysis/Analysis.h"
#include "tools/analysis/Runs.h"
#include "tools/kelst/Sectors.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

// The header on disk: what lies where, and what it should hold.
constexpr std::uint64_t kSignatureOffset = 0;
constexpr std::uint64_t kMajorVersionOffset = 26;
constexpr std::uint64_t kByteOrderOffset = 28;
constexpr std::uint64_t kDirectoryCountOffset = 40;
constexpr std::uint64_t kFatCountOffset = 44;
constexpr std::uint64_t kCutoffOffset = 56;
constexpr std::uint64_t kMiniFatCountOffset = 64;
constexpr std::uint64_t kDifatCountOffset = 72;
constexpr std::array<unsigned char, 8> kSignature{0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr unsigned short kReversedMark = 0xFEFF;
constexpr unsigned int kUsualCutoff = 4096;
constexpr unsigned short kSmallSectorShift = 9;

void AddAt(FindingList& findings, FindingCode code, std::uint64_t offset, const std::string& text) {
  findings.Add(code, [&] { return Finding{.place = {.first = offset}, .text = text}; });
}

void CheckMarks(const KELStStorageHeader& header, FindingList& findings) {
  if (!std::ranges::equal(header.signature, kSignature)) {
    AddAt(findings, FindingCode::kSignatureWrong, kSignatureOffset,
          "the first eight bytes are not those of a compound file");
  }
  const bool isReversed = header.byteOrder == kReversedMark;
  if (isReversed) {
    AddAt(findings, FindingCode::kByteOrderReversed, kByteOrderOffset,
          "numbers are stored high byte first, which many programs do not read");
  } else if (!IsHostByteOrder(header)) {
    AddAt(findings, FindingCode::kByteOrderUnknown, kByteOrderOffset,
          "the byte-order mark is neither 0xFFFE nor 0xFEFF; numbers are taken high byte first");
  }
  const unsigned int version = InFileOrder(header, header.majorVersion);
  const bool isSmall = header.sectorShift == kSmallSectorShift;
  if (version != (isSmall ? 3 : 4)) {
    AddAt(findings, FindingCode::kVersionWrong, kMajorVersionOffset,
          "the version is " + std::to_string(version) + ", but sectors of " +
              (isSmall ? "512 bytes belong to version 3" : "4,096 bytes belong to version 4"));
  }
  if (header.miniStreamCutoff != kUsualCutoff) {
    AddAt(findings, FindingCode::kCutoffUnusual, kCutoffOffset,
          "streams below " + WithUnit(header.miniStreamCutoff, "byte") +
              " are in the mini stream (4,096 expected)");
  }
}

void CheckCounts(const Subject& subject, FindingList& findings) {
  const KELStStorageHeader& header = subject.tables.Header();
  const auto compare = [&](std::uint64_t offset, const std::string& what, std::uint64_t stated,
                           std::uint64_t found) {
    if (stated == found) return;
    AddAt(findings, FindingCode::kHeaderCountWrong, offset,
          "the header states " + WithUnit(stated, what + " sector") + ", there are " +
              Grouped(found));
  };
  const Difat& difat = subject.tables.FatPlaces();
  if (header.sectorShift != kSmallSectorShift) {
    compare(kDirectoryCountOffset, "directory", header.numDirSects,
            subject.map.DirectoryChain().length);
  } else if (header.numDirSects != 0) {
    AddAt(findings, FindingCode::kHeaderCountWrong, kDirectoryCountOffset,
          "the header states " + WithUnit(header.numDirSects, "directory sector") +
              ", which version 3 leaves at 0");
  }
  compare(kFatCountOffset, "FAT", header.numFatSects, difat.fatSectors.size());
  compare(kMiniFatCountOffset, "mini FAT", header.numMiniFatSects,
          subject.map.MiniFatChain().length);
  compare(kDifatCountOffset, "DIFAT", header.numDifSects, difat.difatSectors.size());
}

void CheckFatList(const Subject& subject, FindingList& findings) {
  const Difat& difat = subject.tables.FatPlaces();
  if (difat.hasGap) {
    AddAt(findings, FindingCode::kFatListGap, KELStStorageHeader::kDifatOffset,
          "FAT sectors are listed behind free places, where other programs may not look");
  }
  std::vector<bool> met(subject.tables.SectorCount());
  Runs<FindingCode, std::function<void(FindingCode, std::uint32_t, std::uint32_t)>> runs(
      [&](FindingCode code, std::uint32_t first, std::uint32_t count) {
        findings.Add(code, [&] {
          return Finding{{Place::Unit::kSector, first, count, {}},
                         code == FindingCode::kFatSectorOutside
                             ? "listed as part of the FAT, but beyond the end of the file"
                             : "listed as part of the FAT more than once"};
        });
      });
  for (const std::uint32_t sector : difat.fatSectors) {
    if (sector >= met.size()) {
      runs.Add(FindingCode::kFatSectorOutside, sector);
    } else if (met[sector]) {
      runs.Add(FindingCode::kFatSectorRepeated, sector);
    } else {
      met[sector] = true;
    }
  }
}

/// The chain of the DIFAT is no chain of the FAT: each of its sectors names the next.
void CheckDifatChain(const Subject& subject, FindingList& findings) {
  const Difat& difat = subject.tables.FatPlaces();
  if (difat.next >= kFirstMark) return;
  const auto add = [&](FindingCode code, const std::string& text) {
    findings.Add(code, [&] {
      return Finding{{Place::Unit::kSector, difat.next, 1, {}},
                     "the chain of the DIFAT goes on to this sector, which " + text};
    });
  };
  if (difat.next >= subject.tables.SectorCount()) {
    add(FindingCode::kChainOutside, "the file does not hold");
  } else if (difat.difatSectors.size() < subject.tables.Header().numDifSects) {
    add(FindingCode::kChainLoops, "it holds already");
  } else {
    add(FindingCode::kChainLong, "the header does not count");
  }
}

}  // namespace

void CheckHeader(const Subject& subject, FindingList& findings) {
  CheckMarks(subject.tables.Header(), findings);
  if (subject.tables.FileLength() < subject.tables.SectorSize()) {
    AddAt(findings, FindingCode::kHeaderCut, subject.tables.FileLength(),
          "the file ends within its header");
  }
  const std::uint32_t sectors = subject.tables.SectorCount();
  if (sectors > 0 && !IsWithinReach(sectors - 1, subject.tables.Header().sectorShift)) {
    AddAt(findings, FindingCode::kFileTooLarge, UINT32_MAX,
          "kelst does not read what lies beyond the first 4 GiB of a file");
  }
  CheckCounts(subject, findings);
  CheckFatList(subject, findings);
  CheckDifatChain(subject, findings);
}

}  // namespace kelst
