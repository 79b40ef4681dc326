#include "ktManipulator/kinematics/KtBaseGeneralBoundObject.h"

void KtBaseGeneralBoundObject::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtGeneralBoundObjectShapeContainerToken, &shapeContainer_);
  registerComponent(KtManip::KtPrimaryFrameToken, &primaryFrame_);
}
