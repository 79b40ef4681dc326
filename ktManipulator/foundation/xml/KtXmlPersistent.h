#pragma once

#include "ktManipulator/foundation/xml/KtXmlObject.h"

/// The operations that every concrete persistent class answers in the same way, between a class
/// `Cls` and its base. It adds no virtual operation, so that the order of those of `Cls` is that of
/// its base followed by its own.
///
/// @tparam Cls   the class; it has a static `classToken()`, is default-constructible and comparable
/// @tparam Base  its base
template <class Cls, class Base = KtXmlObject>
class KtXmlPersistent : public Base {
 public:
  using Base::Base;

  /// A copy of the most derived object; the caller owns it.
  KtXmlObject* clone() const override { return new Cls(self()); }
  /// Whether the other is of class `Cls`, or derived from it, and equal as a `Cls`.
  bool equality(const KtXmlObject* other) const override {
    // A class without a comparison of its own would take its base's and equal too much.
    static_assert(
        requires { static_cast<bool (Cls::*)(const Cls&) const>(&Cls::operator==); } ||
            requires { static_cast<bool (Cls::*)(const Cls&) const noexcept>(&Cls::operator==); },
        "a persistent class declares bool operator==(const Cls&) const");
    const auto* same = dynamic_cast<const Cls*>(other);
    return same != nullptr && self() == *same;
  }
  /// A new default-constructed object; the caller owns it.
  KtXmlObject* newObject() const override { return new Cls(); }
  /// The class token of `Cls`.
  const KtToken& token() const override { return Cls::classToken(); }

  /// The value that stands for nothing: a default-constructed object.
  static Cls nullObject() { return Cls(); }
  /// A new default-constructed object, for holders that make objects by name; the caller owns it.
  static KtXmlObject* creator() { return new Cls(); }

  bool operator==(const KtXmlPersistent&) const = default;

 protected:
  KtXmlPersistent() = default;  ///< As the base is made by default.

 private:
  const Cls& self() const noexcept { return static_cast<const Cls&>(*this); }
};
