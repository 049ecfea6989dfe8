#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kelx::internal {

/// Stands for whatever is no character.
inline constexpr wchar_t kReplacement = 0xFFFD;

/// Whether `character` is a code point that a text may hold: no surrogate, at most U+10FFFF.
bool IsCodePoint(wchar_t character) noexcept;

/// The characters of UTF-8 text; bytes that are not UTF-8 become one kReplacement each.
std::wstring DecodeUtf8(std::string_view text);

/// The UTF-8 form of `text`, which holds code points only.
std::string EncodeUtf8(std::wstring_view text);

/// Writes the characters of UTF-16 text in host byte order to `out`, which has room for `length`,
/// and returns how many there are.
std::size_t DecodeUtf16(const unsigned short* text, std::size_t length, wchar_t* out) noexcept;

/// The lower-case form of one code point by the rules of the C.UTF-8 locale.
wchar_t FoldCase(wchar_t character) noexcept;

}  // namespace kelx::internal
