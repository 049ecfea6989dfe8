#include "tools/kelst/FindingText.h"

#include "tools/kelst/ValueText.h"

namespace kelst {

std::string PlaceText(const Place& place) {
  if (place.unit == Place::Unit::kByte) return "byte " + Grouped(place.first);
  const std::string sector = place.unit == Place::Unit::kSector ? "sector" : "mini sector";
  if (place.count == 1) return sector + ' ' + Grouped(place.first);
  return sector + "s " + Grouped(place.first) + " to " + Grouped(place.first + place.count - 1);
}

std::string TotalsText(const FindingList& findings) {
  std::string text = IsClean(findings) ? "clean" : "";
  for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
    const std::uint64_t count = findings.CountOf(severity);
    if (count > 0) text += (text.empty() ? "" : ", ") + WithUnit(count, NameOf(severity));
  }
  return text;
}

bool IsClean(const FindingList& findings) {
  return findings.CountOf(Severity::kError) + findings.CountOf(Severity::kWarning) == 0;
}

}  // namespace kelst
