#pragma once

#include <array>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/core/KtOnDemand.h"

namespace Kt::detail {

/// One bit of a mask, in a file a truth value.
class KT_EXPORT XmlMaskBit : public KtXmlBasicType<bool> {
 public:
  /// Names the bit that is read and written from now on.
  void bindTo(KtU32* mask, unsigned bit) noexcept {
    mask_ = mask;
    bit_ = bit;
  }

  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;

 private:
  KtU32* mask_ = nullptr;
  unsigned bit_ = 0;
};

}  // namespace Kt::detail

/// Up to 32 flags of one owner in one word, so that all of them are cleared by one store. The first
/// ones can be elements of the owner's file; only those take part in comparison.
///
/// @tparam kPersisted  number of flags that can be elements
template <unsigned kPersisted>
class KtXmlFlagMask {
 public:
  /// Whether a flag is set.
  bool test(unsigned flag) const noexcept { return (bits_ >> flag & 1U) != 0; }
  /// Sets a flag.
  void set(unsigned flag) noexcept { bits_ |= 1U << flag; }
  /// Sets or clears a flag.
  void set(unsigned flag, bool value) noexcept {
    bits_ = (bits_ & ~(1U << flag)) | static_cast<KtU32>(value) << flag;
  }
  /// Clears all flags.
  void clear() noexcept { bits_ = 0; }
  /// Clears the flags that can't be elements.
  void clearUnpersisted() noexcept { bits_ &= kPersistedBits; }
  /// Whether no flag is set.
  bool none() const noexcept { return bits_ == 0; }
  /// The flag as a component of the owner, for `registerComponents`.
  KtXmlObject* component(unsigned flag) {
    Kt::detail::XmlMaskBit& bit = components_.require()[flag];
    bit.bindTo(&bits_, flag);
    return &bit;
  }

  /// Exact equality of the flags that can be elements.
  bool operator==(const KtXmlFlagMask& other) const noexcept {
    return ((bits_ ^ other.bits_) & kPersistedBits) == 0;
  }

 private:
  static constexpr KtU32 kPersistedBits = (1U << kPersisted) - 1U;

  KtU32 bits_ = 0;
  // Mutable, as a constant owner that is written registers too.
  mutable KtOnDemand<std::array<Kt::detail::XmlMaskBit, kPersisted>> components_;
};
