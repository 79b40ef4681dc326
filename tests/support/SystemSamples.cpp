#include "support/SampleKit.h"

namespace {

using namespace samplekit;

KtIndividualManipulator arm(const char* label) {
  KtManipulatorLink link;
  link.setLabel("upper arm");
  link.setLinkKinematics(KtDenavitHartenberg::defaultObject());
  link.setShape(KtSphereShape());
  link.setMassProperties(KtRigidBodyMassProperties::defaultObject());
  KtIndividualManipulator arm;
  arm.setLabel(label);
  arm.addLinkToEndOfChain(link);
  return arm;
}

KtManipulatorSystem twoArms() {
  KtManipulatorSystem system;
  KtSystemEnvironment environment;
  environment.setCoordSysXForm(kFrame);
  environment.setUpGravityVector({0.0, 0.0, 9.81});
  system.setEnvironment(environment);
  system.addManipulator(arm("left"));
  system.addManipulator(arm("right"));
  system.findAndConvertToReferences();
  KtManipulatorAttachmentMap attachments;
  attachments.attachManipulator(1, 0, "upper arm", kFrame);
  system.setManipulatorAttachmentMap(attachments);
  KtSystemCollisionExclusionMap exclusions;
  exclusions.excludeLinkCollisionCandidate(0, "upper arm", 1, "right");
  system.setCollisionExclusionMap(exclusions);
  KtLinkInteractionsVector interactions;
  interactions.setAddLibraries(someLibrary());
  system.setLinkInteractionsVector(interactions);
  return system;
}

template <class Body>
void fillBody(Body& body) {
  body.setShape(KtSphereShape());
  body.setPrimaryFrame(kFrame);
  body.setlinkIdentifier("boom");
}

}  // namespace

void addSystemSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(tableSample<KtSystemEnvironment>("SystemEnvironment"));
  add(sample<KtManipulatorSystem>("ManipulatorSystem", twoArms()));
  add(filled<KtStatedSystem>("StatedSystem", [](auto& stated) {
    stated.setFromSystem(twoArms());
    KtVelocityState velocity = stated.state().velocityStates()[1];
    velocity.setGeneralVelocity(KtGeneralMotion({1.0, 2.0, 3.0}, {-0.1, 0.2, -0.3}));
    stated.setIndividualVelocityState(1, velocity);
  }));
  add(filled<KtQuadrilateralFixedSliderJointOAObject>("FixedSliderOA", fillBody));
  add(filled<KtQuadrilateralFixedSliderJointCBObject>("FixedSliderCB", fillBody));
  add(filled<KtQuadrilateralPivotedSliderJointBObject>("PivotedSliderB", fillBody));
  add(filled<KtQuadrilateralPivotedSliderJointCObject>("PivotedSliderC", fillBody));
  add(filled<KtGeneralBoundObjectVector>("GeneralBoundObjectVector", [](auto& list) {
    list.pushBack(KtQuadrilateralFixedSliderJointOAObject());
    list.pushBack(KtQuadrilateralFixedSliderJointCBObject());
    list.pushBack(KtQuadrilateralPivotedSliderJointBObject());
    list.pushBack(KtQuadrilateralPivotedSliderJointCObject());
  }));
}
