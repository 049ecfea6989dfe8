#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelst {

// How names of entries are written.
//
// A name is any sequence of up to 32 UTF-16 units. It is written as UTF-8, with escapes for what
// cannot be shown or would be taken for something else. Two names never have the same written
// form, and every written form can be read back:
//
//   \\        a backslash
//   \xHH      a unit below 0x100: a control character, or a slash
//   \uHHHH    another unit: half a surrogate pair, or a character that shows as nothing or changes
//             the direction of writing
//   \empty    the whole of an empty name
//   \#N       at the end: the entry with the directory index N. It is written where an earlier
//             sibling has the same name.
//
// As the name of a file on disk the same form is used with % in the place of the backslash (so %%
// is a percent sign), and the names . and .. are escaped as well.

/// The form that people see and type.
std::string WrittenName(std::u16string_view name);

/// The form for files on disk: one path component, never empty, . or .., at most 255 bytes with
/// the index appended.
std::string FileName(std::u16string_view name);

std::string WrittenIndex(std::uint32_t index);   ///< `\#12`
std::string FileNameIndex(std::uint32_t index);  ///< `%#12`

/// `text`, which came from outside and may be anything, with its control bytes escaped.
std::string Printable(std::string_view text);

/// `name` as UTF-8 without escapes; half surrogate pairs become U+FFFD.
std::string PlainUtf8(std::u16string_view name);

/// What one component of a path asks for.
struct NamePattern {
  std::u16string name;
  std::optional<std::uint32_t> index;  ///< only the entry with this directory index
};

/// A path as a user typed it: components that slashes divide, each in written form. Leading and
/// trailing slashes mean nothing; a path without components is the root.
using EntryPath = std::vector<NamePattern>;

/// Nothing when `text` is not valid UTF-8 or holds a backslash that begins no escape.
std::optional<EntryPath> ParseEntryPath(std::string_view text);

/// Negative, zero or positive as `a` sorts before, with or after `b` when letter case is ignored.
int CompareIgnoringCase(char32_t a, char32_t b);

/// Whether the names are equal when letter case is ignored.
bool EqualIgnoringCase(std::u16string_view a, std::u16string_view b);

}  // namespace kelst
