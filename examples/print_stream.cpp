#include <KELXStStorage.h>

#include <iostream>
#include <memory>
#include <string>

/// Prints one stream of a compound file: print_stream report.doc WordDocument
int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const std::unique_ptr<KELIStorage> root(KELStgOpenStorageRoot(KELXFilePath(argv[1])));
  const std::unique_ptr<KELIStream> stream(OpenStream(root.get(), KELXString::fromUtf8(argv[2])));
  unsigned long size = 0;
  if (!GetStreamSize(stream.get(), size)) {
    std::cerr << (root ? "no such stream\n" : "not a compound file\n");
    return 1;
  }
  std::string bytes(size, '\0');
  const bool isWhole = ReadStream(stream.get(), bytes.data(), size);
  std::cout << bytes;
  return isWhole ? 0 : 1;
}
