#include "support/SampleKit.h"

using namespace samplekit;

namespace {

// Through its setter the primary frame brings its inverse up to date, as reading does.
template <class Link>
void fillLink(Link& link) {
  fillComponents(link);
  link.setPrimaryFrame(fromTable<Link>().primaryFrame());
}

}  // namespace

void addKinematicsSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(filled<KtDenavitHartenberg>("DenavitHartenberg", [](auto& link) {
    link = KtDenavitHartenberg::defaultObject();
    link.setDhType(KtDenavitHartenberg::kGeneralCraig);
    link.setPrecursor(kFrame);
  }));
  add(filled<KtScrewTypeLink>("Screw", fillLink));
  add(filled<KtQuadrilateralTypeLink>("Quadrilateral", fillLink));
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
