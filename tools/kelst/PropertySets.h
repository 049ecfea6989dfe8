#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/kelst/CompoundFile.h"

namespace kelst {

/// One property as people see it. All texts are valid UTF-8, as found, not escaped.
struct Property {
  unsigned long id;
  std::string name;  ///< from the dictionary, else the usual name, else empty
  std::string kind;  ///< "text", "integer", "float", "boolean", "date"
  std::string value;
};

struct Section {
  std::string formatId;  ///< "{F29F85E0-4FF9-1068-AB91-08002B27B3D9}"
  std::vector<Property> properties;
};

/// The property set of one stream.
struct PropertySet {
  std::string stream;  ///< path as ls prints it
  std::string name;    ///< of the set; mostly empty
  unsigned int codePage;
  std::vector<Section> sections;  ///< one or two
};

/// Whether the entry with this directory index is named as property sets are.
bool IsPropertyStream(const CompoundFile& file, std::uint32_t index);

/// The property set in the stream at `position`; nothing when there is none that can be read. What
/// is wrong with the stream is added to `problems`.
std::optional<PropertySet> ReadPropertySet(CompoundFile& file, std::size_t position,
                                           std::vector<std::string>& problems);

/// The property sets in the storage at `position` of the tree, in directory order. A stream that is
/// named as a property set but is none, or is damaged, is reported.
std::vector<PropertySet> PropertySetsOf(CompoundFile& file, std::size_t position, Report& report);

}  // namespace kelst
