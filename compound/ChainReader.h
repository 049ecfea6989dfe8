#pragma once

#include <cstdio>

#include "base/KELXDynamicArray.h"
#include "compound/KELStStorageFileInfo.h"
#include "compound/SectorChain.h"

namespace kelx::internal {

/// Appends the first `wanted` bytes of a chain of sectors of `file` to `bytes`, or as many as the
/// chain has. Bytes that the file lacks are zero. Sectors are `1 << sectorShift` bytes and lie
/// where `image` says.
void ReadChain(std::FILE* file, const KELStStorageFileInfo& image,
               const SectorChain<TableLinks>& chain, int wanted,
               KELXDynamicArray<unsigned char>& bytes);

/// The lesser of `wanted` and the bytes of `sectors` sectors of 2 to the power `shift` bytes.
int BytesInChain(std::uint64_t sectors, unsigned int shift, int wanted);

}  // namespace kelx::internal
