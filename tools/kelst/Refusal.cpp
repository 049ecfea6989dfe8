#include "tools/kelst/Refusal.h"

#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr std::uint64_t kShiftsEnd = 34;  // where the last of the tested shifts ends in the file
constexpr unsigned int kDirectorySectorsEnd = 8;

std::string Expected(const std::string& what, unsigned int found, const std::string& expected) {
  return what + " is " + std::to_string(found) + " (" + expected + " expected)";
}

}  // namespace

// The sector shift comes first: of a file that is something else altogether it tells most.
std::string WhyRefused(const KELStStorageHeader& header, std::uint64_t size) {
  if (size == 0) return "the file is empty";
  if (size < kShiftsEnd) return "the file is too short (" + WithUnit(size, "byte") + ")";
  if (header.sectorShift != 9 && header.sectorShift != 12) {
    return Expected("sector shift", header.sectorShift, "9 or 12");
  }
  if (header.miniSectorShift != 6) {
    return Expected("mini sector shift", header.miniSectorShift, "6");
  }
  if (header.reserved != 0) return Expected("reserved field at byte 34", header.reserved, "0");
  if (header.reserved1 != 0) return Expected("reserved field at byte 36", header.reserved1, "0");
  if (header.numDirSects >= kDirectorySectorsEnd) {
    return Expected("number of directory sectors", header.numDirSects, "less than 8");
  }
  return "the file could not be read";
}

}  // namespace kelst
