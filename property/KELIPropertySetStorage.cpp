#include "property/KELIPropertySetStorage.h"

KELIPropertySetStorage::KELIPropertySetStorage() : KELXReferenceCount(0) {}

KELIPropertySetStorage::~KELIPropertySetStorage() = default;
