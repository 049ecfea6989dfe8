#include "tools/kelst/EntryName.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "KELXStStorage.h"
#include "tools/kelst/Utf.h"

namespace kelst {

namespace {

constexpr char kWrittenEscape = '\\';
constexpr char kFileEscape = '%';
constexpr std::string_view kEmptyName = "empty";

struct Range {
  char32_t first;
  char32_t last;
};

/// Characters that show as nothing, break lines or change the direction of what follows.
constexpr std::array kUnseen{
    Range{0x00AD, 0x00AD},   Range{0x034F, 0x034F}, Range{0x061C, 0x061C}, Range{0x115F, 0x1160},
    Range{0x17B4, 0x17B5},   Range{0x180B, 0x180F}, Range{0x200B, 0x200F}, Range{0x2028, 0x202E},
    Range{0x2060, 0x206F},   Range{0x3164, 0x3164}, Range{0xFE00, 0xFE0F}, Range{0xFEFF, 0xFEFF},
    Range{0xFFA0, 0xFFA0},   Range{0xFFF0, 0xFFFB}, Range{0xFFFE, 0xFFFF}, Range{0x1D173, 0x1D17A},
    Range{0xE0000, 0xE0FFF},
};

bool IsControl(char32_t codePoint) {
  return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

bool NeedsEscape(char32_t codePoint) {
  return IsControl(codePoint) || codePoint == '/' || codePoint == '\\' || IsSurrogate(codePoint) ||
         std::ranges::any_of(kUnseen, [=](const Range& range) {
           return codePoint >= range.first && codePoint <= range.last;
         });
}

/// A character beyond the first 65,536 takes two escapes, as it takes two units in a name.
void AppendEscape(std::string& text, char escape, char32_t unit) {
  if (unit >= 0x10000) {
    AppendEscape(text, escape, 0xD800 + ((unit - 0x10000) >> 10));
    unit = 0xDC00 + (unit & 0x3FF);
  }
  std::array<char, sizeof("\\uHHHH")> digits;
  const char* const format = unit < 0x100 ? "%cx%02X" : "%cu%04X";
  static_cast<void>(
      std::snprintf(digits.data(), digits.size(), format, escape, static_cast<unsigned int>(unit)));
  text += digits.data();
}

std::string Escape(std::u16string_view name, char escape) {
  if (name.empty()) return escape + std::string(kEmptyName);
  std::string text;
  while (!name.empty()) {
    const char32_t codePoint = TakeCodePoint(name);
    if (codePoint == static_cast<unsigned char>(escape)) {
      text.append(2, escape);
    } else if (NeedsEscape(codePoint)) {
      AppendEscape(text, escape, codePoint);
    } else {
      AppendUtf8(text, codePoint);
    }
  }
  return text;
}

std::string EscapedIndex(std::uint32_t index, char escape) {
  return std::string(1, escape) + '#' + std::to_string(index);
}

/// The number that `digits` are from first to last.
std::optional<std::uint32_t> ParseNumber(std::u16string_view digits, int base) {
  std::string ascii;
  for (const char16_t unit : digits) ascii += unit < 0x80 ? static_cast<char>(unit) : '?';
  std::uint32_t number = 0;
  const char* const end = ascii.data() + ascii.size();
  const auto [stop, error] = std::from_chars(ascii.data(), end, number, base);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// Takes one escape, whose backslash is taken already, off `text` and adds what it means to
/// `pattern`. False when there is no such escape.
bool TakeEscape(std::u16string_view& text, NamePattern& pattern) {
  if (text.empty()) return false;
  const char16_t kind = text.front();
  text.remove_prefix(1);
  if (kind == u'\\') {
    pattern.name += kind;
    return true;
  }
  if (kind == u'#') {
    pattern.index = ParseNumber(text, 10);
    text = {};
    return pattern.index.has_value();
  }
  const std::size_t length = kind == u'x' ? 2 : kind == u'u' ? 4 : 0;
  if (length == 0 || text.size() < length) return false;
  const auto unit = ParseNumber(text.substr(0, length), 16);
  text.remove_prefix(length);
  pattern.name += static_cast<char16_t>(unit.value_or(0));
  return unit.has_value();
}

std::optional<NamePattern> ParseComponent(std::u16string_view text) {
  constexpr std::u16string_view kEmpty = u"\\empty";
  NamePattern pattern;
  if (text.starts_with(kEmpty)) {
    text.remove_prefix(kEmpty.size());
    if (!text.empty() && !text.starts_with(u"\\#")) return std::nullopt;
  }
  while (!text.empty()) {
    const char16_t unit = text.front();
    text.remove_prefix(1);
    if (unit != u'\\') {
      pattern.name += unit;
    } else if (!TakeEscape(text, pattern)) {
      return std::nullopt;
    }
  }
  return pattern;
}

}  // namespace

std::string WrittenName(std::u16string_view name) { return Escape(name, kWrittenEscape); }

std::string FileName(std::u16string_view name) {
  if (name != u"." && name != u"..") return Escape(name, kFileEscape);
  std::string text;
  for (const char16_t dot : name) AppendEscape(text, kFileEscape, dot);
  return text;
}

std::string WrittenIndex(std::uint32_t index) { return EscapedIndex(index, kWrittenEscape); }

std::string FileNameIndex(std::uint32_t index) { return EscapedIndex(index, kFileEscape); }

std::string Printable(std::string_view text) {
  std::string printable;
  const std::string valid = KELXString::fromUtf8(text).toUtf8();
  std::u16string units = ToUtf16(valid).value_or(u"");
  for (std::u16string_view rest = units; !rest.empty();) {
    const char32_t codePoint = TakeCodePoint(rest);
    const bool isPlain = codePoint == '/' || codePoint == '\\' || !NeedsEscape(codePoint);
    isPlain ? AppendUtf8(printable, codePoint) : AppendEscape(printable, '\\', codePoint);
  }
  return printable;
}

std::string PlainUtf8(std::u16string_view name) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::string text;
  while (!name.empty()) {
    const char32_t codePoint = TakeCodePoint(name);
    AppendUtf8(text, IsSurrogate(codePoint) ? kReplacement : codePoint);
  }
  return text;
}

std::optional<EntryPath> ParseEntryPath(std::string_view text) {
  const auto units = ToUtf16(text);
  if (!units) return std::nullopt;
  EntryPath path;
  for (std::u16string_view rest = *units; !rest.empty();) {
    const std::size_t length = std::min(rest.find(u'/'), rest.size());
    const auto component = ParseComponent(rest.substr(0, length));
    if (!component) return std::nullopt;
    if (length > 0) path.push_back(*component);
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
  return path;
}

int CompareIgnoringCase(char32_t a, char32_t b) {
  if (a == b) return 0;
  if (IsSurrogate(a) || IsSurrogate(b)) return a < b ? -1 : 1;
  return KELXString(static_cast<wchar_t>(a)).compareToIgnoreCase(static_cast<wchar_t>(b));
}

bool EqualIgnoringCase(std::u16string_view a, std::u16string_view b) {
  while (!a.empty() && !b.empty()) {
    if (CompareIgnoringCase(TakeCodePoint(a), TakeCodePoint(b)) != 0) return false;
  }
  return a.empty() && b.empty();
}

}  // namespace kelst
