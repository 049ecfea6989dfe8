#include "tools/kelst/StreamContent.h"

#include <algorithm>
#include <cstdio>

#include "tools/kelst/Sectors.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr std::uint64_t kReadableSizesEnd = std::uint64_t{1} << 31;  // the library's limit
constexpr std::uint64_t kPieceBytes = std::uint64_t{1} << 20;        // whole sectors

bool IsInMiniStream(const CompoundFile& file, const KELStStorageDirEntry& entry) {
  return entry.getSize() < file.Image().getHeader().miniStreamCutoff;
}

/// How much of a stream is there, as its chain and the file have it.
struct Extent {
  std::uint64_t held = 0;  ///< bytes in the sectors of the chain
  bool isInFile = true;    ///< the file goes as far; the library reads zeros beyond its end
  bool isWithinReach = true;
};

/// The extent of the first `size` bytes of a stream.
Extent ExtentOf(const CompoundFile& file, const KELStStorageDirEntry& entry, std::uint64_t size) {
  const KELStStorageFileInfo& image = file.Image();
  Extent extent;
  const auto add = [&](std::uint64_t offset, std::uint64_t length) {
    extent.held += length;
    extent.isInFile = extent.isInFile && offset <= file.Size() && length <= file.Size() - offset;
  };
  if (IsInMiniStream(file, entry)) {
    ForEachSector(image.getMiniFatSector(), entry.getStartSect(), image.getHeader().miniSectorShift,
                  size, [&](unsigned int sector, std::uint64_t length) {
                    add(file.MiniSectorOffset(sector), length);
                  });
  } else {
    ForEachSector(image.getFatSector(), entry.getStartSect(), image.getHeader().sectorShift, size,
                  [&](unsigned int sector, std::uint64_t length) {
                    const unsigned int shift = image.getHeader().sectorShift;
                    extent.isWithinReach = extent.isWithinReach && IsWithinReach(sector, shift);
                    add(image.getEquivalentFatBytePos(sector), length);
                  });
  }
  return extent;
}

}  // namespace

StreamContent::StreamContent(CompoundFile& file, std::uint32_t index, ByteRange range)
    : file_(file),
      size_(file.Directory().At(index).getSize()),
      end_(range.offset + std::min(range.length, size_ - range.offset)) {
  const KELStStorageDirEntry& entry = file.Directory().At(index);
  if (size_ >= kReadableSizesEnd) {
    whyNotRead_ = "streams of 2 GiB and more cannot be read (" + WithUnit(size_, "byte") + ")";
  } else if (size_ > 0) {
    const Extent extent = ExtentOf(file, entry, end_);
    isInFile_ = extent.isInFile;
    readEnd_ = std::min(end_, extent.held);
    position_ = std::min(range.offset, readEnd_);
    IsInMiniStream(file, entry) ? OpenInMiniStream(entry) : OpenInFile(entry);
    if (!stream_ && !openFile_) {
      whyNotRead_ = "damaged: its chain of sectors cannot be followed to the end";
    } else if (!extent.isWithinReach) {
      whyNotRead_ = "what lies beyond the first 4 GiB of a file cannot be read";
    }
  }
}

void StreamContent::OpenInMiniStream(const KELStStorageDirEntry& entry) {
  KELIStream* opened = nullptr;
  const int status = file_.Root().getStreamFromMiniFat(entry, &opened);
  stream_.reset(opened);
  if (status != 0) return stream_.reset();
  stream_->Seek(position_, 0);
}

void StreamContent::OpenInFile(KELStStorageDirEntry entry) {
  const KELStStorageFileInfo& image = file_.Image();
  entry.setSize(0);  // so that the library looks at the chain and reads nothing
  KELIStream* opened = nullptr;
  const int status = file_.Root().getStreamFromFat(entry, &opened);
  const std::unique_ptr<KELIStream> empty(opened);
  if (status != 0) return;
  openFile_ = OpenForReading(image.GetFilePath());
  if (!openFile_) return;
  static_cast<void>(std::setvbuf(openFile_.get(), nullptr, _IONBF, 0));
  const KELXDynamicArray<unsigned int> fat = image.getFatSector();
  sector_ = entry.getStartSect();
  for (std::uint64_t i = 0; i < position_ >> image.getHeader().sectorShift; ++i) {
    sector_ = NextSector(fat, sector_);
  }
}

/// Reads the bytes from position_ on, up to the end of a sector or of the range. Neighbouring
/// sectors take one read.
void StreamContent::ReadSectors(std::span<unsigned char> piece) {
  const KELStStorageFileInfo& image = file_.Image();
  const KELXDynamicArray<unsigned int> fat = image.getFatSector();
  const std::uint64_t sectorSize = std::uint64_t{1} << image.getHeader().sectorShift;
  std::uint64_t skipped = position_ % sectorSize;
  while (!piece.empty()) {
    const std::uint64_t start = image.getEquivalentFatBytePos(sector_);
    std::uint64_t end = start;
    do {
      end += sectorSize;
      sector_ = NextSector(fat, sector_);
    } while (end - start - skipped < piece.size() && image.getEquivalentFatBytePos(sector_) == end);
    const std::size_t length = std::min(piece.size(), end - start - skipped);
    KELReadBytes(openFile_.get(), static_cast<std::int64_t>(start + skipped),
                 static_cast<std::int64_t>(length), piece.data());
    piece = piece.subspan(length);
    skipped = 0;
  }
}

std::span<const unsigned char> StreamContent::Next() {
  if (!whyNotRead_.empty()) return {};
  piece_.resize(std::min(readEnd_ - position_, kPieceBytes - position_ % kPieceBytes));
  unsigned long length = piece_.size();
  if (stream_ && length > 0) stream_->Read(piece_.data(), length, &length);
  if (openFile_) ReadSectors(piece_);
  position_ += length;
  return std::span(piece_).first(length);
}

std::string StreamContent::Problem() const {
  if (file_.HasChanged()) return kChanged;
  if (!whyNotRead_.empty()) return whyNotRead_;
  if (position_ < end_) {
    return "damaged: only " + Grouped(position_) + " of " + WithUnit(size_, "byte") + " are there";
  }
  return isInFile_ ? "" : "damaged: the file ends before the stream does";
}

}  // namespace kelst
