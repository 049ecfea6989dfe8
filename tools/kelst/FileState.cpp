#include "tools/kelst/FileState.h"

#include <tuple>

namespace kelst {

namespace {

auto Identity(const struct stat& facts) {
  return std::make_tuple(facts.st_dev, facts.st_ino, facts.st_size, facts.st_mtim.tv_sec,
                         facts.st_mtim.tv_nsec);
}

}  // namespace

std::optional<FileState> FileState::Of(const std::string& path) {
  struct stat facts {};
  if (stat(path.c_str(), &facts) != 0) return std::nullopt;
  return FileState(facts);
}

bool FileState::operator==(const FileState& other) const {
  return Identity(facts_) == Identity(other.facts_);
}

}  // namespace kelst
