#include "ktManipulator/state/KtManipulatorExternalForce.h"

#include <algorithm>

#include "ktManipulator/foundation/core/KtPrint.h"

template class KtXmlVectorType<KtManipulatorExternalForce>;

const KtGeneralForce KtManipulatorExternalForce::m_theNullGeneralForce;

void KtManipulatorExternalForce::registerComponents() {
  registerComponent(KtManip::KtLinkGeneralForcesToken, &linkForces_);
  registerComponent(KtManip::KtBaseGeneralForceToken, &baseForce_);
}

void KtManipulatorExternalForce::setToZeros() {
  baseForce_ = m_theNullGeneralForce;
  std::ranges::fill(linkForces_.elements(), m_theNullGeneralForce);
}

const KtGeneralForce& KtManipulatorExternalForce::outOfRange(KtU32 index) {
  // Signed, so that the index of a link that was never mapped reads -1.
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtManipulatorExternalForce::operator[]: index %d out of range.  "
                              "Returning zero force.\n",
                              static_cast<int>(index));
  return m_theNullGeneralForce;
}
