#include "tools/kelst/PropertyNames.h"

#include <algorithm>

#include "KELXStStorage.h"

namespace kelst {

namespace {

struct UsualName {
  unsigned long id;
  const char* name;
};

constexpr const char* kSummary = "{F29F85E0-4FF9-1068-AB91-08002B27B3D9}";
constexpr const char* kDocumentSummary = "{D5CDD502-2E9C-101B-9397-08002B2CF9AE}";

constexpr auto kSummaryNames = std::to_array<UsualName>({
    {2, "Title"},
    {3, "Subject"},
    {4, "Author"},
    {5, "Keywords"},
    {6, "Comments"},
    {7, "Template"},
    {8, "Last author"},
    {9, "Revision"},
    {10, "Editing time"},
    {11, "Printed"},
    {12, "Created"},
    {13, "Saved"},
    {14, "Pages"},
    {15, "Words"},
    {16, "Characters"},
    {17, "Thumbnail"},
    {18, "Application"},
    {19, "Security"},
});

constexpr auto kDocumentSummaryNames = std::to_array<UsualName>({
    {2, "Category"},
    {3, "Presentation format"},
    {4, "Bytes"},
    {5, "Lines"},
    {6, "Paragraphs"},
    {7, "Slides"},
    {8, "Notes"},
    {9, "Hidden slides"},
    {10, "Multimedia clips"},
    {11, "Scale"},
    {12, "Heading pairs"},
    {13, "Document parts"},
    {14, "Manager"},
    {15, "Company"},
    {16, "Links up to date"},
    {17, "Characters with spaces"},
    {19, "Shared"},
    {20, "Link base"},
    {22, "Links changed"},
    {23, "Application version"},
    {26, "Content type"},
    {27, "Content status"},
    {28, "Language"},
    {29, "Document version"},
});

/// The same in every section.
constexpr auto kCommonNames = std::to_array<UsualName>({
    {0, "Dictionary"},
    {1, "Code page"},
    {0x80000000, "Locale"},
});

std::string NameIn(const auto& names, unsigned long id) {
  const auto* const found = std::ranges::find(names, id, &UsualName::id);
  return found == names.end() ? "" : found->name;
}

}  // namespace

std::string FormatIdText(const FormatId& id) {
  FormatId bytes = id;
  return KELIPropertyStorage::FormatCLSID(bytes.data()).toUtf8();
}

std::string UsualPropertyName(const std::string& formatIdText, unsigned long id) {
  std::string name = NameIn(kCommonNames, id);
  if (formatIdText == kSummary && name.empty()) name = NameIn(kSummaryNames, id);
  if (formatIdText == kDocumentSummary && name.empty()) name = NameIn(kDocumentSummaryNames, id);
  return name;
}

}  // namespace kelst
