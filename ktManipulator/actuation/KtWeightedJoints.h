#pragma once

#include <string>

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"

class KtIndividualManipulator;

namespace Kt::detail {

/// The weighted sum over joints that springs and dampers act on: for each label the weight times
/// the joint's value less its offset. A label without a link is reported under the name of the
/// class and left out; a link without a value counts as 0.
///
/// @param offsets  null for none; else as long as `labels`, like `weights`
double weightedJointSum(const char* className, const KtIndividualManipulator& manipulator,
                        const KtXmlVectorType<KtXmlBasicType<std::string>>& labels,
                        const KtXmlVectorType<KtXmlBasicType<double>>& weights,
                        const KtXmlVectorType<KtXmlBasicType<double>>& values,
                        const KtXmlVectorType<KtXmlBasicType<double>>* offsets);

}  // namespace Kt::detail
