#include "tools/kelst/Glob.h"

#include <algorithm>
#include <string>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/Utf.h"

namespace kelst {

namespace {

std::optional<std::u32string> CodePoints(std::string_view utf8) {
  const auto units = ToUtf16(utf8);
  if (!units) return std::nullopt;
  std::u32string text;
  for (std::u16string_view rest = *units; !rest.empty();) text += TakeCodePoint(rest);
  return text;
}

}  // namespace

bool Glob::Part::Matches(char32_t character) const {
  const bool isInRanges = std::ranges::any_of(ranges, [=](const Range& range) {
    return CompareIgnoringCase(range.first, character) <= 0 &&
           CompareIgnoringCase(character, range.last) <= 0;
  });
  return isInRanges != isNegated;
}

/// Takes a set in brackets off `pattern`, which begins with one; nothing when no bracket closes it.
std::optional<Glob::Part> Glob::TakeSet(std::u32string_view& pattern) {
  std::u32string_view rest = pattern.substr(1);
  Part set;
  set.isNegated = rest.starts_with(U'!') || rest.starts_with(U'^');
  if (set.isNegated) rest.remove_prefix(1);
  const std::size_t length = rest.find(U']', 1);  // the first character of a set may be one
  if (length == std::u32string_view::npos) return std::nullopt;
  pattern = rest.substr(length + 1);
  for (rest = rest.substr(0, length); !rest.empty();) {
    const bool isRange = rest.size() > 2 && rest[1] == U'-';
    set.ranges.push_back({rest[0], isRange ? rest[2] : rest[0]});
    rest.remove_prefix(isRange ? 3 : 1);
  }
  return set;
}

/// Takes the first part off `pattern`, which must not be empty.
Glob::Part Glob::TakePart(std::u32string_view& pattern) {
  const char32_t character = pattern.front();
  if (character == U'[') {
    if (auto set = TakeSet(pattern)) return *set;
  }
  pattern.remove_prefix(1);
  if (character == U'*') return {.ranges = {}, .isNegated = false, .isStar = true};
  if (character == U'?') return {.ranges = {}, .isNegated = true, .isStar = false};
  return {.ranges = {{character, character}}, .isNegated = false, .isStar = false};
}

std::optional<Glob> Glob::Parse(std::string_view pattern) {
  const auto characters = CodePoints(pattern);
  if (!characters) return std::nullopt;
  Glob glob;
  for (std::u32string_view rest = *characters; !rest.empty();) {
    glob.parts_.push_back(TakePart(rest));
  }
  return glob;
}

// Where the pattern fails behind a star, the star takes one character more. Only the last star met
// has to be tried again, so that the time is at most the product of both lengths.
bool Glob::Matches(std::string_view name) const {
  const std::u32string characters = CodePoints(name).value_or(U"");
  std::size_t part = 0;
  std::size_t at = 0;
  std::optional<std::size_t> star;
  std::size_t starEnd = 0;
  while (at < characters.size()) {
    if (part < parts_.size() && parts_[part].isStar) {
      star = part++;
      starEnd = at;
    } else if (part < parts_.size() && parts_[part].Matches(characters[at])) {
      ++part;
      ++at;
    } else if (star) {
      part = *star + 1;
      at = ++starEnd;
    } else {
      return false;
    }
  }
  return std::all_of(parts_.begin() + static_cast<std::ptrdiff_t>(part), parts_.end(),
                     [](const Part& rest) { return rest.isStar; });
}

}  // namespace kelst
