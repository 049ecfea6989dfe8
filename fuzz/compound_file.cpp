#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "KELXStStorage.h"

// A whole file through the public interface: open, list, every stream and sub-storage, every
// property set and query.

namespace {

/// More than any seed has; what a file repeats does not get more interesting.
constexpr int kMostStorages = 16;
constexpr int kMostStreams = 64;

struct Budget {
  int storages = kMostStorages;
  int streams = kMostStreams;
};

/// A file in memory that can be opened by path, as often as the library likes.
class MemoryFile {
 public:
  MemoryFile(const std::uint8_t* data, std::size_t size) : file_(memfd_create("input", 0)) {
    if (file_ < 0 || write(file_, data, size) != static_cast<ssize_t>(size)) std::abort();
    path_ = "/proc/self/fd/" + std::to_string(file_);
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(file_); }

  [[nodiscard]] KELXFilePath Path() const { return KELXFilePath(path_.c_str()); }

 private:
  int file_;
  std::string path_;
};

void QueryProperties(KELIStorage& storage) {
  KELIPropertySetStorage* sets = nullptr;
  KELXStructuredStorageUtils::OpenPropertySetStorage(&storage, sets);
  KELXDynamicArray<KELIPropertyStorage*> all;
  KELXStructuredStorageUtils::OpenAllPropertyStorages(sets, all);
  for (KELIPropertyStorage* const set : all) {
    KELXString value;
    int type = 0;
    KELXStructuredStorageUtils::GetValueWithId(2, set, value, type);
    KELXStructuredStorageUtils::GetValueWithName(value, set, value, type);
    KELXPropertyContainerHandle container(nullptr);
    KELXStructuredStorageUtils::GetAllPropertySets(set, container);
    unsigned char id[16];
    set->GetPropertyStorageID(id);
    KELIPropertyStorage* found = nullptr;
    KELXStructuredStorageUtils::OpenPropertySetWithId(&storage, id, found);
    KELXStructuredStorageUtils::ClosePropertyStorage(found);
    KELXStructuredStorageUtils::ClosePropertyStorage(set);
  }
  KELXStructuredStorageUtils::ClosePropertySetStorage(sets);
}

void ReadAll(KELIStream& stream) {
  char buffer[512];
  unsigned long read = 0;
  do stream.Read(buffer, sizeof(buffer), &read);
  while (read > 0);
}

void Visit(KELIStorage& storage, Budget& budget, int depth) {
  KELXDynamicArray<KELXString> names;
  GetStreamStorageNames(&storage, names);
  KELXDynamicArray<KELStStorageDirEntry> children;
  storage.enumElements(children);
  for (const KELStStorageDirEntry& child : children) {
    KELStStorageDirEntry found;
    storage.searchStream(child.getName(), found, depth > 0);
    if (--budget.streams > 0) {
      const std::unique_ptr<KELIStream> stream(OpenStream(&storage, child.getName()));
      if (stream) ReadAll(*stream);
      for (const bool isLarge : {false, true}) {
        KELIStream* raw = nullptr;
        isLarge ? storage.getStreamFromFat(child, &raw) : storage.getStreamFromMiniFat(child, &raw);
        delete raw;
      }
    }
    if (budget.storages <= 0) continue;
    const std::unique_ptr<KELIStorage> inner(OpenStorage(&storage, child.getName()));
    if (!inner) continue;
    --budget.storages;
    Visit(*inner, budget, depth + 1);
  }
  QueryProperties(storage);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const MemoryFile file(data, size);
  const std::unique_ptr<KELIStorage> root(KELStgOpenStorageRoot(file.Path()));
  if (!root) return 0;
  Budget budget;
  Visit(*root, budget, 0);
  return 0;
}
