#pragma once

#include "ktManipulator/foundation/core/KtExport.h"

class KtIndividualManipulator;
class KtManipulatorActiveState;
class KtVector;
struct KtStatedSystemStruct;

/// The mechanical energies of one manipulator in a state, J. Nothing here allocates once the active
/// state has its sizes.
class KT_EXPORT KtMechanicalEnergy {
 public:
  /// The energy of the motion of all links, and of the rotors that turn in step with their joints.
  ///
  /// It is summed over the links, with the velocity of a free base in the axes of the system, as
  /// states have it. `KtIndividualManipulator::computeKineticEnergy` takes that velocity in the
  /// axes of the base, so that it differs where a base that moves is turned, and has no rotors.
  ///
  /// @param manipulator  a manipulator whose links are mapped
  /// @param active       its positions and velocities; filled with what is computed
  /// @param asker        the system whose attached manipulators count as well; may be null
  static double kinetic(const KtIndividualManipulator& manipulator,
                        KtManipulatorActiveState& active, const KtStatedSystemStruct* asker);
  /// The energy of the weight of all links: 0 where the centre of mass is as high as the origin of
  /// the system.
  ///
  /// @param manipulator  a manipulator whose links are mapped
  /// @param active       its positions; filled with what is computed
  /// @param upGravity    the acceleration upwards in the axes of the system, as environments have
  ///                     it, m/s^2
  static double weight(const KtIndividualManipulator& manipulator, KtManipulatorActiveState& active,
                       const KtVector& upGravity);
  /// The energy in springs that act on the joint that they hang on, and on no other. Springs that
  /// couple joints have none in general: their torques follow from no potential.
  ///
  /// @param manipulator  a manipulator whose links are mapped
  /// @param active       its positions
  static double springs(const KtIndividualManipulator& manipulator,
                        const KtManipulatorActiveState& active);
};
