#pragma once

#include "base/KELXString.h"

/// @file
/// What GetChildElements tells of a child.

/// What a child of a storage is.
enum KELXStStorageElementType {
  KELXStStorageElementStream = 0,   ///< a stream
  KELXStStorageElementStorage = 1,  ///< also any entry that is no stream
};

/// A child of a storage, as GetChildElements lists it: a value type; arrays may move it bytewise.
struct KELXStStorageElement {
  KELXString name;                ///< as KELStStorageDirEntry::getName gives it
  KELXStStorageElementType type;  ///< what it is
};
