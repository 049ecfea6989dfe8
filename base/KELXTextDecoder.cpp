#include "base/KELXTextDecoder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>

#include "base/Unicode.h"

namespace {

/// A Windows code page that iconv knows by another name than "CP" and its number.
struct CodePageName {
  unsigned int number;
  const char* name;
};

constexpr auto kCodePageNames = std::to_array<CodePageName>({
    {1200, "UTF-16LE"},
    {1201, "UTF-16BE"},
    {1361, "JOHAB"},
    {10000, "MACINTOSH"},
    {10007, "MAC-CYRILLIC"},
    {10017, "MAC-UK"},
    {10029, "MAC-CENTRALEUROPE"},
    {10079, "MAC-IS"},
    {12000, "UTF-32LE"},
    {12001, "UTF-32BE"},
    {20127, "ANSI_X3.4-1968"},
    {20866, "KOI8-R"},
    {20932, "EUC-JP"},
    {20936, "EUC-CN"},
    {21866, "KOI8-U"},
    {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"},
    {28593, "ISO-8859-3"},
    {28594, "ISO-8859-4"},
    {28595, "ISO-8859-5"},
    {28596, "ISO-8859-6"},
    {28597, "ISO-8859-7"},
    {28598, "ISO-8859-8"},
    {28599, "ISO-8859-9"},
    {28600, "ISO-8859-10"},
    {28601, "ISO-8859-11"},
    {28603, "ISO-8859-13"},
    {28604, "ISO-8859-14"},
    {28605, "ISO-8859-15"},
    {28606, "ISO-8859-16"},
    {50220, "ISO-2022-JP"},
    {50225, "ISO-2022-KR"},
    {51932, "EUC-JP"},
    {51936, "EUC-CN"},
    {51949, "EUC-KR"},
    {54936, "GB18030"},
    {65000, "UTF-7"},
    {65001, "UTF-8"},
});

constexpr std::string_view kCodePagePrefix = "CP";
constexpr const char* kDefaultCharset = "CP1252";
constexpr std::string_view kUtf8 = "UTF-8";
constexpr std::size_t kChunkCharacters = 256;

iconv_t OpenConverter(const char* charset) { return iconv_open("WCHAR_T", charset); }

bool IsOpen(iconv_t converter) { return converter != reinterpret_cast<iconv_t>(-1); }

/// The name that iconv knows for `charset`.
const char* IconvName(const char* charset) {
  if (charset == nullptr) return kDefaultCharset;
  std::string_view name(charset);
  if (name == "US-ASCII") return kUtf8.data();
  if (!name.starts_with(kCodePagePrefix)) return charset;
  name.remove_prefix(kCodePagePrefix.size());
  unsigned int number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  if (error != std::errc() || end != name.data() + name.size()) return charset;
  const auto* const known = std::ranges::find(kCodePageNames, number, &CodePageName::number);
  return known == kCodePageNames.end() ? charset : known->name;
}

}  // namespace

KELXTextDecoder::KELXTextDecoder(const char* charset)
    : converter_(reinterpret_cast<iconv_t>(-1)), utf8_(IconvName(charset) == kUtf8) {
  if (utf8_) return;
  converter_ = OpenConverter(IconvName(charset));
  if (!IsOpen(converter_)) converter_ = OpenConverter(kDefaultCharset);
}

KELXTextDecoder::~KELXTextDecoder() {
  if (IsOpen(converter_)) iconv_close(converter_);
}

KELXString KELXTextDecoder::Decode(std::string_view bytes) const {
  const std::wstring text = utf8_ ? kelx::internal::DecodeUtf8(bytes) : Convert(bytes);
  return KELXString(std::wstring_view(text));
}

std::wstring KELXTextDecoder::Convert(std::string_view bytes) const {
  if (!IsOpen(converter_)) return std::wstring(bytes.size(), kelx::internal::kReplacement);
  iconv(converter_, nullptr, nullptr, nullptr, nullptr);
  std::string input(bytes);
  char* source = input.data();
  std::size_t left = input.size();
  std::wstring text;
  // Some sets hold a letter back until they know that no accent follows: a null source asks for it.
  for (bool flushed = false; !flushed;) {
    std::array<wchar_t, kChunkCharacters> chunk;
    auto* target = reinterpret_cast<char*>(chunk.data());
    std::size_t room = sizeof(chunk);
    errno = 0;
    flushed = left == 0;
    iconv(converter_, flushed ? nullptr : &source, &left, &target, &room);
    text.append(chunk.data(), chunk.size() - room / sizeof(wchar_t));
    if (errno == E2BIG) flushed = false;
    if (errno != EILSEQ && errno != EINVAL) continue;
    text.push_back(kelx::internal::kReplacement);
    ++source;
    --left;
  }
  return text;
}
