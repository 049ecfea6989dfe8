#pragma once

#include <string>

#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/InspectedFile.h"

namespace kelst {

/// All about a file as one HTML page, which is well-formed XML too. It has no scripts, loads
/// nothing, and has a bounded size. `name` is printable. Both files are the same one.
std::string HtmlPage(CompoundFile& file, const InspectedFile& inspected, const std::string& name);

}  // namespace kelst
