#include "tools/kelst/Output.h"

#include <unistd.h>

#include <cerrno>

#include "tools/kelst/FileDescriptor.h"

namespace kelst {

namespace {

constexpr std::size_t kMostHeldBytes = std::size_t{64} * 1024;

}  // namespace

void Output::Write(std::string_view text) {
  if (!IsGood()) return;
  held_ += text;
  if (held_.size() >= kMostHeldBytes) Flush();
}

void Output::Write(std::span<const unsigned char> bytes) {
  Flush();
  if (IsGood() && !WriteAll(STDOUT_FILENO, bytes)) error_ = errno;
}

void Output::Flush() {
  if (IsGood() && !WriteAll(STDOUT_FILENO, held_)) error_ = errno;
  held_.clear();
}

}  // namespace kelst
