#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "KELXStStorage.h"

namespace kelst {

std::string Grouped(std::uint64_t number);  ///< "1,234,567"

/// The number with a noun that ends in "s" unless it is one: "1 byte", "1,234 bytes".
std::string WithUnit(std::uint64_t number, std::string_view noun);

/// A count of bytes, in larger units too when it is large: "13,312 bytes (13.0 KiB)".
std::string SizeText(std::uint64_t bytes);

/// `time` in 100 ns units since 1601 as 2026-11-22T19:55:48Z; empty for 0.
std::string TimeText(std::uint64_t time);

/// The 16 bytes as stored as {00020906-0000-0000-C000-000000000046}; empty when all are zero.
std::string ClassIdText(const std::array<unsigned char, 16>& classId);

/// "storage", "stream", "root", "empty", or "type 3".
std::string KindText(const KELStStorageDirEntry& entry);

}  // namespace kelst
