#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelst {

[[nodiscard]] constexpr bool IsSurrogate(char32_t codePoint) {
  return codePoint >= 0xD800 && codePoint <= 0xDFFF;
}

/// Takes the first code point off `text`, which must not be empty. A surrogate without its partner
/// comes as it is.
char32_t TakeCodePoint(std::u16string_view& text);

/// Appends the UTF-8 of a code point that is no surrogate.
void AppendUtf8(std::string& text, char32_t codePoint);

/// Nothing when `utf8` is not valid UTF-8.
std::optional<std::u16string> ToUtf16(std::string_view utf8);

}  // namespace kelst
