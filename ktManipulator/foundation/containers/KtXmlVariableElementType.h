#pragma once

#include <memory>

#include "ktManipulator/foundation/containers/KtXmlHolding.h"

/// A persistent holder of one owned object of a class derived from `E`, or of none.
///
/// In a file the object stands in a child named after its class. Reading a child replaces the
/// object; when the child's tag is unknown the holder is empty afterwards.
///
/// Abstract: a concrete holder gives the usual operations and `registerComponentCreators`.
///
/// @tparam E  an abstract persistent class
template <class E>
class KT_EXPORT KtXmlVariableElementType : public KtXmlBaseVariableCompoundType {
 public:
  /// The common base of what is held.
  using ElementType = E;

  /// The empty holder.
  KtXmlVariableElementType() = default;
  KtXmlVariableElementType(const KtXmlVariableElementType& other)
      : KtXmlBaseVariableCompoundType(other),
        element_(Kt::detail::cloneAs<E>(other.element_.get())) {}
  KtXmlVariableElementType(KtXmlVariableElementType&&) noexcept = default;
  KtXmlVariableElementType& operator=(const KtXmlVariableElementType& other) {
    if (this == &other) return *this;
    KtXmlBaseVariableCompoundType::operator=(other);
    element_.reset(Kt::detail::cloneAs<E>(other.element_.get()));
    return *this;
  }
  KtXmlVariableElementType& operator=(KtXmlVariableElementType&&) noexcept = default;

  void accept(KtXmlObjectVisitor* visitor) const override { visitor->visit(this); }  ///< Visits it.
  bool write(KtXmlWriter& writer) const override {  ///< See `KtXmlObject::write`.
    const bool ok = KtXmlBaseVariableCompoundType::write(writer);
    return (element_ == nullptr || Kt::detail::writeHeld(writer, *element_)) && ok;
  }
  /// Replaces the object by a new one of the tag, made by this holder's creators or the reader's
  /// factory, and reads it; an unknown tag is reported and gives false.
  bool readValueFromToken(const KtToken& token, KtXmlReader& reader) override;

  /// The object, or null; owned by the holder.
  virtual const E* element() const { return element_.get(); }
  virtual E* element() { return element_.get(); }
  /// Replaces the object by a copy of the argument, which must not be the holder's own: that one is
  /// deleted first.
  virtual void setElement(const E& element) {
    element_.reset();
    element_.reset(Kt::detail::cloneAs<E>(&element));
  }

  /// Whether both are empty, or hold objects that are equal by `equality`.
  bool operator==(const KtXmlVariableElementType& other) const {
    if (!KtXmlBaseVariableCompoundType::operator==(other)) return false;
    if (element_ == nullptr || other.element_ == nullptr) return element_ == other.element_;
    return element_->equality(other.element_.get());
  }

 private:
  std::unique_ptr<E> element_;
};

template <class E>
bool KtXmlVariableElementType<E>::readValueFromToken(const KtToken& token, KtXmlReader& reader) {
  if (token == KtXml::KtAddLibrariesToken) {
    readLibraries(reader);
    return true;
  }
  element_.reset();
  element_.reset(Kt::detail::makeHeld<E>(*this, token, reader));
  if (element_ == nullptr) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtXmlVariableElementType::readValueFromToken() error:\n\t\"%s\" "
                                "tag not registered.\n",
                                token.text().c_str());
    return false;
  }
  element_->read(reader);
  return true;
}
