/// @file
/// What mass matrices are made of.
#pragma once

#include <vector>

#include "ktManipulator/foundation/geometry/KtRotationMatrix.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"
#include "ktManipulator/state/KtStatedSystemStruct.h"

class KtIndividualManipulator;
class KtManipulatorActiveState;

namespace Kt::detail {

/// The unit motion of each joint and the force that it takes to move so all that the joint carries,
/// in the DH frame of the base. In one common frame an entry of the mass matrix is the product of
/// one joint's motion and another's force.
class CompositeColumns {
 public:
  /// Computes the columns. A link that is missing, or none of the manipulator's, has zeros.
  void compute(const KtIndividualManipulator& manipulator, KtManipulatorActiveState& activeState,
               const KtStatedSystemStruct* asker);
  /// Reports links that are missing, as the matrix D does.
  static void reportMissing(const KtIndividualManipulator& manipulator);

  /// For each joint the one that carries it; `count()` for none.
  const std::vector<KtU32>& parents() const noexcept { return parents_; }
  /// How many joints there are.
  KtU32 count() const noexcept { return forces_.columns(); }
  /// Six rows, force first: column i is what joint i takes.
  const KtReArray& forces() const noexcept { return forces_; }
  /// Fills the square array of the joints, which holds zeros, with the mass matrix.
  void getMassMatrix(KtReArray& mass) const;
  /// Fills an array with the forces, a row for each joint.
  void getCoupling(KtReArray& coupling) const { forces_.transpose(coupling); }

 private:
  struct Frame {
    RotationMatrix r;
    KtVector p;
  };

  KtReArray motions_;  // a row for each joint, linear first
  KtReArray forces_;
  std::vector<Frame> frames_;    // of the links in the base
  std::vector<KtU32> parents_;   // the inboard joint; count() for the base
  std::vector<KtU32> carried_;   // how many joints a joint carries, itself included
  std::vector<KtU32> expected_;  // work space
  bool isDepthFirst_ = false;    // whether what a joint carries follows it in the numbering
};

}  // namespace Kt::detail
