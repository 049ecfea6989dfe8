#include "tools/kelst/FileDescriptor.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace kelst {

bool FileDescriptor::Close() noexcept {
  const int descriptor = std::exchange(descriptor_, -1);
  return descriptor < 0 || close(descriptor) == 0;
}

bool WriteAll(int descriptor, std::span<const unsigned char> bytes) noexcept {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {
      pollfd room{descriptor, POLLOUT, 0};
      poll(&room, 1, -1);
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

bool WriteAll(int descriptor, std::string_view text) noexcept {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
  return WriteAll(descriptor, std::span(bytes, text.size()));
}

}  // namespace kelst
