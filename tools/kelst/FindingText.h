#pragma once

#include <string>

#include "tools/analysis/FindingList.h"

namespace kelst {

/// "sectors 3 to 7"
std::string PlaceText(const Place& place);

/// "2 errors, 1 note"; "clean" stands for neither errors nor warnings.
std::string TotalsText(const FindingList& findings);

/// Whether there are neither errors nor warnings.
bool IsClean(const FindingList& findings);

/// Calls `visit(facts, group)` for each code that something was found of, the gravest first.
template <typename Visit>
void ForEachGroup(const FindingList& findings, Visit visit) {
  for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
    for (const CodeFacts& facts : AllCodes()) {
      const FindingList::Group& group = findings.Of(facts.code);
      if (facts.severity == severity && group.count > 0) visit(facts, group);
    }
  }
}

}  // namespace kelst
