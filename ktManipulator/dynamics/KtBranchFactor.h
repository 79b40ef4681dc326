/// @file
/// The factor of a joint-space mass matrix.
#pragma once

#include <vector>

#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"

namespace Kt::detail {

/// The factor G of a mass matrix H = G G^T: G^T = D^(1/2) L, L lower triangular with ones on its
/// diagonal and D diagonal. Row i of L has entries only in the columns of joints that carry joint
/// i, as H itself: nothing fills in, and nothing is spent on branches.
///
/// @see R. Featherstone, Efficient factorization of the joint-space inertia matrix for branched
///      kinematic trees, International Journal of Robotics Research 24 (2005), 487-500
class BranchFactor {
 public:
  /// Factors a mass matrix.
  ///
  /// @param mass     symmetric; only its lower triangle is read. Its memory is taken over, for that
  ///                 of the last factor
  /// @param parents  for each joint the one that carries it, which has a lower index; any number
  ///                 from the count of joints on for none
  void factor(KtReArray& mass, const std::vector<KtU32>& parents);
  /// Whether this factor is cheaper than a dense one: for few joints, or where less than half of
  /// the lower triangle is non-zero.
  static bool isWorthIt(const std::vector<KtU32>& parents);
  /// Solves G x = b in place, for the columns of an array with a row for each joint.
  void solveInwards(KtReArray& x) const;
  /// Solves G^T x = b in place. After `solveInwards` this solves H x = b.
  void solveOutwards(KtReArray& x) const;

 private:
  void listCarriers(const std::vector<KtU32>& parents);
  template <KtU32 kColumns>
  void solveInwards(double* x, KtU32 given) const;
  template <KtU32 kColumns>
  void solveOutwards(double* x, KtU32 given) const;

  KtReArray lower_;             // L, strictly below its diagonal
  std::vector<double> scales_;  // D^(-1/2)
  std::vector<KtU32> parents_;
  // The joints that carry joint i, from the nearest on: from starts_[i] up to starts_[i + 1].
  std::vector<KtU32> carriers_;
  std::vector<KtU32> starts_;
};

}  // namespace Kt::detail
