#include "ktManipulator/state/KtManipulatorTorque.h"

#include "ktManipulator/state/KtJointVector.h"

template class KtXmlVectorType<KtManipulatorTorque>;

const KtManipulatorTorque KtManipulatorTorque::m_theNullManipulatorTorque;

void KtManipulatorTorque::registerComponents() {
  registerComponent(KtManip::KtJointTorquesToken, &jointTorques_);
  registerComponent(KtFoundCommon::KtGeneralForceToken, &generalForce_);
}

void KtManipulatorTorque::setJointTorques(const KtReArray& torques) {
  Kt::detail::setFromColumn(torques, jointTorques_);
}
