#pragma once

/// @file
/// Everything that libKELXStStorage and libKELXBase offer.
///
/// Begin with KELStgFunctions.h, which opens, lists and reads; go on with KELIStorage and
/// KELIStream for what it leaves out. KELXStructuredStorageUtils queries properties,
/// KELIPropertyStorage is one set of them. KELXString, KELXFilePath and KELXDynamicArray are what
/// goes in and comes out. The rest is for looking into the file format itself, or what these are
/// made of.
///
/// Nothing here throws, logs or prints for anything that a file holds. Running out of memory is not
/// handled: it ends the process, by std::terminate or by a std::bad_alloc that nobody catches.

#include "base/KELXArray.h"
#include "base/KELXDate.h"
#include "base/KELXDynamicArray.h"
#include "base/KELXFilePath.h"
#include "base/KELXFileTime.h"
#include "base/KELXHashMap.h"
#include "base/KELXHashOption.h"
#include "base/KELXProperty.h"
#include "base/KELXPropertyContainer.h"
#include "base/KELXPropertyContainerHandle.h"
#include "base/KELXPropertyHandle.h"
#include "base/KELXReferenceCount.h"
#include "base/KELXReferenceHandle.h"
#include "base/KELXResult.h"
#include "base/KELXString.h"
#include "base/KELXTextDecoder.h"
#include "base/KELXTypedHandle.h"
#include "compound/KELReadValue.h"
#include "compound/KELStStorageDirEntry.h"
#include "compound/KELStStorageFileInfo.h"
#include "compound/KELStStorageHeader.h"
#include "property/KELIPropertySetStorage.h"
#include "property/KELIPropertySetStorageHandle.h"
#include "property/KELIPropertyStorage.h"
#include "property/KELIPropertyStorageHandle.h"
#include "property/KELXStructuredStorageUtils.h"
#include "storage/KELIStorage.h"
#include "storage/KELIStream.h"
#include "storage/KELStgFunctions.h"
#include "storage/KELXQuickSort.h"
#include "storage/KELXStStorageElement.h"
