#pragma once

/// Holds an object of one owner that is made on first need: a table of pointers into the owner, or
/// working memory. It is no part of the owner's value: a copy starts without one, an assignment
/// leaves the target's as it is, and comparison ignores it.
///
/// @tparam T  the object; default-constructible
template <class T>
class KtOnDemand {
 public:
  constexpr KtOnDemand() noexcept = default;
  constexpr KtOnDemand(const KtOnDemand&) noexcept {}
  constexpr KtOnDemand& operator=(const KtOnDemand&) noexcept { return *this; }
  ~KtOnDemand() {
    if (object_ != nullptr) destroy();
  }

  /// The object, or null if it was never needed.
  T* get() const noexcept { return object_; }
  /// The object, made now if it was never needed.
  T& require() {
    if (object_ == nullptr) object_ = new T;
    return *object_;
  }

  constexpr bool operator==(const KtOnDemand&) const noexcept { return true; }

 private:
  // Out of line, so that the destructors of the many owners stay small.
  [[gnu::noinline]] void destroy() noexcept { delete object_; }

  T* object_ = nullptr;
};
