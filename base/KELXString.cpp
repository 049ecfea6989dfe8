#include "base/KELXString.h"

#include <algorithm>
#include <atomic>
#include <compare>
#include <cstdint>
#include <new>
#include <utility>

#include "base/KELXTextDecoder.h"
#include "base/Unicode.h"

using kelx::internal::FoldCase;

/// A counted block of characters. It never changes once a string holds it. The characters follow
/// the record in the same allocation.
struct KELXString::Text {
  std::atomic<std::size_t> sharers{1};
  std::size_t length;

  explicit Text(std::size_t count) noexcept : length(count) {}

  wchar_t* Characters() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }

  static Text* Make(std::size_t length) {
    return new (::operator new(sizeof(Text) + length * sizeof(wchar_t))) Text(length);
  }

  static Text* Share(Text* text) noexcept {
    if (text != nullptr) text->sharers.fetch_add(1, std::memory_order_relaxed);
    return text;
  }

  static void Release(Text* text) noexcept {
    if (text == nullptr || text->sharers.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    text->~Text();
    ::operator delete(text);
  }
};

namespace {

template <typename Unit>
std::size_t Length(const Unit* text) noexcept {
  std::size_t length = 0;
  while (text != nullptr && text[length] != 0) ++length;
  return length;
}

std::size_t Mix(std::size_t hash, wchar_t character) noexcept {
  constexpr std::uint64_t kFnvPrime = 0x100000001B3;
  return (hash ^ static_cast<std::uint32_t>(character)) * kFnvPrime;
}

constexpr std::size_t kFnvOffset = 0xCBF29CE484222325;

}  // namespace

KELXString::KELXString(std::wstring_view characters) {
  if (characters.empty()) return;
  text_ = Text::Make(characters.size());
  std::ranges::transform(characters, text_->Characters(), [](wchar_t character) {
    return kelx::internal::IsCodePoint(character) ? character : kelx::internal::kReplacement;
  });
}

KELXString::KELXString(const wchar_t* text) : KELXString(std::wstring_view(text, Length(text))) {}

KELXString::KELXString(const unsigned short* text) {
  const std::size_t units = Length(text);
  if (units == 0) return;
  text_ = Text::Make(units);
  text_->length = kelx::internal::DecodeUtf16(text, units, text_->Characters());
}

KELXString::KELXString(const char* text, const char* charset)
    : KELXString(KELXTextDecoder(charset).Decode(std::string_view(text, Length(text)))) {}

KELXString::KELXString(wchar_t character) : KELXString(std::wstring_view(&character, 1)) {}

KELXString::KELXString(const KELXString& other) noexcept : text_(Text::Share(other.text_)) {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the new text is shared before
KELXString& KELXString::operator=(const KELXString& other) noexcept {
  Text* const old = std::exchange(text_, Text::Share(other.text_));
  Text::Release(old);
  return *this;
}

KELXString::~KELXString() { Text::Release(text_); }

KELXString KELXString::fromUtf8(std::string_view text) {
  return KELXString(std::wstring_view(kelx::internal::DecodeUtf8(text)));
}

std::string KELXString::toUtf8() const { return kelx::internal::EncodeUtf8(view()); }

KELXString KELXString::operator+=(const KELXString& other) const {
  if (other.text_ == nullptr) return *this;
  Text* const joined = Text::Make(view().size() + other.view().size());
  std::ranges::copy(other.view(), std::ranges::copy(view(), joined->Characters()).out);
  Text::Release(std::exchange(text_, joined));
  return *this;
}

bool KELXString::equals(const KELXString& other) const noexcept {
  return text_ == other.text_ || view() == other.view();
}

int KELXString::compareTo(const KELXString& other) const noexcept {
  return text_ == other.text_ ? 0 : view().compare(other.view());
}

int KELXString::compareToIgnoreCase(const KELXString& other) const noexcept {
  if (text_ == other.text_) return 0;
  const auto left = view();
  const auto right = other.view();
  const auto order = std::lexicographical_compare_three_way(
      left.begin(), left.end(), right.begin(), right.end(),
      [](wchar_t a, wchar_t b) { return FoldCase(a) <=> FoldCase(b); });
  return order < 0 ? -1 : static_cast<int>(order > 0);
}

bool KELXString::startsWith(const KELXString& prefix) const noexcept {
  return view().starts_with(prefix.view());
}

KELXString KELXString::replace(unsigned short from, unsigned short to) const {
  if (view().find(from) == std::wstring_view::npos) return *this;
  std::wstring changed(view());
  std::ranges::replace(changed, static_cast<wchar_t>(from), static_cast<wchar_t>(to));
  return KELXString(std::wstring_view(changed));
}

std::size_t KELXString::hash() const noexcept {
  std::size_t hash = kFnvOffset;
  for (const wchar_t character : view()) hash = Mix(hash, character);
  return hash;
}

std::size_t KELXString::hashIgnoreCase() const noexcept {
  std::size_t hash = kFnvOffset;
  for (const wchar_t character : view()) hash = Mix(hash, FoldCase(character));
  return hash;
}

std::wstring_view KELXString::view() const noexcept {
  return text_ == nullptr ? std::wstring_view()
                          : std::wstring_view(text_->Characters(), text_->length);
}
