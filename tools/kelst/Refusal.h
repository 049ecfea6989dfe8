#pragma once

#include <cstdint>
#include <string>

#include "KELXStStorage.h"

namespace kelst {

/// Why a file of `size` bytes with this header is no compound file.
std::string WhyRefused(const KELStStorageHeader& header, std::uint64_t size);

}  // namespace kelst
