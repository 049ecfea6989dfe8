#include <KELXStStorage.h>

#include <array>
#include <iostream>
#include <memory>

namespace {

/// {F29F85E0-4FF9-1068-AB91-08002B27B3D9}, the set that has the title and the author of a document.
constexpr std::array<unsigned char, 16> kSummary = {0xF2, 0x9F, 0x85, 0xE0, 0x4F, 0xF9, 0x10, 0x68,
                                                    0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9};
constexpr int kTitle = 2;

/// The title of the document; empty when it has none.
KELXString TitleOf(KELIStorage& document) {
  KELIPropertyStorage* summary = nullptr;
  KELXStructuredStorageUtils::OpenPropertySetWithId(&document, kSummary.data(), summary);
  KELXString title;
  int kind = 0;
  KELXStructuredStorageUtils::GetValueWithId(kTitle, summary, title, kind);
  KELXStructuredStorageUtils::ClosePropertyStorage(summary);
  return title;
}

/// Prints a property set: its FMTID, then identifier, kind, name and value of each property.
void PrintSet(KELIPropertyStorage& set) {
  std::array<unsigned char, 16> id;
  set.GetPropertyStorageID(id.data());
  std::cout << KELIPropertyStorage::FormatCLSID(id.data()).toUtf8() << '\n';
  const KELXDynamicArray<KELXPropertyHandle> properties = set.GetPropertyArray();
  for (const KELXPropertyHandle& property : properties) {
    KELXString name;
    KELXString value;
    int kind = 0;
    property->GetData(name, value, kind);
    std::cout << property->GetID() << '\t' << kind << '\t' << name.toUtf8() << '\t'
              << value.toUtf8() << '\n';
  }
}

/// Prints every property set of one storage.
void PrintSets(KELIStorage& storage) {
  KELXDynamicArray<KELIPropertyStorage*> sets;
  storage.getPropertySetStorage()->GetPropertyStorages(sets);
  for (KELIPropertyStorage* const set : sets) {
    PrintSet(*set);
    set->LowerReference();
  }
}

}  // namespace

/// Prints title and properties of a document: print_properties report.doc
int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::unique_ptr<KELIStorage> root(KELStgOpenStorageRoot(KELXFilePath(argv[1])));
  if (!root) {
    std::cerr << argv[1] << ": cannot be opened, or is no compound file\n";
    return 1;
  }
  std::cout << "Title: " << TitleOf(*root).toUtf8() << '\n';
  PrintSets(*root);
  return 0;
}
