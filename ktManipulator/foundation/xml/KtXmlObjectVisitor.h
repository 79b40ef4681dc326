#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/xml/KtToken.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"

class KtXmlCompoundType;
class KtXmlObject;
template <class E>
class KtBaseExpressionTreeContainer;
template <class K, class V>
class KtXmlMapType;
template <class A, class B>
class KtXmlPairType;
template <class E>
class KtXmlVariableElementType;
template <class E>
class KtXmlVariableVectorType;
template <class E>
class KtXmlVectorType;

/// A walker over a tree of persistent objects.
///
/// A program derives from it, overrides the three hooks and hands it to `accept` of the object to
/// start at. Every object is visited before its children, in the order of a file.
class KT_EXPORT KtXmlObjectVisitor {
 public:
  KtXmlObjectVisitor();
  virtual ~KtXmlObjectVisitor();

  /// Whether to walk the children of the object in hand; true here.
  virtual bool shouldDescend();
  /// Called for every object; whether to walk its children too. True here.
  virtual bool visitObject(const KtXmlObject* object);
  /// Called when an object and its children are done, with the object in hand again.
  virtual void leaveObject();

  /// The object in hand; null before the first.
  const KtXmlObject* object() const noexcept { return object_; }
  /// What the object in hand is: the name of its type, then "token (count)" with the token under
  /// which it was reached and the number of its children; for an object without children the
  /// token alone.
  const std::vector<std::string>& description() const noexcept { return description_; }
  /// The token under which the object in hand was reached, and the next child will be.
  const KtToken& currentToken() const noexcept { return token_; }
  void setCurrentToken(const KtToken& token) { token_ = token; }

  /// Visits an object made of named components, then these, each under its token.
  void visit(const KtXmlCompoundType* compound);
  /// Visits an object without children.
  void visit(const KtXmlObject* object);
  /// Visits a list, then its elements.
  template <class E>
  void visit(const KtXmlVectorType<E>* list);
  /// Visits a list of polymorphic elements, then these.
  template <class E>
  void visit(const KtXmlVariableVectorType<E>* list);
  /// Visits the holder of one polymorphic element, then the element.
  template <class E>
  void visit(const KtXmlVariableElementType<E>* holder);
  /// Visits the holder of one polymorphic element, then the element.
  template <class E>
  void visit(const KtBaseExpressionTreeContainer<E>* holder);
  /// Visits a map, then each key and value.
  template <class K, class V>
  void visit(const KtXmlMapType<K, V>* map);
  /// Visits a pair, then its two values.
  template <class A, class B>
  void visit(const KtXmlPairType<A, B>* pair);

 private:
  /// Takes the object in hand and asks the hooks; then lets `walk` go over the children.
  template <class Walk>
  void visitWithChildren(const KtXmlObject* object, const char* typeName, std::size_t count,
                         Walk&& walk);
  bool enter(const KtXmlObject* object, const char* typeName, std::string description);
  void leave(const KtXmlObject* object, const KtToken& token);

  /// Visits a child under a token; one that is no persistent object is reported as `complaint()`.
  template <class Child, class Complaint>
  void visitChild(const KtToken& token, const Child* child, Complaint&& complaint);

  const KtXmlObject* object_ = nullptr;
  std::vector<std::string> description_;
  KtToken token_;
};

template <class Walk>
void KtXmlObjectVisitor::visitWithChildren(const KtXmlObject* object, const char* typeName,
                                           std::size_t count, Walk&& walk) {
  const KtToken token = token_;
  const bool descend = enter(object, typeName, token.text() + " (" + std::to_string(count) + ")");
  if (descend && count != 0) walk();
  leave(object, token);
}

template <class Child, class Complaint>
void KtXmlObjectVisitor::visitChild(const KtToken& token, const Child* child,
                                    Complaint&& complaint) {
  token_ = token;
  if constexpr (std::is_base_of_v<KtXmlObject, Child>) {
    if (child != nullptr) {
      child->accept(this);
      return;
    }
  }
  Kt::Print::instance().write(Kt::Print::kError, "Visitor: %s is non-KtXmlObject",
                              std::string(complaint()).c_str());
}

template <class E>
void KtXmlObjectVisitor::visit(const KtXmlVectorType<E>* list) {
  visitWithChildren(list, "KtXmlVectorType", list->size(), [&] {
    for (KtU32 i = 0; i < list->size(); ++i) {
      visitChild(KtXml::KtElementToken, &(*list)[i],
                 [i] { return "KtXmlVectorType " + std::to_string(i); });
    }
  });
}

template <class E>
void KtXmlObjectVisitor::visit(const KtXmlVariableVectorType<E>* list) {
  visitWithChildren(list, "KtXmlVariableVectorType", list->size(), [&] {
    KtU32 i = 0;
    for (const E* element : list->vectorContainer()) {
      visitChild(KtXml::KtElementToken, element,
                 [i] { return "KtXmlVariableVectorType " + std::to_string(i); });
      ++i;
    }
  });
}

template <class E>
void KtXmlObjectVisitor::visit(const KtXmlVariableElementType<E>* holder) {
  const E* element = holder->element();
  visitWithChildren(holder, "KtXmlVariableElementType", element != nullptr ? 1 : 0, [&] {
    visitChild(KtXml::KtElementToken, element, [] { return "KtXmlVariableElementType"; });
  });
}

template <class E>
void KtXmlObjectVisitor::visit(const KtBaseExpressionTreeContainer<E>* holder) {
  const E* element = holder->topElement();
  visitWithChildren(holder, "KtBaseExpressionTreeContainer", element != nullptr ? 1 : 0, [&] {
    visitChild(KtXml::KtElementToken, element, [] { return "KtBaseExpressionTreeContainer"; });
  });
}

template <class K, class V>
void KtXmlObjectVisitor::visit(const KtXmlMapType<K, V>* map) {
  visitWithChildren(map, "KtXmlMapType", map->size(), [&] {
    KtU32 i = 0;
    for (const auto& [key, value] : map->mapContainer()) {
      visitChild(KtXml::KtKeyToken, &key, [i] { return "KtXmlMapType key " + std::to_string(i); });
      visitChild(KtXml::KtValueToken, &value,
                 [i] { return "KtXmlMapType value " + std::to_string(i); });
      ++i;
    }
  });
}

template <class A, class B>
void KtXmlObjectVisitor::visit(const KtXmlPairType<A, B>* pair) {
  visitWithChildren(pair, "KtXmlPairType", 2, [&] {
    visitChild(KtXml::KtFirstToken, &pair->first(), [] { return "KtXmlPairType first"; });
    visitChild(KtXml::KtSecondToken, &pair->second(), [] { return "KtXmlPairType second"; });
  });
}
