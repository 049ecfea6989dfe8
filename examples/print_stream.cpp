#include <KELXStStorage.h>

#include <array>
#include <iostream>
#include <memory>

/// Prints one stream of a compound file: print_stream report.doc WordDocument
int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const std::unique_ptr<KELIStorage> root(KELStgOpenStorageRoot(KELXFilePath(argv[1])));
  const std::unique_ptr<KELIStream> stream(OpenStream(root.get(), KELXString::fromUtf8(argv[2])));
  unsigned long stated = 0;
  if (!GetStreamSize(stream.get(), stated)) {
    std::cerr << (root ? "no such stream\n" : "not a compound file\n");
    return 1;
  }
  unsigned long held = 0;
  for (unsigned long read = 1; read > 0; held += read) {
    std::array<char, 4096> piece;
    stream->Read(piece.data(), piece.size(), &read);
    std::cout.write(piece.data(), static_cast<std::streamsize>(read));
  }
  return held == stated ? 0 : 1;  // a damaged file can state more than it has
}
