#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

// Runs a fuzz target over every file of the folders named, so that it cannot rot and past findings
// stay found. Fails when there was nothing to run.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  int runs = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& file : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (!file.is_regular_file()) continue;
      std::ifstream stream(file.path(), std::ios::binary);
      const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++runs;
    }
  }
  std::printf("%d inputs\n", runs);
  return runs > 0 ? 0 : 1;
}
