#include "ktManipulator/dynamics/KtBranchFactor.h"

#include <cmath>
#include <limits>

#include "ktManipulator/foundation/core/KtMath.h"

namespace Kt::detail {

namespace {

// target -= factor * row, for so many entries.
inline void subtractRow(double* __restrict target, const double* __restrict row, double factor,
                        std::size_t count) {
  for (std::size_t j = 0; j < count; ++j) target[j] -= factor * row[j];
}

// Whether each joint is carried by the one before it, given how many carriers all have together:
// only then they are as many.
bool isChain(std::size_t joints, std::size_t carriers) {
  return 2 * carriers == joints * (joints - 1);
}

}  // namespace

bool BranchFactor::isWorthIt(const std::vector<KtU32>& parents) {
  const std::size_t n = parents.size();
  if (n < 16) return true;  // too few for what a dense factorisation has to set up
  std::size_t entries = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i; j < n; j = parents[j]) ++entries;
  }
  return 4 * entries < n * n;
}

void BranchFactor::listCarriers(const std::vector<KtU32>& parents) {
  const KtU32 n = static_cast<KtU32>(parents.size());
  parents_ = parents;
  carriers_.clear();
  starts_.resize(n + 1);
  for (KtU32 i = 0; i < n; ++i) {
    starts_[i] = static_cast<KtU32>(carriers_.size());
    for (KtU32 j = parents[i]; j < n; j = parents[j]) carriers_.push_back(j);
  }
  starts_[n] = static_cast<KtU32>(carriers_.size());
}

void BranchFactor::factor(KtReArray& mass, const std::vector<KtU32>& parents) {
  lower_.swap(mass);
  const KtU32 n = lower_.rows();
  scales_.resize(n);
  if (parents != parents_) listCarriers(parents);
  // A pivot that is lost in rounding is raised, as `KtReArray::choleskyDecomposition` does it.
  const double rounding = n * std::numeric_limits<double>::epsilon();
  for (KtU32 k = 0; k < n; ++k) scales_[k] = KtMath::nonZeroPos(rounding * lower_[k][k]);
  const bool chain = isChain(n, carriers_.size());
  // H = L^T D L first, whose pivots need no root, which each would have to wait for.
  for (KtU32 k = n; k-- > 0;) {
    double* row = lower_[k];
    const double least = scales_[k];
    const bool raised = row[k] <= least;
    scales_[k] = 1.0 / (raised ? least : row[k]);
    const double reciprocal = raised ? 0.0 : scales_[k];
    if (chain) {
      for (KtU32 i = k; i-- > 0;) {
        const double factor = row[i] * reciprocal;
        subtractRow(lower_[i], row, factor, i + 1);
        row[i] = factor;
      }
      continue;
    }
    const KtU32* first = carriers_.data() + starts_[k];
    const KtU32* last = carriers_.data() + starts_[k + 1];
    for (const KtU32* i = first; i != last; ++i) {
      const double factor = row[*i] * reciprocal;
      double* target = lower_[*i];
      for (const KtU32* j = i; j != last; ++j) target[*j] -= factor * row[*j];
      row[*i] = factor;
    }
  }
  for (double& scale : scales_) scale = std::sqrt(scale);
}

// The number of columns is that of the template where it is not 0, so that the loops unroll.

template <KtU32 kColumns>
void BranchFactor::solveInwards(double* x, KtU32 given) const {
  const std::size_t columns = kColumns != 0 ? kColumns : given;
  if (kColumns == 1 && isChain(lower_.rows(), carriers_.size())) {
    for (KtU32 i = lower_.rows(); i-- > 0;) {
      subtractRow(x, lower_[i], x[i], i);
      x[i] *= scales_[i];
    }
    return;
  }
  for (KtU32 i = lower_.rows(); i-- > 0;) {
    double* own = x + i * columns;
    const double* row = lower_[i];
    for (KtU32 k = starts_[i]; k < starts_[i + 1]; ++k) {
      const double factor = row[carriers_[k]];
      double* __restrict target = x + carriers_[k] * columns;
      for (std::size_t c = 0; c < columns; ++c) target[c] -= factor * own[c];
    }
    for (std::size_t c = 0; c < columns; ++c) own[c] *= scales_[i];
  }
}

template <KtU32 kColumns>
void BranchFactor::solveOutwards(double* x, KtU32 given) const {
  const std::size_t columns = kColumns != 0 ? kColumns : given;
  if (kColumns == 1 && isChain(lower_.rows(), carriers_.size())) {
    for (KtU32 i = 0; i < lower_.rows(); ++i) {
      const double* row = lower_[i];
      double sum = x[i] * scales_[i];
      for (KtU32 k = i; k-- > 0;) sum -= row[k] * x[k];
      x[i] = sum;
    }
    return;
  }
  for (KtU32 i = 0; i < lower_.rows(); ++i) {
    double* __restrict own = x + i * columns;
    const double* row = lower_[i];
    for (std::size_t c = 0; c < columns; ++c) own[c] *= scales_[i];
    for (KtU32 k = starts_[i]; k < starts_[i + 1]; ++k) {
      const double factor = row[carriers_[k]];
      const double* known = x + carriers_[k] * columns;
      for (std::size_t c = 0; c < columns; ++c) own[c] -= factor * known[c];
    }
  }
}

void BranchFactor::solveInwards(KtReArray& x) const {
  switch (x.columns()) {
    case 1:
      return solveInwards<1>(x[0], 1);
    case 6:
      return solveInwards<6>(x[0], 6);
    default:
      return solveInwards<0>(x[0], x.columns());
  }
}

void BranchFactor::solveOutwards(KtReArray& x) const {
  if (x.columns() == 1) {
    solveOutwards<1>(x[0], 1);
  } else {
    solveOutwards<0>(x[0], x.columns());
  }
}

}  // namespace Kt::detail
