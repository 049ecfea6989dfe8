#include "compound/KELStStorageFileInfo.h"

#include <algorithm>
#include <array>
#include <span>

#include "compound/ByteCursor.h"
#include "compound/KELReadValue.h"
#include "compound/OpenFile.h"

namespace {

// The header on disk: what lies where, and what it must hold.
constexpr std::size_t kHeaderBytes = 512;
constexpr std::size_t kFieldsOffset = 30;  // the fields that follow the byte-order mark
constexpr unsigned short kHostByteOrder = 0xFFFE;
constexpr unsigned short kSmallSectorShift = 9;
constexpr unsigned short kLargeSectorShift = 12;
constexpr unsigned short kMiniSectorShift = 6;
constexpr unsigned int kDirectorySectorsEnd = 8;

/// What a chain may run on beyond the end of the file, in bytes: enough to read as zeros what a
/// file that was cut short has lost, small enough to cost little.
constexpr std::uint64_t kPastEndBytes = std::uint64_t{8} << 20;

bool IsSectorShift(unsigned short shift) {
  return shift == kSmallSectorShift || shift == kLargeSectorShift;
}

std::uint64_t Length(std::FILE* file) {
  if (fseeko(file, 0, SEEK_END) != 0) return 0;
  const std::int64_t length = KELGetPosition(file);
  return length < 0 ? 0 : static_cast<std::uint64_t>(length);
}

}  // namespace

KELStStorageFileInfo::KELStStorageFileInfo() = default;

KELStStorageFileInfo::KELStStorageFileInfo(const KELXFilePath& path) : path_(path) {
  const auto file = kelx::internal::OpenForReading(path_);
  if (file) Load(file.get());
}

KELStStorageFileInfo::KELStStorageFileInfo(const KELStStorageFileInfo& other)
    : path_(other.path_),
      header_(other.getHeader()),
      fatSector_(other.fatSector_),
      miniFatSector_(other.miniFatSector_),
      difSector_(other.difSector_),
      dirArray_(other.dirArray_),
      miniStream_(other.miniStream_),
      valid_(other.valid_),
      sameByteOrder_(other.sameByteOrder_),
      fileLength_(other.fileLength_) {}

// NOLINTNEXTLINE(misc-unconventional-assign-operator): callers are promised a copy by value
KELStStorageFileInfo KELStStorageFileInfo::operator=(const KELStStorageFileInfo& other) {
  if (this == &other) return *this;
  path_ = other.path_;
  headerDifat_.reset();
  header_ = other.getHeader();
  fatSector_ = other.fatSector_;
  miniFatSector_ = other.miniFatSector_;
  difSector_ = other.difSector_;
  dirArray_ = other.dirArray_;
  miniStream_ = other.miniStream_;
  valid_ = other.valid_;
  sameByteOrder_ = other.sameByteOrder_;
  fileLength_ = other.fileLength_;
  return *this;
}

KELStStorageFileInfo::~KELStStorageFileInfo() = default;

void KELStStorageFileInfo::Load(std::FILE* file) {
  setHeader(file);
  if (checkHeader()) {
    readDifSector(file);
    readFatSector(file);
    readMiniFatSector(file);
    readDirectorySector(file);
    setMiniStreamData(file);
    valid_ = true;
  }
  header_.headerDifSect = nullptr;
  headerDifat_.reset();
}

bool KELStStorageFileInfo::checkValidity() const { return valid_; }

bool KELStStorageFileInfo::checkHeader() const {
  return header_.reserved == 0 && header_.reserved1 == 0 &&
         header_.numDirSects < kDirectorySectorsEnd && IsSectorShift(header_.sectorShift) &&
         header_.miniSectorShift == kMiniSectorShift;
}

KELStStorageHeader KELStStorageFileInfo::getHeader() const {
  KELStStorageHeader copy = header_;
  copy.headerDifSect = nullptr;
  return copy;
}

KELXDynamicArray<unsigned int> KELStStorageFileInfo::getFatSector() const { return fatSector_; }

KELXDynamicArray<unsigned int> KELStStorageFileInfo::getMiniFatSector() const {
  return miniFatSector_;
}

KELXDynamicArray<KELStStorageDirEntry> KELStStorageFileInfo::getDirArray() const {
  return dirArray_;
}

KELXDynamicArray<unsigned char> KELStStorageFileInfo::getMiniStream() const { return miniStream_; }

KELXFilePath KELStStorageFileInfo::GetFilePath() const { return path_; }

KELStStorageDirEntry KELStStorageFileInfo::getRootDirEntry() const {
  const KELStStorageDirEntry* const first = dirArray_.At(0);
  return first == nullptr ? KELStStorageDirEntry() : *first;
}

unsigned long KELStStorageFileInfo::getLongestChain() const {
  return static_cast<unsigned long>((fileLength_ + kPastEndBytes) / SectorSize());
}

void KELStStorageFileInfo::setHeader(std::FILE* file) {
  if (file == nullptr) return;
  fileLength_ = Length(file);
  std::array<unsigned char, kHeaderBytes> bytes;
  KELReadBytes(file, 0, kHeaderBytes, bytes.data());

  kelx::internal::ByteCursor start(bytes, sameByteOrder_);
  start.CopyTo(header_.signature);                      //  0
  start.CopyTo(header_.clsID);                          //  8
  header_.minorVersion = start.Read<unsigned short>();  // 24
  header_.majorVersion = start.Read<unsigned short>();  // 26
  header_.byteOrder = start.Read<unsigned short>();     // 28
  if (header_.byteOrder != kHostByteOrder) sameByteOrder_ = false;

  kelx::internal::ByteCursor fields(std::span<const unsigned char>(bytes).subspan(kFieldsOffset),
                                    sameByteOrder_);
  header_.sectorShift = fields.Read<unsigned short>();         // 30
  header_.miniSectorShift = fields.Read<unsigned short>();     // 32
  header_.reserved = fields.Read<unsigned short>();            // 34
  header_.reserved1 = fields.Read<unsigned int>();             // 36
  header_.numDirSects = fields.Read<unsigned int>();           // 40
  header_.numFatSects = fields.Read<unsigned int>();           // 44
  header_.dirStartSect = fields.Read<unsigned int>();          // 48
  header_.transactionSignature = fields.Read<unsigned int>();  // 52
  header_.miniStreamCutoff = fields.Read<unsigned int>();      // 56
  header_.miniFatStartSect = fields.Read<unsigned int>();      // 60
  header_.numMiniFatSects = fields.Read<unsigned int>();       // 64
  header_.difStartSect = fields.Read<unsigned int>();          // 68
  header_.numDifSects = fields.Read<unsigned int>();           // 72
  if (!IsSectorShift(header_.sectorShift)) return;

  header_.sectorBase = static_cast<int>(SectorSize()) - KELStStorageHeader::kDifatOffset;
  headerDifat_ = std::make_unique<unsigned int[]>(KELStStorageHeader::kDifatEntries);
  std::generate_n(headerDifat_.get(), KELStStorageHeader::kDifatEntries,
                  [&fields] { return fields.Read<unsigned int>(); });  // 76
  header_.headerDifSect = headerDifat_.get();
}

/// The sector shift, also where a refused header states one that nothing can be computed with.
unsigned int KELStStorageFileInfo::SectorShift() const {
  return IsSectorShift(header_.sectorShift) ? header_.sectorShift : kSmallSectorShift;
}
