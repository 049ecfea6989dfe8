#pragma once

#include <span>
#include <string_view>
#include <utility>

namespace kelst {

/// An open file descriptor, closed in the end; -1 for none.
class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor = -1) noexcept : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileDescriptor() { Close(); }

  [[nodiscard]] int Get() const noexcept { return descriptor_; }
  explicit operator bool() const noexcept { return descriptor_ >= 0; }

  /// False, with errno set, when the system could not finish what was written.
  bool Close() noexcept;

 private:
  int descriptor_;
};

/// Writes all of `bytes`, in as few calls as the system lets. False, with errno set, on failure.
bool WriteAll(int descriptor, std::span<const unsigned char> bytes) noexcept;
bool WriteAll(int descriptor, std::string_view text) noexcept;

}  // namespace kelst
