#include <nlohmann/json.hpp>
#include <string>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/Listing.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

using Json = nlohmann::ordered_json;

void AddText(Json& object, const char* key, const std::string& text) {
  if (!text.empty()) object[key] = text;
}

Json EntryJson(const CompoundFile& file, std::size_t position) {
  const TreeNode& node = file.Entries().Nodes()[position];
  const KELStStorageDirEntry& entry = file.Directory().At(node.index);
  const FullEntry& full = file.Directory().FullAt(node.index);
  Json object{{"path", file.Entries().PathOf(position)}, {"name", WrittenName(full.name)}};
  const std::string libraryName = entry.getName().toUtf8();
  if (libraryName != PlainUtf8(full.name)) object["libraryName"] = libraryName;
  object["index"] = node.index;
  object["kind"] = KindText(entry);
  object["size"] = entry.getSize();
  object["startSector"] = entry.getStartSect();
  AddText(object, "created", TimeText(full.created));
  AddText(object, "modified", TimeText(full.modified));
  AddText(object, "classId", ClassIdText(full.classId));
  object["stateBits"] = full.stateBits;
  return object;
}

}  // namespace

// The entries go out one by one: of a large directory all of them would fill the memory.
void PrintJson(const CompoundFile& file, std::size_t start, Output& out) {
  const TreeNode& first = file.Entries().Nodes()[start];
  out.Write("{\"file\":" + Json(file.Utf8Path()).dump() + ",\"entries\":[");
  for (std::size_t position = start; position < first.end && out.IsGood(); ++position) {
    out.Write((position == start ? "" : ",") + EntryJson(file, position).dump());
  }
  out.Write("],\"streamBytes\":" + std::to_string(first.bytes) + "}\n");
}

}  // namespace kelst
