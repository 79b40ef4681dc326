#include "support/SampleKit.h"

using namespace samplekit;

void addKinematicsSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(filled<KtDenavitHartenberg>("DenavitHartenberg", [](auto& link) {
    link = KtDenavitHartenberg::defaultObject();
    link.setDhType(KtDenavitHartenberg::kGeneralCraig);
    link.setPrecursor(kFrame);
  }));
  add(filled<KtScrewTypeLink>("Screw", [](auto& link) {
    link.setPrimaryFrame(kFrame);
    link.setPrecursor(kFrame.inverse());
    link.setPitch(-0.125);
  }));
  add(filled<KtQuadrilateralTypeLink>("Quadrilateral", [](auto& link) {
    link.setPrimaryFrame(kFrame);
    link.setJointType(KtQuadrilateralTypeLink::kPivotedSlider);
    link.setPrecursor(kFrame.inverse());
    link.setNominalLength(1.1);
    link.setD1Length(0.6);
    link.setD2Length(0.5);
    link.setOppositeLength(1.3);
    link.setZDistanceA(0.2);
    link.setZDistanceB(-0.3);
    link.setZDistanceC(0.4);
  }));
  add(filled<KtLinkKinematicsContainer>("LinkKinematicsContainer", [](auto& holder) {
    holder.setTopElement(KtDenavitHartenberg::defaultObject());
  }));
}

void addDynamicsSamples(std::vector<Sample>& samples) {
  const auto inertia = [] {
    KtArticulatedBodyInertia i;
    i.setFromRigidBody(KtRigidBodyMassProperties::defaultObject());
    return i;
  }();
  samples.push_back(sample<KtArticulatedBodyInertia>("ArticulatedBodyInertia", inertia));
  samples.push_back(sample<KtArticulatedBodyDynamics>(
      "ArticulatedBodyDynamics", inertia, KtGeneralForce({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0})));
}
