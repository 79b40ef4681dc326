#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"

/// A persistent object around one value of an enumeration, which a file shows as a word.
///
/// The owner ties the words to the values with `setEnumString`, in its `xmlInit`. A value without
/// a word is written as its number, and numbers are read too. A word that is tied to no value is
/// reported and leaves the value as it was. Copies share the words; comparison looks at the value
/// alone.
///
/// @tparam T  unsigned int
template <class T>
class KT_EXPORT KtXmlEnumType : public KtXmlPersistent<KtXmlEnumType<T>> {
 public:
  /// The type of what it holds.
  using ValueType = T;

  /// The value 0.
  KtXmlEnumType() = default;
  /// From a value.
  KtXmlEnumType(const T& value) : value_(value) {}  // NOLINT(google-explicit-constructor)
  KtXmlEnumType(const KtXmlEnumType&) = default;
  KtXmlEnumType(KtXmlEnumType&&) noexcept = default;
  /// Takes the value; the words stay, unless this one has none.
  KtXmlEnumType& operator=(const KtXmlEnumType& other) {
    value_ = other.value_;
    if (words_ == nullptr) words_ = other.words_;  // also right for the object itself
    return *this;
  }
  KtXmlEnumType& operator=(const T& value) {
    value_ = value;
    return *this;
  }

  /// The value.
  const T& value() const noexcept { return value_; }
  /// The value, to be changed.
  T& value() noexcept { return value_; }
  /// The value.
  operator const T&() const noexcept { return value_; }  // NOLINT(google-explicit-constructor)

  /// Ties a value to the word that stands for it in a file; a second word for a value replaces the
  /// first.
  void setEnumString(const T& value, const std::string& word);

  bool read(KtXmlReader& reader) override;
  bool readAttribute(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;
  bool isBasicType() const override { return true; }

  bool operator==(const KtXmlEnumType& other) const { return value_ == other.value_; }
  /// Whether the value equals a plain one, an integer or an enumerator.
  template <class U>
  requires std::is_integral_v<U> || std::is_enum_v<U>
  bool operator==(const U& value) const { return value_ == static_cast<T>(value); }

  static const KtToken& classToken() { return KtXml::KtEnumTypeToken; }

 private:
  using Words = std::vector<std::pair<T, std::string>>;

  bool parseReported(KtXmlReader& reader, std::string_view text);

  T value_{};
  // Mutable: the owner ties the words when it prepares itself for its first read or write, which a
  // constant object does too.
  mutable std::shared_ptr<const Words> words_;
};

template <class T>
inline constexpr bool ktIsBasicType<KtXmlEnumType<T>> = true;

extern template class KtXmlEnumType<unsigned int>;
