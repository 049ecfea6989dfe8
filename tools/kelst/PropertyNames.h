#pragma once

#include <array>
#include <string>

namespace kelst {

/// A format identifier (FMTID), 16 bytes in display order.
using FormatId = std::array<unsigned char, 16>;

/// "{F29F85E0-4FF9-1068-AB91-08002B27B3D9}"
std::string FormatIdText(const FormatId& id);

/// The usual name of the property `id` in a section with this FMTID, for sections that name no
/// properties themselves; empty when there is none.
std::string UsualPropertyName(const std::string& formatIdText, unsigned long id);

}  // namespace kelst
