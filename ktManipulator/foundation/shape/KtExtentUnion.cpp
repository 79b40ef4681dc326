#include "ktManipulator/foundation/shape/KtExtentUnion.h"

#include "ktManipulator/foundation/shape/KtBoxShape.h"
#include "ktManipulator/foundation/shape/KtCapsuleShape.h"
#include "ktManipulator/foundation/shape/KtConeShape.h"
#include "ktManipulator/foundation/shape/KtConvexPolyhedron.h"
#include "ktManipulator/foundation/shape/KtCylinderShape.h"
#include "ktManipulator/foundation/shape/KtEllipsoidShape.h"
#include "ktManipulator/foundation/shape/KtPolyPhysicalExtent.h"
#include "ktManipulator/foundation/shape/KtSphereShape.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

template class KtXmlVariableVectorType<KtBasePhysicalExtent>;

const KtToken& KtExtentVector::classToken() {
  return KtGeom::KtMembersToken;
}

void KtExtentVector::registerComponentCreators() {
  KtExtentUnion::registerExtents(*this);
}

const KtToken& KtExtentUnion::classToken() {
  return KtGeom::KtExtentUnionToken;
}

void KtExtentUnion::registerExtents(KtXmlBaseVariableCompoundType& holder) {
  const auto add = [&holder]<class Cls>(const Cls*) {
    holder.registerComponentCreator(Cls::classToken(), Cls::creator);
  };
  add(static_cast<KtBoxShape*>(nullptr));
  add(static_cast<KtCapsuleShape*>(nullptr));
  add(static_cast<KtConeShape*>(nullptr));
  add(static_cast<KtConvexPolyhedron*>(nullptr));
  add(static_cast<KtCylinderShape*>(nullptr));
  add(static_cast<KtEllipsoidShape*>(nullptr));
  add(static_cast<KtPolyPhysicalExtent*>(nullptr));
  add(static_cast<KtSphereShape*>(nullptr));
}

void KtExtentUnion::registerComponents() {
  KtBaseUnion::registerComponents();
  registerComponent(KtGeom::KtMembersToken, &members_);
}

KtConvexPart KtExtentUnion::convexPart(KtU32 index) const {
  KtConvexPart part = KtBaseUnion::convexPart(index);
  if (part.shape() != nullptr) part.setOwner(*this);
  return part;
}

const KtShape* KtExtentUnion::member(KtU32 index) const {
  return index < members_.size() ? members_.vectorContainer()[index] : nullptr;
}

KtShape* KtExtentUnion::member(KtU32 index) {
  return index < members_.size() ? members_.vectorContainer()[index] : nullptr;
}
