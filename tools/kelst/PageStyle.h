#pragma once

#include <string>
#include <string_view>

namespace kelst {

/// The whole style sheet of a page, that of the map included.
std::string PageStyle();

/// The SHA-256 of PageStyle() in Base64. A browser applies the style sheet with this hash and no
/// other; a test tells the right one after a change.
inline constexpr std::string_view kPageStyleHash = "V8M+JG28P41cJlN/3TBS5dPixudipQLdX4JGYsZp10Q=";

}  // namespace kelst
