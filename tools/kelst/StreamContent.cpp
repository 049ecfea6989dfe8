#include "tools/kelst/StreamContent.h"

#include <algorithm>

#include "tools/kelst/Sectors.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr std::uint64_t kReadableSizesEnd = std::uint64_t{1} << 31;  // the library's limit
constexpr std::uint64_t kPieceBytes = std::uint64_t{1} << 20;

bool IsInMiniStream(const CompoundFile& file, const KELStStorageDirEntry& entry) {
  return entry.getSize() < file.Image().getHeader().miniStreamCutoff;
}

/// Null when the library cannot read the stream.
std::unique_ptr<KELIStream> Read(CompoundFile& file, const KELStStorageDirEntry& entry) {
  KELIStream* read = nullptr;
  const int status = IsInMiniStream(file, entry) ? file.Root().getStreamFromMiniFat(entry, &read)
                                                 : file.Root().getStreamFromFat(entry, &read);
  std::unique_ptr<KELIStream> stream(read);
  if (status != 0) stream.reset();
  return stream;
}

/// Whether the file is long enough to hold the whole stream. The library reads zeros beyond its
/// end.
bool IsInFile(const CompoundFile& file, const KELStStorageDirEntry& entry) {
  const KELStStorageFileInfo& image = file.Image();
  bool isInFile = true;
  const auto check = [&](std::uint64_t offset, std::uint64_t length) {
    isInFile = isInFile && offset <= file.Size() && length <= file.Size() - offset;
  };
  if (IsInMiniStream(file, entry)) {
    ForEachSector(image.getMiniFatSector(), entry.getStartSect(), image.getHeader().miniSectorShift,
                  entry.getSize(), [&](unsigned int sector, std::uint64_t length) {
                    check(file.MiniSectorOffset(sector), length);
                  });
  } else {
    ForEachSector(image.getFatSector(), entry.getStartSect(), image.getHeader().sectorShift,
                  entry.getSize(), [&](unsigned int sector, std::uint64_t length) {
                    check(image.getEquivalentFatBytePos(sector), length);
                  });
  }
  return isInFile;
}

}  // namespace

StreamContent::StreamContent(CompoundFile& file, std::uint32_t index)
    : file_(file), size_(file.Directory().At(index).getSize()) {
  const KELStStorageDirEntry& entry = file.Directory().At(index);
  if (size_ >= kReadableSizesEnd) {
    whyNotRead_ = "streams of 2 GiB and more cannot be read (" + WithUnit(size_, "byte") + ")";
  } else if (size_ > 0) {
    stream_ = Read(file, entry);
    if (!stream_) {
      whyNotRead_ = "damaged: its chain of sectors cannot be followed to the end";
    } else {
      isInFile_ = IsInFile(file, entry);
    }
  }
}

std::span<const unsigned char> StreamContent::Next() {
  if (!stream_) return {};
  piece_.resize(std::min(size_ - given_, kPieceBytes));
  unsigned long length = 0;
  if (!piece_.empty()) stream_->Read(piece_.data(), piece_.size(), &length);
  given_ += length;
  return std::span(piece_).first(length);
}

std::string StreamContent::Problem() const {
  if (file_.HasChanged()) return kChanged;
  if (!whyNotRead_.empty()) return whyNotRead_;
  if (given_ < size_) {
    return "damaged: only " + Grouped(given_) + " of " + WithUnit(size_, "byte") + " are there";
  }
  return isInFile_ ? "" : "damaged: the file ends before the stream does";
}

}  // namespace kelst
