#pragma once

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

/// @file
/// Mechanical energies of one manipulator in a state, J. Nothing here allocates.

/// That of the motion of links and of the rotors of rigid joints.
///
/// It is summed over the links. The library's own sum takes the velocity of a free base in the
/// base's axes, where states have it in those of the system.
double kineticEnergy(const KtIndividualManipulator& manipulator, KtManipulatorActiveState& active,
                     const KtStatedSystemStruct* asker);

/// That of the weight of the links: 0 if the centre of mass is in the plane of the system's origin.
///
/// @param upGravity  as in environments, m/s^2
double weightEnergy(const KtIndividualManipulator& manipulator, KtManipulatorActiveState& active,
                    const KtVector& upGravity);

/// That of joint springs that act on the joint that they hang on, and on no other: the torques of
/// those that couple joints have no potential in general.
double springEnergy(const KtIndividualManipulator& manipulator,
                    const KtManipulatorActiveState& active);
