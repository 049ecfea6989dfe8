#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>

#include "base/KELXString.h"
#include "base/KELXTextDecoder.h"

namespace kelx::internal {

/// Makes the texts of one property-set stream, within a budget, and with one converter for each
/// code page.
class PropertyTexts {
 public:
  /// `budget` limits the bytes of all texts, at 4 a character. The first text that would pass it
  /// and all after it are empty.
  explicit PropertyTexts(std::uint64_t budget) : budget_(budget) {}

  /// The text in `bytes`, up to the first NUL.
  KELXString DecodeUtf16(std::span<const unsigned char> bytes);
  KELXString DecodeCodePage(std::span<const unsigned char> bytes, unsigned short codePage);

  /// `text`, made elsewhere, if the budget allows.
  KELXString Limit(const KELXString& text);

  /// What is left of the budget.
  [[nodiscard]] std::uint64_t Budget() const { return budget_; }

 private:
  const KELXTextDecoder& DecoderFor(unsigned short codePage);
  bool Afford(std::size_t characters);

  std::uint64_t budget_;
  std::map<unsigned short, KELXTextDecoder> decoders_;
};

}  // namespace kelx::internal
