#pragma once

#include <string>

namespace kelst {

enum class Colour { kRed, kGreen, kYellow, kBlue, kCyan };

/// Colours text where people see it: on standard output when that is a terminal, unless the
/// variable NO_COLOR has a value or TERM is "dumb". Elsewhere text stays as it is.
class Painter {
 public:
  Painter();

  [[nodiscard]] std::string Paint(const std::string& text, Colour colour) const;

 private:
  bool isOn_;
};

}  // namespace kelst
