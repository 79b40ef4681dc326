#include "ktManipulator/activestate/KtLinkAccelerationState.h"

template class KtXmlVectorType<KtLinkAccelerationState>;

bool KtLinkAccelerationState::read(KtXmlReader& reader) {
  const bool good = KtXmlPersistent::read(reader);
  motions_.invalidateUnpersisted();
  return good;
}

void KtLinkAccelerationState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtDhFrameAccelerationInLocalToken,
                    motions_.motionComponent(kDhFrameAccelerationInLocal));
  registerComponent(KtManip::KtDhFrameAccelerationInSystemToken,
                    motions_.motionComponent(kDhFrameAccelerationInSystem));
  registerComponent(KtManip::KtPrimaryFrameAccelerationInSystemToken,
                    motions_.motionComponent(kPrimaryFrameAccelerationInSystem));
  registerComponent(KtManip::KtLocalDhValidToken,
                    motions_.validComponent(kDhFrameAccelerationInLocal));
  registerComponent(KtManip::KtSystemDhValidToken,
                    motions_.validComponent(kDhFrameAccelerationInSystem));
  registerComponent(KtManip::KtSystemPrimaryValidToken,
                    motions_.validComponent(kPrimaryFrameAccelerationInSystem));
}
