// Named points and frames of a link; scaling, moving and replacing a link.
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

namespace {

void report(const char* message) {
  Kt::Print::instance().write(Kt::Print::kError, "%s", message);
}

}  // namespace

// Named points and frames

const KtManipulatorLink::PointMap& KtManipulatorLink::namedPoints() const {
  return namedPoints_;
}
void KtManipulatorLink::setNamedPoints(const PointMap& points) {
  namedPoints_ = points;
}

bool KtManipulatorLink::lookupNamedPoint(const std::string& name, KtVector& point) const {
  const KtXmlVector* found = namedPoints_.lookupPointer(name);
  if (found != nullptr) point = *found;
  return found != nullptr;
}

void KtManipulatorLink::addNamedPoint(const std::string& name, const KtVector& point) {
  if (namedPoints_.lookupPointer(name) != nullptr) {
    report("KtManipulatorLink::addNamedPoint point already exists\n");
  } else {
    namedPoints_.add(name, point);
  }
}

const KtManipulatorLink::FrameMap& KtManipulatorLink::namedFrames() const {
  return namedFrames_;
}
void KtManipulatorLink::setNamedFrames(const FrameMap& frames) {
  namedFrames_ = frames;
}

bool KtManipulatorLink::lookupNamedFrame(const std::string& name,
                                         KtCoordinateSystemTransformation& frame) const {
  const KtCoordinateSystemTransformation* found = namedFrames_.lookupPointer(name);
  if (found != nullptr) frame = *found;
  return found != nullptr;
}

void KtManipulatorLink::addNamedFrame(const std::string& name,
                                      const KtCoordinateSystemTransformation& frame) {
  if (namedFrames_.lookupPointer(name) != nullptr) {
    report("KtManipulatorLink::addNamedFrame frame already exists\n");
  } else {
    namedFrames_.add(name, frame);
  }
}

// Scaling, moving, replacing

void KtManipulatorLink::scaleBy(double factor) {
  scaleIndividualLinkBy(factor);
  for (KtManipulatorLink& child : childLinks_.elements()) child.scaleBy(factor);
}

// Shapes, base mass, primary frame, mass in the DH frame, joint model and actuator, in this order.
// A joint model scales its own lengths but not the primary frame. The link scales it here, so that
// the body keeps its relative position. The total mass doesn't change; the mass in the DH frame is
// that total mass in the scaled primary frame.
void KtManipulatorLink::scaleIndividualLinkBy(double factor) {
  memberShapeContainer_.scaleBy(factor);
  baseMassProperties_.scaleBy(factor);
  KtCoordinateSystemTransformation frame = primaryFrame();
  frame.setTranslation(frame.translation() * factor);
  linkKinematicsContainer_.setPrimaryFrame(frame);
  updateDHMassProperties();
  linkKinematicsContainer_.scaleBy(factor);
  const double scalability = linkKinematicsContainer_.jointParameterScalability();
  if (scalability != 0.0) {
    jointActuator_.scaleBy(factor, factor * scalability + (1.0 - scalability));
    updateDefaultLimitConstraints();
  }
}

void KtManipulatorLink::transformLinkTreeBy(const KtCoordinateSystemTransformation& t) {
  linkKinematicsContainer_.transformBy(t);
}

void KtManipulatorLink::transformComponentsBy(KtCoordinateSystemTransformation t) {
  baseMassProperties_.transformBy(t);
  memberShapeContainer_.transformBy(t);
}

bool KtManipulatorLink::transformPrimaryFrame(const KtCoordinateSystemTransformation& frame) {
  // The total mass doesn't change, so the mass in the DH frame stays outdated until
  // updateMassProperties and updateDHMassProperties are called: programs rely on the order.
  transformComponentsBy(frame.inverse() * primaryFrame());
  setPrimaryFrame(frame);
  return true;
}

void KtManipulatorLink::copyLinkProperties(KtManipulatorLink& target) const {
  target.setLabel(label());
  target.setDamperProperties(damperProperties());
  target.setJointActuator(jointActuator());
  target.setLinkKinematicsContainer(linkKinematicsContainer());
  target.setMassProperties(massProperties(nullptr));
  target.setSpringProperties(springProperties());
  KtLinkReferenceDescription description = linkReferenceDescription();
  description.setIsShapeReferenced(false);
  target.setLinkReferenceDescription(description);
  target.setShapeContainer(shapeContainer());
}

bool KtManipulatorLink::replaceLinkProperties(const std::string& label,
                                              const KtManipulatorLink& source, bool withShape) {
  if (label != this->label()) {
    for (KtManipulatorLink& child : childLinks_.elements()) {
      if (child.replaceLinkProperties(label, source, withShape)) return true;
    }
    return false;
  }
  setDamperProperties(source.damperProperties());
  setJointActuator(source.jointActuator());
  setLinkKinematicsContainer(source.linkKinematicsContainer());
  setMassProperties(source.massProperties(nullptr));
  setSpringProperties(source.springProperties());
  setNamedPoints(source.namedPoints());
  setNamedFrames(source.namedFrames());
  upperLimitContainer_ = source.upperLimitContainer_;
  lowerLimitContainer_ = source.lowerLimitContainer_;
  // The default constraints depend on this link's own index in the state.
  updateDefaultLimitConstraints();
  if (!withShape) return true;
  // Find them first: the source may be this link, or use its shapes.
  const KtShapeContainer& shapes = source.shapeContainer();
  linkReferenceDescription_.setIsShapeReferenced(false);
  referenceLink_ = this;
  setShapeContainer(shapes);
  return true;
}
