#include <algorithm>
#include <climits>
#include <memory>

#include "compound/SectorChain.h"
#include "property/PropertyTexts.h"
#include "storage/KELIStorage.h"
#include "storage/KELIStream.h"

namespace {

/// The first character of the names of property-set streams.
constexpr wchar_t kPropertyStreamMark = 5;

bool IsPropertyStream(const KELStStorageDirEntry& entry) {
  return entry.isStream() && entry.getName().startsWith(KELXString(kPropertyStreamMark));
}

/// The most bytes of property-set streams that are followed for one storage. Streams share no
/// sectors in a well-formed file, so all of them together are not longer than the file. Without a
/// limit thousands of entries could name one large stream.
std::uint64_t MostBytes(const KELStStorageFileInfo& image) {
  return std::uint64_t{image.getLongestChain()} << image.getHeader().sectorShift;
}

/// The bytes of the sectors that opening a large stream follows: its whole chain, whatever size the
/// entry states. Thousands of entries of one byte could name one chain as long as the file.
std::uint64_t BytesFollowed(const KELStStorageFileInfo& image, const KELStStorageDirEntry& entry) {
  if (entry.getSize() < image.getHeader().miniStreamCutoff) return 0;
  const KELXDynamicArray<unsigned int> fat = image.getFatSector();
  const auto chain = kelx::internal::TableChain(entry.getStartSect(), image.getLongestChain(), fat);
  return chain.Length() << image.getHeader().sectorShift;
}

}  // namespace

KELIPropertySetStorage* KELIStorage::getPropertySetStorage() {
  if (!propertySets_.IsValid()) {
    propertySets_ = KELIPropertySetStorageHandle(new KELIPropertySetStorage);
  }
  KELXDynamicArray<KELStStorageDirEntry> children;
  if (propertySets_->GetPropertyStorageCount() > 0 || enumElements(children) != 0) {
    return propertySets_;
  }
  std::uint64_t textAllowance = KELIPropertyStorage::kTextAllowance;
  kelx::internal::CodePageDecoders decoders;
  std::uint64_t bytesLeft = MostBytes(*image_);
  for (const KELStStorageDirEntry& child : children) {
    // The name decides: of two that differ in case only the first is found.
    KELStStorageDirEntry entry;
    if (!IsPropertyStream(child) || !searchStream(child.getName(), entry, true)) continue;
    if (entry.getSize() > INT_MAX) continue;  // nothing is read, however far its chain goes
    const std::uint64_t followed = BytesFollowed(*image_, entry);
    if (bytesLeft == 0 || followed > bytesLeft) break;
    KELIStream* opened = nullptr;
    const int status = openStream(child.getName(), &opened);
    const std::unique_ptr<KELIStream> stream(opened);
    const std::uint64_t read = stream ? static_cast<std::uint64_t>(stream->bytes_.Count()) : 0;
    bytesLeft -= std::min(bytesLeft, std::max(followed, read));
    if (status != 0) continue;
    // The entry may state more bytes than the stream has; the rest counts as zeros.
    const KELXDynamicArray<unsigned char>& held = stream->bytes_;
    const KELIPropertyStorageHandle set(new KELIPropertyStorage);
    if (set->Initialize(held.begin(), static_cast<unsigned int>(held.Count()),
                        static_cast<unsigned int>(stream->entry_.getSize()), textAllowance,
                        &decoders)) {
      propertySets_->AddPropertyStorage(set);
    }
  }
  return propertySets_;
}
