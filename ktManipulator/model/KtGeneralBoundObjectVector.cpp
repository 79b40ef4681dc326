#include "ktManipulator/model/KtGeneralBoundObjectVector.h"

#include "ktManipulator/model/KtQuadrilateralFixedSliderJointCBObject.h"
#include "ktManipulator/model/KtQuadrilateralFixedSliderJointOAObject.h"
#include "ktManipulator/model/KtQuadrilateralPivotedSliderJointBObject.h"
#include "ktManipulator/model/KtQuadrilateralPivotedSliderJointCObject.h"

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
