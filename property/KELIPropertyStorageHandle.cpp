#include "property/KELIPropertyStorageHandle.h"

KELIPropertyStorageHandle::~KELIPropertyStorageHandle() = default;
