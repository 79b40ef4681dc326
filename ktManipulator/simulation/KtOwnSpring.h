/// @file
/// Springs that have a potential.
#pragma once

#include "ktManipulator/model/KtIndividualManipulator.h"

namespace Kt::detail {

/// Whether the spring of a link acts on the link's own joint, and on no other.
inline bool hasOwnSpring(const KtIndividualManipulator& manipulator,
                         const KtManipulatorLink& link) {
  const KtSpringProperties& spring = link.springProperties();
  return spring.springConstant() != 0.0 && spring.associatedJoints().size() == 1 &&
         spring.weightingFactors().size() == 1 && spring.springOffsets().size() == 1 &&
         manipulator.linkByIdentifier(spring.associatedJoints()[0]) == &link;
}

}  // namespace Kt::detail
