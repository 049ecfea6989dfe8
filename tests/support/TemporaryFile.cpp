#include "tests/support/TemporaryFile.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace kelx::test {

TemporaryFolder::TemporaryFolder()
    : path_((std::filesystem::temp_directory_path() / "kelx-test-XXXXXX").string()) {
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("cannot make a temporary folder");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::PathOf(std::string_view name) const {
  return path_ + "/" + std::string(name);
}

std::string TemporaryFolder::Write(std::string_view name,
                                   std::span<const unsigned char> bytes) const {
  std::string path = PathOf(name);
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
  return path;
}

TemporaryFile::TemporaryFile(std::span<const unsigned char> bytes)
    : path_(folder_.Write("file.bin", bytes)) {}

}  // namespace kelx::test
