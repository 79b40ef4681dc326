#include "ktManipulator/actuation/KtWeightedJoints.h"

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

double Kt::detail::weightedJointSum(const char* className,
                                    const KtIndividualManipulator& manipulator,
                                    const KtXmlVectorType<KtXmlBasicType<std::string>>& labels,
                                    const KtXmlVectorType<KtXmlBasicType<double>>& weights,
                                    const KtXmlVectorType<KtXmlBasicType<double>>& values,
                                    const KtXmlVectorType<KtXmlBasicType<double>>* offsets) {
  double sum = 0.0;
  for (KtU32 i = 0; i < labels.size(); ++i) {
    const std::string& label = labels[i].value();
    const KtManipulatorLink* link = manipulator.linkByIdentifier(label);
    if (link == nullptr) {
      Print::instance().write(Print::kError, "%s::torque()->bad label, %s\n", className,
                              label.c_str());
      continue;
    }
    const KtU32 joint = link->linkIndex();
    if (joint >= values.size()) continue;
    const double offset = offsets != nullptr ? (*offsets)[i].value() : 0.0;
    sum += weights[i] * (values[joint] - offset);
  }
  return sum;
}
