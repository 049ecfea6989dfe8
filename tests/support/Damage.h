#pragma once

#include <concepts>
#include <cstdint>

#include "tests/support/CompoundFileBuilder.h"

/// Named changes to a built file. All but `TruncateTo` leave its length alone and throw
/// `std::out_of_range` if the file has no such place; integers go in the file's byte order.
namespace kelx::test {

void PatchField(CompoundFile& file, std::uint64_t offset, std::uint64_t value, std::size_t width);

/// The type of `value` gives the width: `Patch(file, 30, std::uint16_t{10})`.
template <std::unsigned_integral T>
void Patch(CompoundFile& file, std::uint64_t offset, T value) {
  PatchField(file, offset, value, sizeof value);
}

/// Takes a constant of the namespace `HeaderField`, `PatchEntry` one of `EntryField`.
void PatchHeader(CompoundFile& file, Field field, std::uint64_t value);
void PatchEntry(CompoundFile& file, EntryIndex index, Field field, std::uint64_t value);

/// Does nothing if the file is no longer than `size` bytes.
void TruncateTo(CompoundFile& file, std::uint64_t size);

/// Change the FAT entry of a sector, or the mini FAT entry of a mini sector.
void LinkSector(CompoundFile& file, std::uint32_t sector, std::uint32_t next);
void LinkSectorToItself(CompoundFile& file, std::uint32_t sector);
void LinkMiniSector(CompoundFile& file, std::uint32_t miniSector, std::uint32_t next);
void LinkMiniSectorToItself(CompoundFile& file, std::uint32_t miniSector);

}  // namespace kelx::test
