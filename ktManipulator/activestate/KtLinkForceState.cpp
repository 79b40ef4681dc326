#include "ktManipulator/activestate/KtLinkForceState.h"

template class KtXmlVectorType<KtLinkForceState>;

bool KtLinkForceState::read(KtXmlReader& reader) {
  const bool good = KtXmlPersistent::read(reader);
  externalForceDescription_.setValid(false);
  return good;
}

void KtLinkForceState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtDhFrameForceInLocalToken, &dhFrameForceInLocal_);
  registerComponent(KtManip::KtLocalDhValidToken, valid_.component(kLocalDh));
}
