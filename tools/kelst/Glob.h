#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace kelst {

/// A pattern that whole names match, letter case ignored: `*` is any characters, `?` is one, and
/// `[ab]`, `[a-z]` and `[!ab]` are one of a set. A `[` that no `]` closes is itself, and so is
/// everything else.
class Glob {
 public:
  /// Nothing when `pattern` is not valid UTF-8.
  static std::optional<Glob> Parse(std::string_view pattern);

  /// Whether all of `name`, which is valid UTF-8, matches.
  [[nodiscard]] bool Matches(std::string_view name) const;

 private:
  struct Range {
    char32_t first;
    char32_t last;
  };

  /// What a part of the pattern matches: one character in the ranges or, negated, not in them; or
  /// any number of characters.
  struct Part {
    std::vector<Range> ranges;
    bool isNegated = false;
    bool isStar = false;

    [[nodiscard]] bool Matches(char32_t character) const;
  };

  static std::optional<Part> TakeSet(std::u32string_view& pattern);
  static Part TakePart(std::u32string_view& pattern);

  std::vector<Part> parts_;
};

}  // namespace kelst
