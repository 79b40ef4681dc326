#pragma once

/// Tells whether a cache of its owner holds. It is no part of the owner's value: a copy starts with
/// it cleared, an assignment clears it, and comparison ignores it.
class KtCacheFlag {
 public:
  constexpr KtCacheFlag() noexcept = default;
  constexpr KtCacheFlag(const KtCacheFlag&) noexcept {}
  /// Clears the flag.
  constexpr KtCacheFlag& operator=(const KtCacheFlag&) noexcept {
    holds_ = false;
    return *this;
  }
  /// Sets or clears the flag.
  constexpr KtCacheFlag& operator=(bool holds) noexcept {
    holds_ = holds;
    return *this;
  }

  /// Whether the cache holds.
  constexpr explicit operator bool() const noexcept { return holds_; }
  constexpr bool operator==(const KtCacheFlag&) const noexcept { return true; }

 private:
  bool holds_ = false;
};
