#pragma once

#include <memory>
#include <string>

#include "ktManipulator/foundation/containers/KtXmlHolding.h"

/// A persistent holder of one owned object of a class derived from `E`, or of none; the holder of
/// the models' exchangeable members.
///
/// In a file the object stands in a child named after its class. Reading a child replaces the
/// object; when the child's tag is unknown the holder is empty afterwards and `read` gives false.
///
/// Abstract: a concrete holder gives the usual operations and `registerComponentCreators`.
///
/// @tparam E  an abstract class derived from `KtBaseExpressionTreeElement`
template <class E>
class KT_EXPORT KtBaseExpressionTreeContainer : public KtXmlBaseVariableCompoundType {
 public:
  /// The common base of what is held.
  using ElementType = E;

  /// The empty holder.
  KtBaseExpressionTreeContainer() = default;
  KtBaseExpressionTreeContainer(const KtBaseExpressionTreeContainer& other)
      : KtXmlBaseVariableCompoundType(other),
        topElement_(Kt::detail::cloneAs<E>(other.topElement_.get())) {}
  KtBaseExpressionTreeContainer(KtBaseExpressionTreeContainer&&) noexcept = default;
  KtBaseExpressionTreeContainer& operator=(const KtBaseExpressionTreeContainer& other) {
    if (this == &other) return *this;
    KtXmlBaseVariableCompoundType::operator=(other);
    topElement_.reset(Kt::detail::cloneAs<E>(other.topElement_.get()));
    if (topElement_ != nullptr) setTopElementContainerToThis();
    return *this;
  }
  KtBaseExpressionTreeContainer& operator=(KtBaseExpressionTreeContainer&&) noexcept = default;

  /// Lets the visitor visit this object.
  void accept(KtXmlObjectVisitor* visitor) const override { visitor->visit(this); }
  /// Reads the object; see `KtXmlObject::read`.
  bool read(KtXmlReader& reader) override {
    const bool ok = KtXmlBaseVariableCompoundType::read(reader);
    if (topElement_ != nullptr) setTopElementContainerToThis();
    return ok;
  }
  /// Writes the object; see `KtXmlObject::write`.
  bool write(KtXmlWriter& writer) const override {
    const bool ok = KtXmlBaseVariableCompoundType::write(writer);
    return (topElement_ == nullptr || Kt::detail::writeHeld(writer, *topElement_)) && ok;
  }
  /// Replaces the object by a new one of the tag, made by this holder's creators or the reader's
  /// factory, and reads it; an unknown tag is reported by the reader, with its place, and gives
  /// false.
  bool readValueFromToken(const KtToken& token, KtXmlReader& reader) override {
    if (token == KtXml::KtAddLibrariesToken) {
      readLibraries(reader);
      return true;
    }
    setAndDeleteTopElementPointer(Kt::detail::makeHeld<E>(*this, token, reader));
    if (topElement_ == nullptr) {
      reader.reportError("<" + std::string(token.localName()) + "> is not an element of " +
                         std::string(this->token().localName()));
      return false;
    }
    topElement_->read(reader);
    return true;
  }

  /// The object, or null; owned by the holder.
  virtual const E* topElement() const { return topElement_.get(); }
  virtual E* topElement() { return topElement_.get(); }
  /// Replaces the object by a copy of the argument, which may be the holder's own.
  virtual void setTopElement(const E& element) {
    setAndDeleteTopElementPointer(Kt::detail::cloneAs<E>(&element));
  }
  /// Deletes the object and takes over the one pointed to, which may be null.
  virtual void setAndDeleteTopElementPointer(E* element) {
    if (element != topElement_.get()) topElement_.reset(element);
    setTopElementContainerToThis();
  }
  /// Called whenever the holder has come by another object. Does nothing: a holder whose objects
  /// want to know it overrides this.
  virtual void setTopElementContainerToThis() {}

  /// Whether both are empty, or hold objects that are equal by `equality`.
  bool operator==(const KtBaseExpressionTreeContainer& other) const {
    if (!KtXmlBaseVariableCompoundType::operator==(other)) return false;
    if (topElement_ == nullptr || other.topElement_ == nullptr) {
      return topElement_ == other.topElement_;
    }
    return topElement_->equality(other.topElement_.get());
  }

 private:
  std::unique_ptr<E> topElement_;
};
