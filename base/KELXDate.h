#pragma once

#include "base/KELXExport.h"
#include "base/KELXFileTime.h"
#include "base/KELXString.h"

/// Writes dates as text.
class KELXBASE_API KELXDate {
 public:
  /// Replaces `out` by the date and time of `time` in UTC as ISO 8601 has it, to the second:
  /// `2026-11-22T19:55:48Z`. Parts of a second are dropped. Years from 10000 on have five digits.
  /// Every value is a date; 0 is `1601-01-01T00:00:00Z`. `style` and `flag` may be anything; they
  /// are not used.
  static void FormatDate(const FILETIME& time, KELXString& out, int style, bool flag);
};
