#pragma once

#include <cstdint>
#include <string>

// What the library is measured against: the same bytes read with nothing else done.

namespace kelx::bench {

std::uint64_t FileSize(const std::string& path);

/// Reads the file whole with one fread into a fresh buffer of malloc, or of huge pages.
void ReadPlainly(const std::string& path, std::uint64_t bytes);
void ReadIntoHugePages(const std::string& path, std::uint64_t bytes);

/// Reads so many bytes of the file with one pread a sector of 512 bytes, each at some distance
/// from the one before, into a fresh buffer of huge pages.
void ReadSectors(const std::string& path, std::uint64_t bytes);

}  // namespace kelx::bench
