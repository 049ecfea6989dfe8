#include "tools/kelst/Markup.h"

namespace kelst {

namespace {

constexpr std::string_view kEllipsis = "…";

bool IsTrail(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

/// How many columns the character takes that begins with `lead`.
std::size_t ColumnsOf(char lead) {
  if (IsTrail(lead)) return 0;
  return static_cast<unsigned char>(lead) > 0xE0 ? 2 : 1;
}

std::size_t ColumnsOf(std::string_view text) {
  std::size_t columns = 0;
  for (const char byte : text) columns += ColumnsOf(byte);
  return columns;
}

}  // namespace

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string Start(std::string_view text, std::size_t columns) {
  if (ColumnsOf(text) <= columns) return std::string(text);
  std::size_t length = 0;
  for (std::size_t left = columns - 1; ColumnsOf(text[length]) <= left; ++length) {
    left -= ColumnsOf(text[length]);
  }
  return std::string(text.substr(0, length)) + std::string(kEllipsis);
}

std::string End(std::string_view text, std::size_t columns) {
  std::size_t taken = ColumnsOf(text);
  if (taken <= columns) return std::string(text);
  while (taken > columns - 1 || IsTrail(text.front())) {
    taken -= ColumnsOf(text.front());
    text.remove_prefix(1);
  }
  return std::string(kEllipsis) + std::string(text);
}

}  // namespace kelst
