#pragma once

#include <iconv.h>

#include <string>
#include <string_view>

#include "base/KELXString.h"

/// Converts 8-bit texts of one character set to strings, with a converter that is opened once.
///
/// One decoder is for one thread at a time.
class KELXBASE_API KELXTextDecoder {
 public:
  /// A decoder for the character set `charset`, named as for
  /// KELXString(const char*, const char*). It is not kept.
  explicit KELXTextDecoder(const char* charset);
  KELXTextDecoder(const KELXTextDecoder&) = delete;
  KELXTextDecoder& operator=(const KELXTextDecoder&) = delete;
  ~KELXTextDecoder();

  /// The text in `bytes`; a NUL is a character like any other. Bytes that mean nothing in the
  /// character set, an unfinished sequence at the end included, become U+FFFD one by one.
  [[nodiscard]] KELXString Decode(std::string_view bytes) const;

 private:
  [[nodiscard]] std::wstring Convert(std::string_view bytes) const;

  iconv_t converter_;  // unused for UTF-8, which needs none
  bool utf8_;
};
