#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

#include "ktManipulator/foundation/core/KtAngle.h"
#include "ktManipulator/foundation/core/KtNonNegReal.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"

/// A persistent object around one value.
///
/// In a file the value is the text of the element in hand, of an attribute, or one more value of a
/// group. Truth values are "true" and "false" ("1" and "0" are read too); reals are written in the
/// shortest form that reads back to the same bits, "INF", "-INF" and "NaN" among them; texts that
/// stand in a group are quoted where they have to be. A text that is no value of the type is
/// reported with file and line, gives false, and leaves the value as it was.
///
/// @tparam T  bool, double, unsigned int, std::string, KtAngle or KtNonNegReal
template <class T>
class KT_EXPORT KtXmlBasicType : public KtXmlPersistent<KtXmlBasicType<T>> {
 public:
  /// The type of what it holds.
  using ValueType = T;

  /// The zero value: 0, false or the empty text.
  KtXmlBasicType() = default;
  /// From a value.
  KtXmlBasicType(const T& value) : value_(value) {}  // NOLINT(google-explicit-constructor)
  KtXmlBasicType(const KtXmlBasicType&) = default;
  KtXmlBasicType(KtXmlBasicType&&) noexcept = default;
  KtXmlBasicType& operator=(const KtXmlBasicType&) = default;
  KtXmlBasicType& operator=(KtXmlBasicType&&) noexcept = default;
  KtXmlBasicType& operator=(const T& value) {
    value_ = value;
    return *this;
  }

  /// The value.
  const T& value() const noexcept { return value_; }
  /// The value, to be changed.
  T& value() noexcept { return value_; }
  /// The value.
  operator const T&() const noexcept { return value_; }  // NOLINT(google-explicit-constructor)
  /// The value, to be changed.
  operator T&() noexcept { return value_; }  // NOLINT(google-explicit-constructor)

  bool read(KtXmlReader& reader) override;
  bool readAttribute(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;
  bool isBasicType() const override { return true; }

  bool operator==(const KtXmlBasicType&) const = default;
  /// Order of texts and unsigned integers, for keys.
  bool operator<(const KtXmlBasicType& other) const
      requires(std::same_as<T, std::string> || std::same_as<T, unsigned int>) {
    return value_ < other.value_;
  }

  // Comparison with a plain value takes its very type: no conversion competes with another then.

  /// Whether the value equals a plain one.
  template <class U>
  requires(std::convertible_to<U, T> && !std::is_base_of_v<KtXmlBasicType, U>) bool operator==(
      const U& value) const {
    return value_ == static_cast<const T&>(value);
  }
  /// Order with a plain value, of texts and unsigned integers.
  template <class U>
  requires(std::convertible_to<U, T> && !std::is_base_of_v<KtXmlBasicType, U> &&
           (std::same_as<T, std::string> || std::same_as<T, unsigned int>)) bool
  operator<(const U& value) const {
    return value_ < static_cast<const T&>(value);
  }

  static const KtToken& classToken() { return KtXml::KtBasicTypeToken; }

 private:
  T value_{};
};

/// Whether the values of a type stand in a group when a container holds them.
template <class E>
inline constexpr bool ktIsBasicType = false;
template <class T>
inline constexpr bool ktIsBasicType<KtXmlBasicType<T>> = true;

extern template class KtXmlBasicType<bool>;
extern template class KtXmlBasicType<double>;
extern template class KtXmlBasicType<unsigned int>;
extern template class KtXmlBasicType<std::string>;
extern template class KtXmlBasicType<KtAngle>;
extern template class KtXmlBasicType<KtNonNegReal>;
