#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "KELXStStorage.h"
#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/OpenedFile.h"

namespace kelst {

/// Bytes of a stream; all from `offset` on, which is not beyond the end, unless told otherwise.
struct ByteRange {
  std::uint64_t offset = 0;
  std::uint64_t length = UINT64_MAX;
};

/// The bytes of one stream, reached by its directory entry and not by its name.
///
/// What the library opens it holds whole. It opens streams in the mini stream, which is held
/// anyway; those in sectors of the file are read piece by piece, and so take the same memory at any
/// size.
class StreamContent {
 public:
  /// The stream of the directory entry `index`. `file` must outlive the content.
  StreamContent(CompoundFile& file, std::uint32_t index, ByteRange range = {});

  /// The next piece, of 1 MiB at most; empty at the end. Good until the next call.
  std::span<const unsigned char> Next();

  /// What is wrong with the stream up to the end of the range; empty when nothing is. Ask once
  /// Next() has come to the end.
  [[nodiscard]] std::string Problem() const;

 private:
  void OpenInMiniStream(const KELStStorageDirEntry& entry);
  void OpenInFile(KELStStorageDirEntry entry);
  void ReadSectors(std::span<unsigned char> piece);

  CompoundFile& file_;
  std::uint64_t size_;          // of the stream; what follows are offsets in it
  std::uint64_t end_;           // of the range
  std::uint64_t readEnd_ = 0;   // of what is there of the range
  std::uint64_t position_ = 0;  // of what Next() gives next
  bool isInFile_ = true;
  std::string whyNotRead_;
  std::unique_ptr<KELIStream> stream_;  // one in the mini stream
  OpenedFile openFile_;                 // for another one
  unsigned int sector_ = 0;             // in which position_ is
  std::vector<unsigned char> piece_;
};

}  // namespace kelst
