#include "ktManipulator/model/KtSystemEnvironment.h"

void KtSystemEnvironment::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtFoundCommon::KtCoordinateSystemTransformToken, &coordSysXForm_);
  registerComponent(KtManip::KtUpGravityVectorToken, &upGravityVector_);
}
