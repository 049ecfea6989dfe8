#pragma once

#include <cstdio>

#include "tools/analysis/FindingList.h"
#include "tools/analysis/SectorMap.h"

namespace kelst {

/// A compound file that is being looked into.
struct Subject {
  const FileTables& tables;
  const DirectoryWalk& walk;
  const SectorMap& map;
  std::FILE* file;  ///< open for reading
};

// Each adds to `findings` what it finds wrong with one side of a file. None depends on another, and
// all take linear time, but for the sorting of names.

/// Signature, version, byte order, counts, and what the DIFAT lists.
void CheckHeader(const Subject& subject, FindingList& findings);

/// The chains of the tables and of all streams.
void CheckChains(const Subject& subject, FindingList& findings);

/// What the FAT and the mini FAT say of each sector, and what follows the last one.
void CheckSectors(const Subject& subject, FindingList& findings);

/// The directory entries and the links between them.
void CheckDirectory(const Subject& subject, FindingList& findings);

/// The streams that hold property sets.
void CheckPropertySets(const Subject& subject, FindingList& findings);

/// All of these.
inline void CheckAll(const Subject& subject, FindingList& findings) {
  CheckHeader(subject, findings);
  CheckChains(subject, findings);
  CheckSectors(subject, findings);
  CheckDirectory(subject, findings);
  CheckPropertySets(subject, findings);
}

}  // namespace kelst
