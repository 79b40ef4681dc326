#include "support/SampleKit.h"

namespace {

using namespace samplekit;

KtManipulatorLink link() {
  KtManipulatorLink link;
  link.setLabel("upper arm");
  link.setLinkKinematics(KtDenavitHartenberg::defaultObject());
  link.setShape(KtSphereShape());
  link.setJointActuator(KtJointActuator::defaultObject());
  link.setMassProperties(KtRigidBodyMassProperties::defaultObject());
  link.addMassProperties("load", KtRigidBodyMassProperties::pointMass(2.0));
  KtSpringProperties spring;
  spring.setSpringConstant(3.0);
  link.setSpringProperties(spring);
  KtDamperProperties damper;
  damper.setDamperConstant(4.0);
  link.setDamperProperties(damper);
  KtLinkReferenceDescription description;
  description.setReferencedLinkLabel("another");
  link.setLinkReferenceDescription(description);
  link.setUpperLimitConstraint(KtMultivariableJointStateConstraint());
  link.setLowerLimitConstraint(KtMultivariableJointStateConstraint());
  link.addNamedPoint("tip", {1.0, 2.0, 3.0});
  link.addNamedFrame("tool", kFrame);
  link.setIsConstrained(true);
  return link;
}

}  // namespace

void addModelSamples(std::vector<Sample>& samples) {
  samples.push_back(filled<KtManipulatorLink>("Link", [](auto& top) {
    top = link();
    top.addChild(link());
    top.addChild(KtManipulatorLink());
  }));
  samples.push_back(filled<KtIndividualManipulator>("Manipulator", [](auto& arm) {
    arm.setLabel("arm");
    arm.setLinkKinematics(KtDenavitHartenberg::defaultObject());
    arm.addChild(link());
    arm.addLinkToEndOfChain(link());
    arm.setMassProperties(KtRigidBodyMassProperties::defaultObject());
    arm.addMassProperties("load", KtRigidBodyMassProperties::pointMass(2.0));
    arm.setShape(KtSphereShape());
    arm.setCoordSysXForm(kFrame);
    arm.setAbsoluteBoundingSphere(KtSphere({1.0, 2.0, 3.0}, 0.25, 3));
    arm.setIsFixedBase(false);
    arm.setOptimizeOnLoad(true);
    arm.setIsControllable(false);
    KtManipulatorReferenceDescription description;
    description.setReferencedManipulatorLabel("another");
    arm.setManipulatorReferenceDescription(description);
    KtGeneralBoundObjectVector objects;
    objects.pushBack(KtQuadrilateralFixedSliderJointOAObject());
    arm.setGeneralBoundObjects(objects);
    KtStateConstraintVector constraints;
    constraints.pushBack(KtMultivariableJointStateConstraint());
    arm.setStateConstraints(constraints);
    KtStateEqualityConstraintVector equalities;
    equalities.pushBack(KtLinearStateEqualityConstraint());
    arm.setStateEqualityConstraints(equalities);
    KtStoppingCriterionVector criteria;
    criteria.setAddLibraries(someLibrary());
    arm.setStoppingCriteria(criteria);
    KtSurfaceMap surfaces;
    surfaces.add(std::string("steel"), KtDataMap::boundingColor());
    arm.setSurfaces(surfaces);
  }));
}
