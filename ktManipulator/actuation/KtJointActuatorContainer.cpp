#include "ktManipulator/actuation/KtJointActuatorContainer.h"

#include "ktManipulator/actuation/KtOldJointActuator.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

template class KtXmlVariableElementType<KtBaseJointActuator>;

const KtToken& KtJointActuatorContainer::classToken() {
  return KtManip::KtJointActuatorContainerToken;
}

void KtJointActuatorContainer::registerComponentCreators() {
  registerComponentCreator(KtOldJointActuator::classToken(), KtOldJointActuator::creator);
}
