#include "property/KELXStructuredStorageUtils.h"

#include "storage/KELIStorage.h"

namespace {

/// Queries `set` with `find` for a property and copies out its value and kind.
template <typename Find>
KELXResult GetValue(KELIPropertyStorage* set, KELXString& value, int& type, Find find) {
  if (set == nullptr) return KELXResult::kNullObject;
  type = -1;
  value = KELXString();
  const KELXPropertyHandle property = find();
  if (!property.IsValid()) return KELXResult::kNotFound;
  KELXString name;
  property->GetData(name, value, type);
  return KELXResult::kSuccess;
}

bool LowerReference(KELXReferenceCount* object) {
  if (object != nullptr) object->LowerReference();
  return true;
}

}  // namespace

KELXResult KELXStructuredStorageUtils::GetValueWithId(int id, KELIPropertyStorage* propertyStorage,
                                                      KELXString& value, int& type) {
  return GetValue(propertyStorage, value, type,
                  [&] { return propertyStorage->GetPropertyWithID(id); });
}

KELXResult KELXStructuredStorageUtils::GetValueWithName(const KELXString& name,
                                                        KELIPropertyStorage* propertyStorage,
                                                        KELXString& value, int& type) {
  return GetValue(propertyStorage, value, type,
                  [&] { return propertyStorage->GetPropertyWithName(name); });
}

KELXResult KELXStructuredStorageUtils::GetPropertySetName(int, KELIPropertyStorage* propertyStorage,
                                                          KELXString& name) {
  if (propertyStorage == nullptr) return KELXResult::kNullObject;
  name = propertyStorage->GetPropertyStorageName();
  return KELXResult::kSuccess;
}

KELXResult KELXStructuredStorageUtils::GetAllPropertySets(KELIPropertyStorage* propertyStorage,
                                                          KELXPropertyContainerHandle& container) {
  if (propertyStorage == nullptr) return KELXResult::kNullObject;
  container =
      KELXPropertyContainerHandle(new KELXPropertyContainer(propertyStorage->GetPropertyArray()));
  KELXString name = propertyStorage->GetPropertyStorageName();
  container->SetPropertyName(name);
  return KELXResult::kSuccess;
}

KELXResult KELXStructuredStorageUtils::OpenPropertySetWithId(
    KELIStorage* storage, const unsigned char* id, KELIPropertyStorage*& propertyStorage) {
  if (storage == nullptr) return KELXResult::kNullObject;
  return storage->getPropertySetStorage()->GetPropertyStorageWithID(id, propertyStorage);
}

KELXResult KELXStructuredStorageUtils::OpenPropertySetWithName(
    KELIPropertySetStorage* set, int, const KELXString& name,
    KELIPropertyStorage*& propertyStorage) {
  if (set == nullptr) return KELXResult::kNullObject;
  return set->GetPropertyStorageWithName(name, propertyStorage);
}

KELXResult KELXStructuredStorageUtils::OpenAllPropertyStorages(
    KELIPropertySetStorage* set, KELXDynamicArray<KELIPropertyStorage*>& propertyStorages) {
  if (set == nullptr) return KELXResult::kNullObject;
  set->GetPropertyStorages(propertyStorages);
  return propertyStorages.Count() > 0 ? KELXResult::kSuccess : KELXResult::kNotFound;
}

KELXResult KELXStructuredStorageUtils::OpenPropertySetStorage(KELIStorage* storage,
                                                              KELIPropertySetStorage*& set) {
  if (storage == nullptr) return KELXResult::kNullStorage;
  set = storage->getPropertySetStorage();
  set->RaiseReference();
  return KELXResult::kSuccess;
}

bool KELXStructuredStorageUtils::ClosePropertySetStorage(KELIPropertySetStorage* set) {
  return LowerReference(set);
}

bool KELXStructuredStorageUtils::ClosePropertyStorage(KELIPropertyStorage* propertyStorage) {
  return LowerReference(propertyStorage);
}
