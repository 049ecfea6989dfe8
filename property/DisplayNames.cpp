#include <algorithm>
#include <utility>

#include "property/KELIPropertyStorage.h"

namespace {

/// Identifiers can be chosen so that all of them meet in one place of a hash map, and each then
/// takes as long as all before it. So many cost next to nothing even then; more go into a tree,
/// which is not as fast but the same for all identifiers.
constexpr int kMostHashedNames = 256;

constexpr std::size_t kGuidBytes = 16;

/// The first property in `properties` for which `isWanted` holds.
template <typename Predicate>
KELXPropertyHandle FindProperty(const KELXDynamicArray<KELXPropertyHandle>& properties,
                                Predicate isWanted) {
  for (const KELXPropertyHandle& property : properties) {
    if (property.IsValid() && isWanted(property)) return property;
  }
  return KELXPropertyHandle(nullptr);
}

}  // namespace

void KELIPropertyStorage::AddName(unsigned int id, const KELXString& name) {
  if (dictionary_.Count() < kMostHashedNames) {
    dictionary_.Add(id, name);
  } else {
    furtherNames_.try_emplace(id, name);
  }
}

bool KELIPropertyStorage::FindName(unsigned int id, KELXString& name) const {
  if (dictionary_.Lookup(id, name)) return true;
  const auto entry = furtherNames_.find(id);
  if (entry == furtherNames_.end()) return false;
  name = entry->second;
  return true;
}

void KELIPropertyStorage::AddPropertyDisplayName(KELXDynamicArray<KELXPropertyHandle>& array) {
  for (int i = 0; i < array.Count(); ++i) {
    const KELXPropertyHandle old = array.begin()[i];
    KELXString name;
    if (!old.IsValid() || !FindName(static_cast<unsigned int>(old->GetID()), name)) continue;
    KELXString oldName;
    KELXString value;
    int type = 0;
    old->GetData(oldName, value, type);
    const KELXPropertyHandle named(new KELXProperty(name, static_cast<ValueType>(type), value));
    named->SetID(old->GetID());
    *array.At(i) = named;
  }
}

void KELIPropertyStorage::MergeDisplayNames() {
  if (dictionary_.Count() >= 1) {
    AddPropertyDisplayName(extendedProperties_.Count() > 0 ? extendedProperties_ : properties_);
  }
  MergePropertyArray();
}

void KELIPropertyStorage::MergePropertyArray() {
  for (const KELXPropertyHandle& property : std::as_const(extendedProperties_)) {
    if (property.IsValid()) properties_.Add(property);
  }
}

KELXDynamicArray<KELXPropertyHandle> KELIPropertyStorage::GetPropertyArray() { return properties_; }

KELXPropertyHandle KELIPropertyStorage::GetPropertyWithID(int id) {
  const auto wanted = static_cast<unsigned long>(static_cast<long>(id));
  return FindProperty(
      properties_, [&](const KELXPropertyHandle& property) { return property->GetID() == wanted; });
}

KELXPropertyHandle KELIPropertyStorage::GetPropertyWithName(const KELXString& name) {
  return FindProperty(properties_, [&](const KELXPropertyHandle& property) {
    return KELXString(property->GetName(), "US-ASCII").equals(name);
  });
}

KELXString KELIPropertyStorage::GetPropertyStorageName() { return storageName_; }

void KELIPropertyStorage::GetPropertyStorageID(unsigned char* out) {
  const Section& section = sectionCount_ == 2 ? second_ : first_;
  std::copy_n(section.id, kGuidBytes, out);
}
