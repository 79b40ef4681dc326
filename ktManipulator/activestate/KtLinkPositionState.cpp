#include "ktManipulator/activestate/KtLinkPositionState.h"

template class KtXmlVectorType<KtLinkPositionState>;

void KtLinkPositionState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtDhFrameToken, &dhFrame_);
  registerComponent(KtManip::KtPrimaryFrameToken, &primaryFrame_);
  registerComponent(KtManip::KtLocationInSystemValidToken, valid_.component(kLocationInSystem));
  registerComponent(KtManip::KtDhTransformValidToken, valid_.component(kDhTransform));
}
