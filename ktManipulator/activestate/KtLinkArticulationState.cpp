#include "ktManipulator/activestate/KtLinkArticulationState.h"

template class KtXmlVectorType<KtLinkArticulationState>;

void KtLinkArticulationState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtArbdToken, &arbd_);
  registerComponent(KtManip::KtArbdValidToken, valid_.component(kArbd));
  registerComponent(KtManip::KtSupplementalDhAccelerationToken, &supplementalDhAcceleration_);
  registerComponent(KtManip::KtSupplementalDhAccelerationValidToken,
                    valid_.component(kSupplementalDhAcceleration));
  registerComponent(KtManip::KtSupplementalJointAccelerationToken, &supplementalJointAcceleration_);
  registerComponent(KtManip::KtSupplementalJointAccelerationValidToken,
                    valid_.component(kSupplementalJointAcceleration));
}
