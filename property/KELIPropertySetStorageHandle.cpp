#include "property/KELIPropertySetStorageHandle.h"

KELIPropertySetStorageHandle::~KELIPropertySetStorageHandle() = default;
