#pragma once

#include "base/KELXExport.h"

/// The one switch of the process: how maps of kind KELXHashMap are made and hash their keys.
///
/// It is off until set. A map finds its entries only while the switch stays as it was when they
/// were added, so set it before the first file is opened. It may be set and read on any thread.
class KELXBASE_API KELXHashOption {
 public:
  /// Whether maps that allow it are made of the standard library's unordered map, and keys hash to
  /// themselves.
  /// @{
  static bool GetUseStdHash();
  static void SetUseStdHash(bool useStdHash);
  /// @}
};
