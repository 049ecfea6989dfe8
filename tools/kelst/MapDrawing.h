#pragma once

#include <string>
#include <string_view>

#include "tools/kelst/InspectedFile.h"

namespace kelst {

/// The rules that a drawing takes its colours and fonts from.
std::string_view MapStyle();

enum class MapUse {
  kOwnFile,  ///< with its style and a background
  kInPage,   ///< a part of a page that has the style
};

/// A picture of what each sector of a file holds, with a legend and the largest streams, as SVG
/// that is well-formed XML. It has a bounded number of shapes, however large the file is. `name` is
/// printable.
std::string DrawMap(const InspectedFile& file, const std::string& name, MapUse use);

}  // namespace kelst
