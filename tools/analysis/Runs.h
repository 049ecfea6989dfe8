#pragma once

#include <cstdint>

namespace kelst {

/// Joins numbers that follow one another and are of one kind into runs.
template <typename Kind, typename Visit>
class Runs {
 public:
  /// Calls `visit(kind, first, count)` for each run, for the last one when this ends.
  explicit Runs(Visit visit) : visit_(visit) {}
  Runs(const Runs&) = delete;
  Runs& operator=(const Runs&) = delete;
  ~Runs() { Finish(); }

  void Add(const Kind& kind, std::uint32_t number) {
    if (count_ == 0 || number != first_ + count_ || kind != kind_) {
      Finish();
      first_ = number;
      kind_ = kind;
    }
    ++count_;
  }

 private:
  void Finish() {
    if (count_ > 0) visit_(kind_, first_, count_);
    count_ = 0;
  }

  Visit visit_;
  Kind kind_{};
  std::uint32_t first_ = 0;
  std::uint32_t count_ = 0;
};

}  // namespace kelst
