#include "tools/kelst/InstallerName.h"

#include "tools/kelst/EntryName.h"

namespace kelst {

namespace {

/// A packed unit is kFirstPair + first character + 64 * second, or kFirstSingle + one character.
constexpr std::u16string_view kCharacters =
    u"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz._";
constexpr char16_t kFirstPair = 0x3800;
constexpr char16_t kFirstSingle = 0x4800;
constexpr char16_t kTableMark = 0x4840;

}  // namespace

std::optional<std::u16string> DecodedInstallerName(std::u16string_view name) {
  if (name.starts_with(kTableMark)) name.remove_prefix(1);
  std::u16string decoded;
  bool hasPacked = false;
  for (const char16_t unit : name) {
    if (unit >= kFirstPair && unit < kFirstSingle) {
      decoded += kCharacters[(unit - kFirstPair) % kCharacters.size()];
      decoded += kCharacters[(unit - kFirstPair) / kCharacters.size()];
    } else if (unit >= kFirstSingle && unit < kTableMark) {
      decoded += kCharacters[unit - kFirstSingle];
    } else {
      decoded += unit;
      continue;
    }
    hasPacked = true;
  }
  return hasPacked ? std::optional(decoded) : std::nullopt;
}

std::string InstallerMeaning(std::u16string_view name) {
  const auto decoded = DecodedInstallerName(name);
  return decoded ? " (" + WrittenName(*decoded) + ')' : "";
}

}  // namespace kelst
