#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kelst {

/// Standard output. After the first failure nothing more is written.
class Output {
 public:
  Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void Write(std::string_view text);
  void Write(std::span<const unsigned char> bytes);

  /// Writes out what is held back.
  void Flush();

  /// Whether everything could be written so far. Long work asks now and then, and stops.
  [[nodiscard]] bool IsGood() const { return error_ == 0; }

  /// The errno of the failure; 0 for none.
  [[nodiscard]] int Error() const { return error_; }

 private:
  std::string held_;
  int error_ = 0;
};

}  // namespace kelst
