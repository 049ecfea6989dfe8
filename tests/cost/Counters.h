#pragma once

/// Calls of this process since the counters were cleared last.
struct Counters {
  int allocations = 0;  ///< operator new
  int reads = 0;        ///< fread
  int seeks = 0;        ///< fseeko
};

extern Counters counters;
