#pragma once

#include "ktManipulator/actuation/KtBaseJointActuator.h"
#include "ktManipulator/foundation/containers/KtXmlVariableElementType.h"

/// The holder of one joint actuator of older files. It accepts `KtOldJointActuator`.
class KT_EXPORT KtJointActuatorContainer
    : public KtXmlPersistent<KtJointActuatorContainer,
                             KtXmlVariableElementType<KtBaseJointActuator>> {
 public:
  void registerComponentCreators() override;

  bool operator==(const KtJointActuatorContainer&) const = default;
  static const KtToken& classToken();
};

extern template class KtXmlVariableElementType<KtBaseJointActuator>;
