#include "ktManipulator/activestate/KtLinkMassState.h"

template class KtXmlVectorType<KtLinkMassState>;

void KtLinkMassState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtCrbiToken, &crbi_);
  registerComponent(KtManip::KtCrbiValidToken, valid_.component(kCrbi));
}
