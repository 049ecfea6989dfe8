#include "base/KELXPropertyHandle.h"

KELXPropertyHandle::~KELXPropertyHandle() = default;
