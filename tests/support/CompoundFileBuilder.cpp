#include "tests/support/CompoundFileBuilder.h"

#include <unistd.h>

#include <memory>
#include <stdexcept>
#include <utility>

#include "tests/support/AllocationTables.h"
#include "tests/support/DiskRecords.h"
#include "tests/support/SectorWriter.h"

namespace kelx::test {
namespace {

/// Turns entries and their planned places into bytes.
class ImageWriter {
 public:
  ImageWriter(const Format& format, std::span<const CompoundFileEntry> entries,
              const Layout& layout, const Sink& sink)
      : format_(format),
        entries_(entries),
        layout_(layout),
        sink_(sink),
        writer_(sink, layout.sectorSize, layout.sectorSize) {}

  void Write() {
    sink_(0, EncodeHeader(format_, layout_));
    WriteTable(layout_.fat, FatValues(layout_));
    WriteTable(layout_.difat, DifatValues(layout_, format_.fatSectorsInHeader));
    WriteTable(layout_.miniFat, MiniFatValues(layout_));
    const std::vector<Links> links = LinkEntries(entries_, format_.siblings);
    writer_.Write(layout_.directory, EncodeDirectory(entries_, links, layout_));
    writer_.Write(layout_.miniStream, MiniStreamBytes());
    WriteStreams(false, writer_);
  }

 private:
  void WriteTable(const std::vector<std::uint32_t>& chain, std::vector<std::uint32_t> values) {
    const std::uint64_t size = std::uint64_t{chain.size()} * layout_.sectorSize;
    writer_.Write(chain, TableContent(std::move(values), size, format_.byteOrder));
  }

  Bytes MiniStreamBytes() const {
    Bytes bytes(layout_.entries[kRoot].size);
    SectorWriter writer(IntoMemory(bytes), 0, kMiniSectorSize);
    WriteStreams(true, writer);
    return bytes;
  }

  void WriteStreams(bool inMiniStream, SectorWriter& writer) const {
    for (std::size_t i = 1; i < entries_.size(); ++i) {
      const Layout::Entry& place = layout_.entries[i];
      if (place.inMiniStream == inMiniStream) writer.Write(place.sectors, entries_[i].content);
    }
  }

  const Format& format_;
  std::span<const CompoundFileEntry> entries_;
  const Layout& layout_;
  const Sink& sink_;
  SectorWriter writer_;
};

}  // namespace

CompoundFileBuilder::CompoundFileBuilder(Format format, EntryOptions root) : format_(format) {
  entries_.push_back({u"Root Entry", kRoot, kRootType, {}, root});
}

EntryIndex CompoundFileBuilder::AddStorage(EntryIndex parent, std::u16string_view name,
                                           EntryOptions options) {
  return Add({std::u16string(name), parent, kStorageType, {}, options});
}

EntryIndex CompoundFileBuilder::AddStream(EntryIndex parent, std::u16string_view name,
                                          Content content, EntryOptions options) {
  return Add({std::u16string(name), parent, kStreamType, std::move(content), options});
}

EntryIndex CompoundFileBuilder::Add(CompoundFileEntry entry) {
  if (entry.parent >= entries_.size()) throw std::invalid_argument("no such parent entry");
  if (entry.name.size() > kNameUnits) throw std::invalid_argument("entry name too long");
  entries_.push_back(std::move(entry));
  return static_cast<EntryIndex>(entries_.size() - 1);
}

CompoundFile CompoundFileBuilder::Build() const {
  CompoundFile file{{}, PlanLayout(format_, entries_)};
  file.bytes.resize(file.layout.FileSize());
  ImageWriter(format_, entries_, file.layout, IntoMemory(file.bytes)).Write();
  return file;
}

Layout CompoundFileBuilder::WriteTo(std::FILE* file) const {
  Layout layout = PlanLayout(format_, entries_);
  ImageWriter(format_, entries_, layout, IntoFile(file)).Write();
  // The last sector may be part filled.
  if (std::fflush(file) != 0 ||
      ftruncate(fileno(file), static_cast<off_t>(layout.FileSize())) != 0) {
    throw std::runtime_error("cannot set the size of the compound file");
  }
  return layout;
}

Layout CompoundFileBuilder::WriteTo(const std::string& path) const {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"),
                                                             &std::fclose);
  if (!file) throw std::runtime_error("cannot open " + path);
  return WriteTo(file.get());
}

}  // namespace kelx::test
