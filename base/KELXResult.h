#pragma once

/// The outcome of a query: a code, 0 for success. A value type that converts from a `long`, so it
/// compares with one too.
class KELXResult {
 public:
  static constexpr long kSuccess = 0;              ///< done
  static constexpr long kNotFound = 0x1000001;     ///< nothing was found or produced
  static constexpr long kNullStorage = 0x1000008;  ///< OpenPropertySetStorage was given null
  static constexpr long kNullObject = 0x100000b;   ///< a required object was null

  /// The outcome with this code.
  /// @{
  constexpr KELXResult(long code) noexcept : code_(code) {}

  constexpr KELXResult& operator=(long code) noexcept {
    code_ = code;
    return *this;
  }
  /// @}

  /// The code.
  [[nodiscard]] constexpr long Code() const noexcept { return code_; }

  /// Whether the codes are equal: `result == KELXResult::kSuccess`.
  constexpr bool operator==(const KELXResult& other) const noexcept = default;

 private:
  long code_;
};
