#include "tools/kelst/PropertySets.h"

#include <array>

#include "tools/kelst/PropertyNames.h"
#include "tools/kelst/StreamContent.h"

namespace kelst {

namespace {

/// The first character of the name of every stream that holds a property set.
constexpr char16_t kPropertyStreamMark = 5;

std::string KindOf(int type) {
  constexpr std::array kKinds{"text", "integer", "float", "boolean", "date"};
  const auto index = static_cast<std::size_t>(type - ValueTypeText);
  return index < kKinds.size() ? kKinds[index] : std::to_string(type);
}

Property PropertyOf(KELXProperty& property, const std::string& formatId) {
  KELXString name;
  KELXString value;
  int type = 0;
  property.GetData(name, value, type);
  std::string shown = name.toUtf8();
  if (shown.empty()) shown = UsualPropertyName(formatId, property.GetID());
  return {property.GetID(), shown, KindOf(type), value.toUtf8()};
}

/// Properties `first` to `end` of the set as its section number `section`.
Section SectionOf(KELIPropertyStorage& set, int section, int first, int end) {
  FormatId id{};
  set.GetSectionID(section, id.data());
  Section result{FormatIdText(id), {}};
  const KELXDynamicArray<KELXPropertyHandle> properties = set.GetPropertyArray();
  for (int i = first; i < end; ++i) {
    result.properties.push_back(PropertyOf(*properties.At(i)->operator->(), result.formatId));
  }
  return result;
}

PropertySet Describe(KELIPropertyStorage& set, const std::string& stream) {
  PropertySet result{stream, set.GetPropertyStorageName().toUtf8(), set.GetCodePage(), {}};
  const int count = set.GetPropertyArray().Count();
  const bool hasSecond = set.GetSectionCount() == 2;
  const int firstCount = count - (hasSecond ? set.GetExtendedPropertyCount() : 0);
  result.sections.push_back(SectionOf(set, 0, 0, firstCount));
  if (hasSecond) result.sections.push_back(SectionOf(set, 1, firstCount, count));
  return result;
}

}  // namespace

bool IsPropertyStream(const CompoundFile& file, std::uint32_t index) {
  return file.Directory().At(index).isStream() &&
         file.Directory().FullAt(index).name.starts_with(kPropertyStreamMark);
}

std::optional<PropertySet> ReadPropertySet(CompoundFile& file, std::size_t position,
                                           std::vector<std::string>& problems) {
  StreamContent content(file, file.Entries().Nodes()[position].index);
  std::vector<unsigned char> bytes;
  for (auto piece = content.Next(); !piece.empty(); piece = content.Next()) {
    bytes.insert(bytes.end(), piece.begin(), piece.end());
  }
  if (!content.Problem().empty()) problems.push_back(content.Problem());
  const KELIPropertyStorageHandle set(new KELIPropertyStorage);
  if (set->InitializeFromBuffer(bytes.data(), static_cast<int>(bytes.size()))) {
    return Describe(*set.operator->(), file.Entries().PathOf(position));
  }
  problems.emplace_back("is not a property set");
  return std::nullopt;
}

std::vector<PropertySet> PropertySetsOf(CompoundFile& file, std::size_t position, Report& report) {
  std::vector<PropertySet> sets;
  const auto nodes = file.Entries().Nodes();
  for (std::size_t child = position + 1; child < nodes[position].end; child = nodes[child].end) {
    if (!IsPropertyStream(file, nodes[child].index)) continue;
    std::vector<std::string> problems;
    std::optional<PropertySet> set = ReadPropertySet(file, child, problems);
    if (set) sets.push_back(*std::move(set));
    for (const std::string& problem : problems) {
      report.Fail(ExitCode::kFailed,
                  file.Name() + ": " + file.Entries().PathOf(child) + ": " + problem);
    }
  }
  return sets;
}

}  // namespace kelst
