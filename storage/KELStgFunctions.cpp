#include "storage/KELStgFunctions.h"

#include <algorithm>
#include <array>
#include <memory>

#include "compound/OpenFile.h"
#include "storage/KELIStorage.h"
#include "storage/KELIStream.h"
#include "storage/KELXQuickSort.h"

namespace {

constexpr unsigned long kPieceBytes = 1024;

/// Appends the names of those children for which `isWanted(entry)` holds and sorts the array.
template <typename Filter>
bool AppendNames(KELIStorage* storage, KELXDynamicArray<KELXString>& names, Filter isWanted) {
  KELXDynamicArray<KELStStorageDirEntry> children;
  if (storage == nullptr || storage->enumElements(children) != 0) return false;
  for (const KELStStorageDirEntry& child : children) {
    if (isWanted(child)) names.Add(child.getName());
  }
  qsort(names, 0, names.Count() - 1);
  return true;
}

bool GetElementNames(KELIStorage* storage, KELXDynamicArray<KELXString>& names,
                     KELXStStorageElementType type) {
  return AppendNames(storage, names, [type](const KELStStorageDirEntry& child) {
    return type == KELXStStorageElementStream ? child.isStream() : child.isStorage();
  });
}

unsigned long StatedSize(KELIStream& stream) {
  KELStStorageDirEntry entry;
  stream.Stat(&entry);
  return entry.getSize();
}

template <typename Byte>
bool ReadExactly(KELIStream* stream, Byte* buffer, unsigned long count) {
  if (stream == nullptr) return false;
  unsigned long copied = 0;
  return stream->Read(buffer, count, &copied) == 0 && copied == count;
}

/// Copies `size` bytes from the stream's position to `file`, whole pieces only.
bool CopyPieces(KELIStream& stream, std::FILE* file, unsigned long size) {
  std::array<char, kPieceBytes> piece;
  for (unsigned long done = 0; done < size;) {
    const unsigned long count = std::min(kPieceBytes, size - done);
    if (!ReadExactly(&stream, piece.data(), count)) return false;
    static_cast<void>(std::fwrite(piece.data(), 1, count, file));
    done += count;
  }
  return true;
}

}  // namespace

int KELStgOpenStorage(const KELXFilePath& path, KELIStorage** storage) {
  auto opened = std::make_unique<KELIStorage>(path);
  const bool isValid = opened->getStStorageFileInfo()->checkValidity();
  *storage = isValid ? opened.release() : nullptr;
  return isValid ? 0 : -1;
}

KELIStorage* KELStgOpenStorageRoot(const KELXFilePath& path) {
  KELIStorage* storage = nullptr;
  KELStgOpenStorage(path, &storage);
  return storage;
}

bool IsStorageFile(const KELXFilePath& path) { return KELStStorageFileInfo(path).checkValidity(); }

KELIStorage* OpenStorage(const KELXFilePath& path, KELXFilePath&) {
  return KELStgOpenStorageRoot(path);
}

KELIStorage* OpenStorage(KELIStorage* storage, const KELXString& name) {
  KELIStorage* opened = nullptr;
  if (storage != nullptr) storage->openStorage(name, &opened);
  return opened;
}

KELIStream* OpenStream(KELIStorage* storage, const KELXString& name) {
  KELIStream* opened = nullptr;
  if (storage == nullptr || storage->openStream(name, &opened) == 0) return opened;
  delete opened;  // what could be read of a damaged stream
  return nullptr;
}

bool GetStorageNames(KELIStorage* storage, KELXDynamicArray<KELXString>& names) {
  return GetElementNames(storage, names, KELXStStorageElementStorage);
}

bool GetStreamNames(KELIStorage* storage, KELXDynamicArray<KELXString>& names) {
  return GetElementNames(storage, names, KELXStStorageElementStream);
}

bool GetStreamStorageNames(KELIStorage* storage, KELXDynamicArray<KELXString>& names) {
  return AppendNames(storage, names, [](const KELStStorageDirEntry&) { return true; });
}

bool GetChildElements(KELIStorage* storage, KELXDynamicArray<KELXStStorageElement>& elements) {
  if (storage == nullptr) return false;
  KELXDynamicArray<KELStStorageDirEntry> children;
  storage->enumElements(children);
  for (const KELStStorageDirEntry& child : children) {
    elements.Add({child.getName(),
                  child.isStream() ? KELXStStorageElementStream : KELXStStorageElementStorage});
  }
  return elements.Count() > 0;
}

bool GetStreamSize(KELIStream* stream, unsigned long& size) {
  if (stream == nullptr) return false;
  size = StatedSize(*stream);
  return true;
}

bool ReadStream(KELIStream* stream, char* buffer, unsigned long count) {
  return ReadExactly(stream, buffer, count);
}

bool ReadStream(KELIStream* stream, unsigned char* buffer, unsigned long count) {
  return ReadExactly(stream, buffer, count);
}

bool TellStream(KELIStream* stream, unsigned long& position) {
  return stream != nullptr && stream->SeekCur(position) == 0;
}

bool SeekStream(KELIStream* stream, long offset, int origin) {
  return stream != nullptr && stream->Seek(static_cast<unsigned long>(offset),
                                           static_cast<unsigned long>(long{origin})) == 0;
}

bool WriteStreamToFile(KELIStream* stream, KELXFilePath& path, unsigned long size) {
  if (stream == nullptr) return false;
  const kelx::internal::OwnedFile file(path.OpenFile("w+b"));
  return file && CopyPieces(*stream, file.get(), size == 0 ? StatedSize(*stream) : size);
}

bool WriteStreamToFile(KELIStream* stream, std::FILE* file, unsigned long size) {
  if (stream == nullptr || file == nullptr) return false;
  return CopyPieces(*stream, file, size == 0 ? StatedSize(*stream) : size);
}

bool CloseStream(KELIStream* stream) {
  delete stream;
  return true;
}

bool CloseStorage(KELIStorage* storage) {
  delete storage;
  return true;
}

int VANTREL_INTERNAL_KELXStStorage() { return 1; }
