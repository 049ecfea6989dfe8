#include <nlohmann/json.hpp>
#include <string>

#include "tools/kelst/EntryJson.h"
#include "tools/kelst/Listing.h"

namespace kelst {

// The entries go out one by one: of a large directory all of them would fill the memory.
void PrintJson(const CompoundFile& file, Positions order, Output& out) {
  out.Write("{\"file\":" + nlohmann::json(file.Utf8Path()).dump() + ",\"entries\":[");
  for (const std::size_t position : order) {
    if (!out.IsGood()) return;
    out.Write((position == order.front() ? "" : ",") + EntryJson(file, position).dump());
  }
  const std::uint64_t bytes = file.Entries().Nodes()[order.front()].bytes;
  out.Write("],\"streamBytes\":" + std::to_string(bytes) + "}\n");
}

}  // namespace kelst
