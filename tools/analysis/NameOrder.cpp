#include "tools/analysis/NameOrder.h"

#include <locale.h>
#include <wctype.h>

#include <algorithm>

namespace kelst {

namespace {

/// By rules that do not depend on the locale of the user. Half a surrogate pair has no capital.
char16_t Capital(char16_t unit) {
  if (unit < 0x80) return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 0x20) : unit;
  static const locale_t rules = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (rules == nullptr) return unit;
  const wint_t capital = towupper_l(unit, rules);
  return capital <= 0xFFFF ? static_cast<char16_t>(capital) : unit;
}

}  // namespace

std::weak_ordering CompareNames(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return a.size() <=> b.size();
  const auto [first, second] = std::ranges::mismatch(
      a, b, [](char16_t x, char16_t y) { return x == y || Capital(x) == Capital(y); });
  if (first == a.end()) return std::weak_ordering::equivalent;
  return Capital(*first) <=> Capital(*second);
}

}  // namespace kelst
