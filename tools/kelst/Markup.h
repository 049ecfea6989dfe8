#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kelst {

// Text for SVG and HTML. All that comes from a file goes through Escaped, and is in written or
// printable form before (EntryName.h): of control characters neither XML nor people can make sense.

/// `text` for between tags and for between quotation marks.
std::string Escaped(std::string_view text);

/// `text`, which is UTF-8, if it takes no more than `columns`, else its start or end with an
/// ellipsis. Characters beyond U+0FFF, which are wide mostly, count as two columns.
std::string Start(std::string_view text, std::size_t columns);
std::string End(std::string_view text, std::size_t columns);

}  // namespace kelst
