#include "ktManipulator/propagation/KtSystemProcessingParameters.h"

void KtSystemProcessingParameters::registerComponents() {
  registerComponent(KtManip::KtMaxGjkIterationsToken, &maxGJKIterations_);
}
