#include "ktManipulator/foundation/xml/KtXmlObjectVisitor.h"

#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

KtXmlObjectVisitor::KtXmlObjectVisitor() : token_("") {}
KtXmlObjectVisitor::~KtXmlObjectVisitor() = default;

bool KtXmlObjectVisitor::shouldDescend() {
  return true;
}
bool KtXmlObjectVisitor::visitObject(const KtXmlObject*) {
  return true;
}
void KtXmlObjectVisitor::leaveObject() {}

void KtXmlObjectVisitor::visit(const KtXmlCompoundType* compound) {
  const auto& components = compound->componentMap().entries();
  visitWithChildren(compound, "KtXmlCompoundType", components.size(), [&] {
    for (const auto& entry : components) {
      token_ = entry.token;
      entry.component->accept(this);
    }
  });
}

void KtXmlObjectVisitor::visit(const KtXmlObject* object) {
  const KtToken token = token_;
  enter(object, "KtXmlObject", token.text());
  leave(object, token);
}

bool KtXmlObjectVisitor::enter(const KtXmlObject* object, const char* typeName,
                               std::string description) {
  object_ = object;
  description_.clear();
  description_.emplace_back(typeName);
  description_.push_back(std::move(description));
  const bool descend = shouldDescend();
  return visitObject(object) && descend;
}

void KtXmlObjectVisitor::leave(const KtXmlObject* object, const KtToken& token) {
  object_ = object;
  token_ = token;
  leaveObject();
}
