#pragma once

// Everything that libKELXStStorage and libKELXBase offer.

#include "base/KELXArray.h"
#include "base/KELXDynamicArray.h"
#include "base/KELXFilePath.h"
#include "base/KELXFileTime.h"
#include "base/KELXReferenceCount.h"
#include "base/KELXReferenceHandle.h"
#include "base/KELXString.h"
#include "base/KELXTextDecoder.h"
#include "base/KELXTypedHandle.h"
#include "compound/KELReadValue.h"
#include "compound/KELStStorageDirEntry.h"
#include "compound/KELStStorageFileInfo.h"
#include "compound/KELStStorageHeader.h"
#include "property/KELIPropertySetStorage.h"
#include "property/KELIPropertySetStorageHandle.h"
#include "storage/KELIStorage.h"
#include "storage/KELIStream.h"
#include "storage/KELStgFunctions.h"
#include "storage/KELXQuickSort.h"
#include "storage/KELXStStorageElement.h"
