#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelst {

/// The name that an installer database means by the stored `name` of an entry; nothing when it is
/// no packed name.
///
/// Such files pack two characters of 64 into one UTF-16 unit, so that a name can have more than 31.
/// Whatever is no packed unit stands for itself. A mark in front, which tells tables from other
/// streams, is left out.
std::optional<std::u16string> DecodedInstallerName(std::u16string_view name);

/// The same as people see it behind the stored name: " (Property)". Empty for other names.
std::string InstallerMeaning(std::u16string_view name);

}  // namespace kelst
