#include "tests/support/Damage.h"

#include <stdexcept>

namespace kelx::test {

void PatchField(CompoundFile& file, std::uint64_t offset, std::uint64_t value, std::size_t width) {
  if (offset + width > file.bytes.size())
    throw std::out_of_range("patch beyond the end of the file");
  Store(&file.bytes[offset], value, width, file.layout.byteOrder);
}

void PatchHeader(CompoundFile& file, Field field, std::uint64_t value) {
  PatchField(file, field.offset, value, field.width);
}

void PatchEntry(CompoundFile& file, EntryIndex index, Field field, std::uint64_t value) {
  PatchField(file, file.layout.entries.at(index).offset + field.offset, value, field.width);
}

void TruncateTo(CompoundFile& file, std::uint64_t size) {
  if (size < file.bytes.size()) file.bytes.resize(size);
}

void LinkSector(CompoundFile& file, std::uint32_t sector, std::uint32_t next) {
  Patch(file, file.layout.FatEntryOffset(sector), next);
}

void LinkSectorToItself(CompoundFile& file, std::uint32_t sector) {
  LinkSector(file, sector, sector);
}

void LinkMiniSector(CompoundFile& file, std::uint32_t miniSector, std::uint32_t next) {
  Patch(file, file.layout.MiniFatEntryOffset(miniSector), next);
}

void LinkMiniSectorToItself(CompoundFile& file, std::uint32_t miniSector) {
  LinkMiniSector(file, miniSector, miniSector);
}

}  // namespace kelx::test
