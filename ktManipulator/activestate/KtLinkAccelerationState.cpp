#include "ktManipulator/activestate/KtLinkAccelerationState.h"

template class KtXmlVectorType<KtLinkAccelerationState>;

void KtLinkAccelerationState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerMotions(KtManip::KtDhFrameAccelerationInLocalToken,
                  KtManip::KtDhFrameAccelerationInSystemToken,
                  KtManip::KtPrimaryFrameAccelerationInSystemToken);
}
