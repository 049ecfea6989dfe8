#pragma once

#include "base/KELXDynamicArray.h"
#include "base/KELXExport.h"
#include "base/KELXPropertyContainerHandle.h"
#include "base/KELXResult.h"
#include "base/KELXString.h"
#include "property/KELIPropertySetStorage.h"
#include "property/KELIPropertyStorage.h"

class KELIStorage;

/// Queries of property sets without handles: open the collection of a storage, open sets in it,
/// read their properties, close what was opened.
///
/// Each set and collection that an opening operation gives carries one reference, which the caller
/// gives back with the closing operation of its kind; it may outlive the storage. A query whose
/// object is null returns KELXResult::kNullObject, unless it says otherwise, and leaves every
/// output as it was.
class KELXSTSTORAGE_API KELXStructuredStorageUtils {
 public:
  /// The value of the first property with the identifier `id`, as text, and its kind, a number of
  /// ValueType. KELXResult::kNotFound, with `value` empty and `type` -1, when there is none.
  static KELXResult GetValueWithId(int id, KELIPropertyStorage* propertyStorage, KELXString& value,
                                   int& type);

  /// The same of the first property named `name`, case included.
  static KELXResult GetValueWithName(const KELXString& name, KELIPropertyStorage* propertyStorage,
                                     KELXString& value, int& type);

  /// The name of the set, empty when it has none. The first argument is not used.
  static KELXResult GetPropertySetName(int, KELIPropertyStorage* propertyStorage, KELXString& name);

  /// Packs all properties of this one set, maybe none, into a new container with the name of the
  /// set. What `container` held before is let go.
  static KELXResult GetAllPropertySets(KELIPropertyStorage* propertyStorage,
                                       KELXPropertyContainerHandle& container);

  /// Opens the set of `storage` with the format identifier in the 16 bytes at `id` (null finds
  /// nothing), in display order: {F29F85E0-4FF9-... begins with the bytes F2 9F 85 E0 4F F9. A set
  /// of two sections goes by the identifier of the second one. KELXResult::kNotFound, with
  /// `propertyStorage` null, when there is none.
  static KELXResult OpenPropertySetWithId(KELIStorage* storage, const unsigned char* id,
                                          KELIPropertyStorage*& propertyStorage);

  /// Opens the set in `set` with that name; fails as OpenPropertySetWithId does. The second
  /// argument is not used.
  static KELXResult OpenPropertySetWithName(KELIPropertySetStorage* set, int,
                                            const KELXString& name,
                                            KELIPropertyStorage*& propertyStorage);

  /// Appends every set in `set` to `propertyStorages`, each to be closed. KELXResult::kNotFound
  /// when that holds nothing afterwards.
  static KELXResult OpenAllPropertyStorages(
      KELIPropertySetStorage* set, KELXDynamicArray<KELIPropertyStorage*>& propertyStorages);

  /// Opens the collection of `storage`. KELXResult::kNullStorage, with `set` untouched, when
  /// `storage` is null.
  static KELXResult OpenPropertySetStorage(KELIStorage* storage, KELIPropertySetStorage*& set);

  /// Gives one reference back. Null is ignored. Always true.
  /// @{
  static bool ClosePropertySetStorage(KELIPropertySetStorage* set);
  static bool ClosePropertyStorage(KELIPropertyStorage* propertyStorage);
  /// @}
};
