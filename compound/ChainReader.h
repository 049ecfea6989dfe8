#pragma once

#include <cstdio>

#include "base/KELXDynamicArray.h"
#include "compound/KELStStorageFileInfo.h"
#include "compound/SectorChain.h"

namespace kelx::internal {

/// Appends the first `wanted` bytes of a chain of sectors of `file` to `bytes`, or as many as the
/// chain has. Bytes that the file lacks are zero. Sectors lie where
/// `image` says.
void ReadChain(std::FILE* file, const KELStStorageFileInfo& image,
               const SectorChain<TableLinks>& chain, int wanted,
               KELXDynamicArray<unsigned char>& bytes);

/// The lesser of `wanted` and the bytes of `sectors` sectors of `sectorSize` bytes.
int BytesInChain(std::uint64_t sectors, unsigned int sectorSize, int wanted);

}  // namespace kelx::internal
