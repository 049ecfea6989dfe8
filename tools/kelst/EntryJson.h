#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>

#include "tools/kelst/CompoundFile.h"

namespace kelst {

/// What ls and find say in JSON of an entry, given by its position in the tree.
nlohmann::ordered_json EntryJson(const CompoundFile& file, std::size_t position);

}  // namespace kelst
