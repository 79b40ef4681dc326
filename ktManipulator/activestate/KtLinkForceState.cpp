#include "ktManipulator/activestate/KtLinkForceState.h"

template class KtXmlVectorType<KtLinkForceState>;

void KtLinkForceState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtDhFrameForceInLocalToken, &dhFrameForceInLocal_);
  registerComponent(KtManip::KtLocalDhValidToken, valid_.component(kLocalDh));
}
