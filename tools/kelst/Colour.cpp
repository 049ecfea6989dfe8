#include "tools/kelst/Colour.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace kelst {

namespace {

std::string_view Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::string_view SequenceOf(Colour colour) {
  switch (colour) {
    case Colour::kRed:
      return "\x1b[31m";
    case Colour::kGreen:
      return "\x1b[32m";
    case Colour::kYellow:
      return "\x1b[33m";
    case Colour::kBlue:
      return "\x1b[1;34m";  // bold: plain blue is hard to read on black
    case Colour::kCyan:
      return "\x1b[36m";
  }
  return "";
}

constexpr std::string_view kNoColour = "\x1b[0m";

}  // namespace

Painter::Painter()
    : isOn_(Variable("NO_COLOR").empty() && Variable("TERM") != "dumb" &&
            isatty(STDOUT_FILENO) == 1) {}

std::string Painter::Paint(const std::string& text, Colour colour) const {
  if (!isOn_) return text;
  return std::string(SequenceOf(colour)) + text + std::string(kNoColour);
}

}  // namespace kelst
