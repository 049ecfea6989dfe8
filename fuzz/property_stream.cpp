#include <climits>
#include <cstdint>

#include "KELXStStorage.h"

// One property-set stream, parsed from memory, and every query about it.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > INT_MAX) return 0;
  const KELIPropertyStorageHandle set(new KELIPropertyStorage);
  if (!set->InitializeFromBuffer(data, static_cast<int>(size))) return 0;
  KELIPropertyStorage* const raw = set;
  const KELXDynamicArray<KELXPropertyHandle> properties = set->GetPropertyArray();
  int queries = 64;  // each walks the list
  for (const KELXPropertyHandle& property : properties) {
    if (--queries < 0) break;
    KELXString name;
    KELXString value;
    int type = 0;
    property->GetData(name, value, type);
    KELXStructuredStorageUtils::GetValueWithId(static_cast<int>(property->GetID()), raw, value,
                                               type);
    KELXStructuredStorageUtils::GetValueWithName(name, raw, value, type);
  }
  KELXPropertyContainerHandle container(nullptr);
  KELXStructuredStorageUtils::GetAllPropertySets(raw, container);
  set->MergeDisplayNames();
  return 0;
}
