#include "ktManipulator/kinematics/KtScrewTypeLink.h"

#include <algorithm>

#include "ktManipulator/actuation/KtJointActuator.h"
#include "ktManipulator/foundation/core/KtMath.h"

void KtScrewTypeLink::registerComponents() {
  KtLinkKinematics::registerComponents();
  registerComponent(KtManip::KtPrecursorToken, &precursor_);
  registerComponent(KtManip::KtPitchToken, &pitch_);
}

const KtCoordinateSystemTransformation& KtScrewTypeLink::calculateTransform(double q) const {
  return keptTransform(q, [&] { transformIdentityBy(q); });
}

void KtScrewTypeLink::transformBy(KtCoordinateSystemTransformation& t, double q) const {
  constexpr double kTurn = 6.283185307179586;
  t *= precursor_;
  t.outboardTransformBy(KtVector::zVector(q), KtOrientation::zRotation(kTurn * pitch_ * q));
}

double KtScrewTypeLink::upperBoundDhFrameDistance(const KtJointActuator& actuator) const {
  const double lower = calculateTransform(actuator.lowerLimit()).translation().mag();
  const double upper = calculateTransform(actuator.upperLimit()).translation().mag();
  return std::max(lower, upper);
}

void KtScrewTypeLink::scaleBy(double factor) {
  precursor_.setTranslation(precursor_.translation() * factor);
  pitch_ = pitch_ / KtMath::nonZeroPos(factor);
}

void KtScrewTypeLink::transformBy(const KtCoordinateSystemTransformation& t) {
  precursor_ = t * precursor_;
}

void KtScrewTypeLink::changeInboardFrameBy(const KtCoordinateSystemTransformation& t) {
  precursor_ = precursor_ * t;
  transformValid_ = false;
}

void KtScrewTypeLink::setPrecursor(const KtCoordinateSystemTransformation& t) {
  precursor_ = t;
  transformValid_ = false;
}

void KtScrewTypeLink::setPitch(double turnsPerMetre) {
  pitch_ = turnsPerMetre;
  transformValid_ = false;
}

bool KtScrewTypeLink::approxEq(const KtScrewTypeLink& other, double tolerance) const {
  return KtLinkKinematics::approxEq(other, tolerance) &&
         primaryFrame().approxEq(other.primaryFrame(), tolerance);
}

bool KtScrewTypeLink::operator==(const KtScrewTypeLink& other) const {
  return KtLinkKinematics::operator==(other) && precursor_ == other.precursor_ &&
         pitch_ == other.pitch_;
}
