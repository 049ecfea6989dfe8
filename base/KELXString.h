#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/KELXExport.h"

/// A text of Unicode code points: a value type. Programs make one of a literal, `KELXString(L"a")`,
/// or of UTF-8 with fromUtf8, and read it with toUtf8.
///
/// Copies share one immutable block of characters, so copying costs one counter increment; the
/// counter is atomic, so copies may live on different threads. One object is for one thread at a
/// time. The object is a single pointer without references into itself, so arrays may move it
/// bytewise.
///
/// Every character is a valid code point: whatever else a source holds (an unpaired surrogate, a
/// value above U+10FFFF, a byte that means nothing in its character set) is taken as U+FFFD.
/// Nothing here depends on the locale of the process. A null source pointer gives the empty
/// string. Sources are copied; they stay the caller's.
class KELXBASE_API KELXString {
 public:
  /// The empty string.
  KELXString() noexcept = default;

  /// The NUL-terminated UTF-32 text at `text`.
  KELXString(const wchar_t* text);

  /// The NUL-terminated UTF-16 text at `text`, in host byte order. Surrogate pairs are joined.
  KELXString(const unsigned short* text);

  /// The NUL-terminated 8-bit text at `text`, converted from the character set `charset`: "CP"
  /// and a Windows code page number in decimal, "US-ASCII" (read as its superset UTF-8), any
  /// other name that the C library's iconv knows, or null. Null and unknown names read as
  /// Windows-1252. KELXTextDecoder converts many texts from one set, and texts that have zero bytes
  /// in them, as UTF-16 has.
  KELXString(const char* text, const char* charset);

  /// The string of one character; a NUL counts as a character.
  KELXString(wchar_t character);

  /// The same text.
  /// @{
  KELXString(const KELXString& other) noexcept;
  KELXString& operator=(const KELXString& other) noexcept;
  /// @}
  virtual ~KELXString();

  /// The UTF-8 text in `text`; bytes that are not UTF-8 become one U+FFFD each.
  static KELXString fromUtf8(std::string_view text);

  /// The text as valid UTF-8.
  [[nodiscard]] std::string toUtf8() const;

  /// Appends `other` to this string in place, although it is const, and returns a copy of the
  /// result. Strings copied from this one before keep their text.
  KELXString operator+=(const KELXString& other) const;

  /// Whether both hold the same characters; case matters.
  [[nodiscard]] bool equals(const KELXString& other) const noexcept;

  /// Negative, zero or positive as this string sorts before, with or after `other` by code point.
  [[nodiscard]] int compareTo(const KELXString& other) const noexcept;

  /// As compareTo, after each code point was turned to lower case by itself, by the rules of the
  /// C.UTF-8 locale.
  [[nodiscard]] int compareToIgnoreCase(const KELXString& other) const noexcept;

  /// Whether this string begins with `prefix`. Every string begins with the empty one.
  [[nodiscard]] bool startsWith(const KELXString& prefix) const noexcept;

  /// A copy in which every character `from` is replaced by `to`. This string is not changed.
  [[nodiscard]] KELXString replace(unsigned short from, unsigned short to) const;

  /// The order of compareTo: `a <= b` holds exactly when `a > b` does not.
  /// @{
  bool operator>(const KELXString& other) const noexcept { return compareTo(other) > 0; }
  bool operator<=(const KELXString& other) const noexcept { return compareTo(other) <= 0; }
  /// @}

  /// A hash that is the same for strings that are equal.
  [[nodiscard]] std::size_t hash() const noexcept;

  /// A hash that is the same for strings that compareToIgnoreCase finds equal.
  [[nodiscard]] std::size_t hashIgnoreCase() const noexcept;

 private:
  friend class KELXTextDecoder;
  struct Text;

  explicit KELXString(std::wstring_view characters);
  [[nodiscard]] std::wstring_view view() const noexcept;

  mutable Text* text_ = nullptr;  // null for the empty string
};
