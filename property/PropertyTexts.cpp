#include "property/PropertyTexts.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "compound/ByteCursor.h"

namespace kelx::internal {

namespace {

/// More than there are Windows code pages. Numbers that stand for none take a converter each too.
constexpr std::size_t kMostCodePages = 256;

}  // namespace

/// Takes a text of so many characters from the budget. A text that is too long uses up the rest, as
/// finding its end has taken time all the same.
bool PropertyTexts::Afford(std::size_t characters) {
  const std::uint64_t cost = std::uint64_t{characters} * sizeof(wchar_t);
  const bool isEnough = cost <= budget_;
  budget_ -= std::min(cost, budget_);
  return isEnough;
}

KELXString PropertyTexts::DecodeUtf16(std::span<const unsigned char> bytes) {
  if (budget_ == 0) return {};
  ByteCursor cursor(bytes, true);  // zero past the end, so there is always a NUL
  std::vector<unsigned short> units;
  do units.push_back(cursor.Read<unsigned short>());
  while (units.back() != 0);
  return Afford(units.size() - 1) ? KELXString(units.data()) : KELXString();
}

KELXString PropertyTexts::DecodeCodePage(std::span<const unsigned char> bytes,
                                         unsigned short codePage) {
  if (budget_ == 0) return {};
  std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  text = text.substr(0, text.find('\0'));
  return Afford(text.size()) ? decoders_.For(codePage).Decode(text) : KELXString();
}

KELXString PropertyTexts::Limit(const KELXString& text) {
  return Afford(text.toUtf8().size()) ? text : KELXString();
}

const KELXTextDecoder& CodePageDecoders::For(unsigned short codePage) {
  if (decoders_.size() >= kMostCodePages && !decoders_.contains(codePage)) codePage = 0;
  const std::string charset = "CP" + std::to_string(codePage);
  return decoders_.try_emplace(codePage, codePage == 0 ? nullptr : charset.c_str()).first->second;
}

}  // namespace kelx::internal
