#pragma once

#include "base/KELXDynamicArray.h"
#include "base/KELXExport.h"
#include "base/KELXReferenceCount.h"
#include "base/KELXResult.h"
#include "base/KELXString.h"
#include "property/KELIPropertyStorageHandle.h"

/// The property sets of one storage, in the order in which they were added.
///
/// Reference counted, as the sets in it are. A set that a lookup hands out has its count raised for
/// the caller, who gives it back with LowerReference (or ClosePropertyStorage); it outlives the
/// collection and the storage if need be.
class KELXSTSTORAGE_API KELIPropertySetStorage : public KELXReferenceCount {
 public:
  /// An empty collection.
  KELIPropertySetStorage();
  ~KELIPropertySetStorage() override;

  /// Appends `propertyStorage` and raises its count, also when it is there already. False, with
  /// nothing added, when it is null.
  bool AddPropertyStorage(KELIPropertyStorage* propertyStorage);

  /// Appends every set to `propertyStorages`, each with its count raised for the caller.
  void GetPropertyStorages(KELXDynamicArray<KELIPropertyStorage*>& propertyStorages);

  /// The number of sets.
  int GetPropertyStorageCount();

  /// Finds the first set whose name is `name`, case included; a set without a name property has
  /// the empty name. 0, with the set in `propertyStorage`, or KELXResult::kNotFound, with null.
  KELXResult GetPropertyStorageWithName(const KELXString& name,
                                        KELIPropertyStorage*& propertyStorage);

  /// The same by the format identifier in the 16 bytes at `id`, of which null finds nothing, in the
  /// order that KELIPropertyStorage::GetPropertyStorageID gives: a set of two sections is found by
  /// the identifier of the second one only.
  KELXResult GetPropertyStorageWithID(const unsigned char* id,
                                      KELIPropertyStorage*& propertyStorage);

 private:
  template <typename Predicate>
  KELXResult Find(Predicate isWanted, KELIPropertyStorage*& propertyStorage);

  KELXDynamicArray<KELIPropertyStorageHandle> propertyStorages_;
};
