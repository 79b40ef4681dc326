#include "ktManipulator/activestate/KtLinkVelocityState.h"

template class KtXmlVectorType<KtLinkVelocityState>;

bool KtLinkVelocityState::read(KtXmlReader& reader) {
  const bool good = KtXmlPersistent::read(reader);
  motions_.invalidateUnpersisted();
  return good;
}

void KtLinkVelocityState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtDhFrameVelocityInLocalToken,
                    motions_.motionComponent(kDhFrameVelocityInLocal));
  registerComponent(KtManip::KtDhFrameVelocityInSystemToken,
                    motions_.motionComponent(kDhFrameVelocityInSystem));
  registerComponent(KtManip::KtPrimaryFrameVelocityInSystemToken,
                    motions_.motionComponent(kPrimaryFrameVelocityInSystem));
  registerComponent(KtManip::KtLocalDhValidToken, motions_.validComponent(kDhFrameVelocityInLocal));
  registerComponent(KtManip::KtSystemDhValidToken,
                    motions_.validComponent(kDhFrameVelocityInSystem));
  registerComponent(KtManip::KtSystemPrimaryValidToken,
                    motions_.validComponent(kPrimaryFrameVelocityInSystem));
}
