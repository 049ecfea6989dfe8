#include "base/Unicode.h"

#include <locale.h>
#include <wctype.h>

#include <bit>
#include <cstddef>

namespace kelx::internal {

namespace {

constexpr wchar_t kSurrogatesBegin = 0xD800;
constexpr wchar_t kLowSurrogatesBegin = 0xDC00;
constexpr wchar_t kSurrogatesEnd = 0xE000;
constexpr wchar_t kSupplementaryBegin = 0x10000;
constexpr wchar_t kLastCodePoint = 0x10FFFF;

/// A code point and the number of units that it took.
struct Decoded {
  wchar_t character;
  std::size_t units;
};

/// Length of the UTF-8 sequence that `lead` begins, 0 when it begins none.
std::size_t SequenceLength(unsigned char lead) noexcept {
  if (lead < 0x80) return 1;
  if (lead < 0xC2) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF5 ? 4 : 0;
}

Decoded DecodeSequence(std::string_view text) noexcept {
  constexpr wchar_t kSmallest[] = {0, 0, 0x80, 0x800, kSupplementaryBegin};
  constexpr Decoded kNothing{kReplacement, 1};
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = SequenceLength(lead);
  if (length == 1) return {lead, 1};
  if (length == 0 || length > text.size()) return kNothing;
  wchar_t character = lead & (0x7F >> length);
  for (const char next : text.substr(1, length - 1)) {
    const wchar_t byte = static_cast<unsigned char>(next);
    if ((byte & 0xC0) != 0x80) return kNothing;
    character = (character << 6) | (byte & 0x3F);
  }
  if (character < kSmallest[length] || !IsCodePoint(character)) return kNothing;
  return {character, length};
}

void EncodeCharacter(wchar_t character, std::string& out) {
  const auto code = std::bit_cast<unsigned int>(character);
  const auto put = [&out](unsigned int byte) { out.push_back(static_cast<char>(byte)); };
  if (code < 0x80) return put(code);
  if (code < 0x800) {
    put(0xC0 | (code >> 6));
  } else if (code < 0x10000) {
    put(0xE0 | (code >> 12));
    put(0x80 | ((code >> 6) & 0x3F));
  } else {
    put(0xF0 | (code >> 18));
    put(0x80 | ((code >> 12) & 0x3F));
    put(0x80 | ((code >> 6) & 0x3F));
  }
  put(0x80 | (code & 0x3F));
}

Decoded DecodeUnits(const unsigned short* text, std::size_t length) noexcept {
  const wchar_t first = text[0];
  if (first < kSurrogatesBegin || first >= kSurrogatesEnd) return {first, 1};
  const wchar_t second = length > 1 ? text[1] : 0;
  const bool isPair =
      first < kLowSurrogatesBegin && second >= kLowSurrogatesBegin && second < kSurrogatesEnd;
  if (!isPair) return {kReplacement, 1};
  return {kSupplementaryBegin + ((first - kSurrogatesBegin) << 10) + (second - kLowSurrogatesBegin),
          2};
}

/// Case rules that do not follow the locale of the process. Never freed: it must outlive every
/// string, static ones included.
locale_t CaseRules() noexcept {
  static const locale_t rules = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return rules;
}

}  // namespace

bool IsCodePoint(wchar_t character) noexcept {
  return character >= 0 && character <= kLastCodePoint &&
         (character < kSurrogatesBegin || character >= kSurrogatesEnd);
}

std::wstring DecodeUtf8(std::string_view text) {
  std::wstring characters;
  characters.reserve(text.size());
  while (!text.empty()) {
    const Decoded decoded = DecodeSequence(text);
    characters.push_back(decoded.character);
    text.remove_prefix(decoded.units);
  }
  return characters;
}

std::string EncodeUtf8(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (const wchar_t character : text) EncodeCharacter(character, bytes);
  return bytes;
}

std::size_t DecodeUtf16(const unsigned short* text, std::size_t length, wchar_t* out) noexcept {
  std::size_t count = 0;
  for (std::size_t at = 0; at < length;) {
    const Decoded decoded = DecodeUnits(text + at, length - at);
    out[count++] = decoded.character;
    at += decoded.units;
  }
  return count;
}

wchar_t FoldCase(wchar_t character) noexcept {
  constexpr wchar_t kAsciiEnd = 0x80;
  if (character < kAsciiEnd || CaseRules() == nullptr) {
    return character >= L'A' && character <= L'Z' ? character + (L'a' - L'A') : character;
  }
  return static_cast<wchar_t>(towlower_l(static_cast<wint_t>(character), CaseRules()));
}

}  // namespace kelx::internal
