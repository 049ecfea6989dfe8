#include "base/KELXPropertyContainerHandle.h"

KELXPropertyContainerHandle::~KELXPropertyContainerHandle() = default;
