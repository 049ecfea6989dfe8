#pragma once

#include <compare>
#include <string_view>

namespace kelst {

/// The order in which a storage keeps its entries: shorter names first, names of one length by
/// their capital letters. Names that differ in letter case only are equal.
std::weak_ordering CompareNames(std::u16string_view a, std::u16string_view b);

}  // namespace kelst
