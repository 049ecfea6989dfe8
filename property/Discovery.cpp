#include <algorithm>
#include <memory>

#include "property/PropertyTexts.h"
#include "storage/KELIStorage.h"
#include "storage/KELIStream.h"

namespace {

/// The first character of the names of property-set streams.
constexpr wchar_t kPropertyStreamMark = 5;

bool IsPropertyStream(const KELStStorageDirEntry& entry) {
  return entry.isStream() && entry.getName().startsWith(KELXString(kPropertyStreamMark));
}

/// The most bytes of property-set streams that are parsed for one storage. Streams share no
/// sectors in a well-formed file, so all of them together are not longer than the file; the rest
/// is for small damaged ones. Without a limit thousands of entries could name one large stream.
std::uint64_t MostBytes(const KELStStorageFileInfo& image) {
  constexpr std::uint64_t kAllowance = std::uint64_t{16} << 20;
  return kAllowance + (std::uint64_t{image.getLongestChain()} << image.getHeader().sectorShift);
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
    if (!IsPropertyStream(child)) continue;
    if (bytesLeft == 0) break;
    KELIStream* opened = nullptr;
    const int status = openStream(child.getName(), &opened);
    const std::unique_ptr<KELIStream> stream(opened);
    if (!stream) continue;
    // The entry may state more bytes than the stream has; the rest counts as zeros.
    const KELXDynamicArray<unsigned char>& held = stream->bytes_;
    bytesLeft -= std::min(bytesLeft, static_cast<std::uint64_t>(held.Count()));
    if (status != 0) continue;
    const KELIPropertyStorageHandle set(new KELIPropertyStorage);
    if (set->Initialize(held.begin(), static_cast<unsigned int>(held.Count()),
                        static_cast<unsigned int>(stream->entry_.getSize()), textAllowance,
                        &decoders)) {
      propertySets_->AddPropertyStorage(set);
    }
  }
  return propertySets_;
}
