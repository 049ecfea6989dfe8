#include "tools/kelst/Utf.h"

namespace kelst {

namespace {

constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kLastCodePoint = 0x10FFFF;
constexpr char32_t kFirstHighSurrogate = 0xD800;
constexpr char32_t kFirstLowSurrogate = 0xDC00;

bool IsHighSurrogate(char16_t unit) { return (unit & 0xFC00) == kFirstHighSurrogate; }
bool IsLowSurrogate(char16_t unit) { return (unit & 0xFC00) == kFirstLowSurrogate; }

void AppendUtf16(std::u16string& text, char32_t codePoint) {
  if (codePoint < kFirstSupplementary) {
    text += static_cast<char16_t>(codePoint);
    return;
  }
  const char32_t offset = codePoint - kFirstSupplementary;
  text += static_cast<char16_t>(kFirstHighSurrogate + (offset >> 10));
  text += static_cast<char16_t>(kFirstLowSurrogate + (offset & 0x3FF));
}

/// What the first byte of a UTF-8 sequence says: how many bytes follow, the bits it holds, and the
/// lowest code point that needs so many bytes.
struct Lead {
  int following;
  char32_t bits;
  char32_t lowest;
};

std::optional<Lead> DecodeLead(unsigned char byte) {
  if (byte < 0x80) return Lead{0, byte, 0};
  if (byte >= 0xC0 && byte < 0xE0) return Lead{1, byte & 0x1FU, 0x80};
  if (byte >= 0xE0 && byte < 0xF0) return Lead{2, byte & 0x0FU, 0x800};
  if (byte >= 0xF0 && byte < 0xF8) return Lead{3, byte & 0x07U, kFirstSupplementary};
  return std::nullopt;
}

/// Takes the first code point off `utf8`, which must not be empty.
std::optional<char32_t> TakeUtf8(std::string_view& utf8) {
  const auto lead = DecodeLead(static_cast<unsigned char>(utf8.front()));
  utf8.remove_prefix(1);
  if (!lead) return std::nullopt;
  char32_t codePoint = lead->bits;
  for (int i = 0; i < lead->following; ++i) {
    const auto byte = utf8.empty() ? 0U : static_cast<unsigned char>(utf8.front());
    if ((byte & 0xC0U) != 0x80U) return std::nullopt;
    utf8.remove_prefix(1);
    codePoint = codePoint << 6 | (byte & 0x3FU);
  }
  const bool isValid =
      codePoint >= lead->lowest && codePoint <= kLastCodePoint && !IsSurrogate(codePoint);
  return isValid ? std::optional(codePoint) : std::nullopt;
}

}  // namespace

char32_t TakeCodePoint(std::u16string_view& text) {
  const char16_t unit = text.front();
  text.remove_prefix(1);
  if (!IsHighSurrogate(unit) || text.empty() || !IsLowSurrogate(text.front())) return unit;
  const char32_t low = text.front() - kFirstLowSurrogate;
  text.remove_prefix(1);
  return kFirstSupplementary + ((unit - kFirstHighSurrogate) << 10) + low;
}

void AppendUtf8(std::string& text, char32_t codePoint) {
  const auto add = [&text](char32_t byte) { text += static_cast<char>(byte); };
  const auto addSixBits = [&](int shift) { add(0x80 | ((codePoint >> shift) & 0x3F)); };
  if (codePoint < 0x80) return add(codePoint);
  if (codePoint < 0x800) {
    add(0xC0 | codePoint >> 6);
  } else if (codePoint < kFirstSupplementary) {
    add(0xE0 | codePoint >> 12);
    addSixBits(6);
  } else {
    add(0xF0 | codePoint >> 18);
    addSixBits(12);
    addSixBits(6);
  }
  addSixBits(0);
}

std::optional<std::u16string> ToUtf16(std::string_view utf8) {
  std::u16string text;
  while (!utf8.empty()) {
    const auto codePoint = TakeUtf8(utf8);
    if (!codePoint) return std::nullopt;
    AppendUtf16(text, *codePoint);
  }
  return text;
}

}  // namespace kelst
