#include "tools/kelst/EntryJson.h"

#include <nlohmann/json.hpp>
#include <string>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/InstallerName.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

using Json = nlohmann::ordered_json;

void AddText(Json& object, const char* key, const std::string& text) {
  if (!text.empty()) object[key] = text;
}

}  // namespace

Json EntryJson(const CompoundFile& file, std::size_t position) {
  const TreeNode& node = file.Entries().Nodes()[position];
  const KELStStorageDirEntry& entry = file.Directory().At(node.index);
  const FullEntry& full = file.Directory().FullAt(node.index);
  Json object{{"path", file.Entries().PathOf(position)}, {"name", WrittenName(full.name)}};
  if (const auto decoded = DecodedInstallerName(full.name)) {
    object["decodedName"] = WrittenName(*decoded);
  }
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

}  // namespace kelst
