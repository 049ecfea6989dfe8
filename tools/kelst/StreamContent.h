#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "KELXStStorage.h"
#include "tools/kelst/CompoundFile.h"

namespace kelst {

/// The bytes of one stream, reached by its directory entry and not by its name.
class StreamContent {
 public:
  /// Reads the stream of the directory entry `index` into memory.
  StreamContent(CompoundFile& file, std::uint32_t index);

  /// The next piece, of 1 MiB at most; empty at the end. Good until the next call.
  std::span<const unsigned char> Next();

  /// What is wrong with the stream; empty when nothing is. Ask once Next() has come to the end.
  [[nodiscard]] std::string Problem() const;

 private:
  const CompoundFile& file_;
  std::uint64_t size_;
  std::uint64_t given_ = 0;  // bytes that Next() gave
  bool isInFile_ = true;
  std::string whyNotRead_;
  std::unique_ptr<KELIStream> stream_;
  std::vector<unsigned char> piece_;
};

}  // namespace kelst
