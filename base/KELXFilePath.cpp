#include "base/KELXFilePath.h"

KELXFilePath::KELXFilePath(const char* utf8Path) : path_(utf8Path == nullptr ? "" : utf8Path) {}

KELXFilePath::~KELXFilePath() = default;

std::FILE* KELXFilePath::OpenFile(const char* mode) const {
  return std::fopen(path_.c_str(), mode);
}
