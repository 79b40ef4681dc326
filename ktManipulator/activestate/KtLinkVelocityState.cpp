#include "ktManipulator/activestate/KtLinkVelocityState.h"

template class KtXmlVectorType<KtLinkVelocityState>;

void KtLinkVelocityState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerMotions(KtManip::KtDhFrameVelocityInLocalToken, KtManip::KtDhFrameVelocityInSystemToken,
                  KtManip::KtPrimaryFrameVelocityInSystemToken);
}
