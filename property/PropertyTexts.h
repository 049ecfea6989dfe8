#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>

#include "base/KELXString.h"
#include "base/KELXTextDecoder.h"

namespace kelx::internal {

/// Converters of code pages, each opened when it is first needed: opening one takes longer than
/// parsing a small stream, so the streams of a storage share them.
class CodePageDecoders {
 public:
  const KELXTextDecoder& For(unsigned short codePage);

 private:
  std::map<unsigned short, KELXTextDecoder> decoders_;
};

/// Makes the texts of one property-set stream, within a budget.
class PropertyTexts {
 public:
  /// `budget` limits the bytes of all texts, at 4 a character. The first text that would pass it
  /// and all after it are empty. Without `shared` converters it has its own.
  PropertyTexts(std::uint64_t budget, CodePageDecoders* shared)
      : budget_(budget), decoders_(shared != nullptr ? *shared : own_) {}
  PropertyTexts(const PropertyTexts&) = delete;
  PropertyTexts& operator=(const PropertyTexts&) = delete;

  /// The text in `bytes`, up to the first NUL.
  KELXString DecodeUtf16(std::span<const unsigned char> bytes);
  KELXString DecodeCodePage(std::span<const unsigned char> bytes, unsigned short codePage);

  /// `text`, made elsewhere, if the budget allows.
  KELXString Limit(const KELXString& text);

  /// What is left of the budget.
  [[nodiscard]] std::uint64_t Budget() const { return budget_; }

 private:
  bool Afford(std::size_t characters);

  std::uint64_t budget_;
  CodePageDecoders own_;
  CodePageDecoders& decoders_;
};

}  // namespace kelx::internal
