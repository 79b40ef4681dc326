#include "ktManipulator/kinematics/KtGeneralBoundObjectVector.h"

#include "ktManipulator/kinematics/KtQuadrilateralBoundObjects.h"

template class KtXmlVariableVectorType<KtBaseGeneralBoundObject>;

void KtGeneralBoundObjectVector::registerComponentCreators() {
  registerComponentCreator(KtQuadrilateralFixedSliderJointOAObject::classToken(),
                           KtQuadrilateralFixedSliderJointOAObject::creator);
  registerComponentCreator(KtQuadrilateralFixedSliderJointCBObject::classToken(),
                           KtQuadrilateralFixedSliderJointCBObject::creator);
  registerComponentCreator(KtQuadrilateralPivotedSliderJointBObject::classToken(),
                           KtQuadrilateralPivotedSliderJointBObject::creator);
  registerComponentCreator(KtQuadrilateralPivotedSliderJointCObject::classToken(),
                           KtQuadrilateralPivotedSliderJointCObject::creator);
}
