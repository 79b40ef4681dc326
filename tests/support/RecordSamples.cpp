#include "support/SampleKit.h"

namespace {

using namespace samplekit;

KtXmlVectorType<Text> library() {
  return {1, std::string("sampleLibrary")};
}

}  // namespace

void addRecordSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(sample<KtManipulatorLinkIdentifier>("ManipulatorLinkIdentifier", 3U, "elbow \"left\""));
  add(filled<KtManipulatorSelfCollisionLinkMap>("ManipulatorSelfCollisionLinkMap", [](auto& map) {
    map.setLinkCollisionCanditateByIdentifier("upper", "fore", true);
    map.setLinkCollisionCanditateByIdentifier("fore", "fore", false);
    map.setLinkCollisionCanditateByIdentifier("", "upper", false);
  }));
  add(filled<KtSystemCollisionExclusionMap>("SystemCollisionExclusionMap", [](auto& map) {
    map.excludeManipulatorCollisionCandidates(4, 1);
    map.excludeManipulatorCollisionCandidates(1, 2);
    map.excludeLinkCollisionCandidates(3, "a link", 0);
    map.excludeLinkCollisionCandidate(2, "b", 0, "<c>");
    map.excludeLinkCollisionCandidate(0, "<c>", 1, "");
  }));
  add(filled<KtManipulatorAttachmentMap>("ManipulatorAttachmentMap", [](auto& map) {
    map.attachManipulator(2, 0, "flange", kFrame);
    map.attachManipulator(1, 2, "", {});
  }));
  add(filled<KtLinkReferenceDescription>("LinkReferenceDescription", [](auto& reference) {
    reference.setIsShapeReferenced(true);
    reference.setReferencedLinkLabel("first finger");
  }));
  add(filled<KtManipulatorReferenceDescription>("ManipulatorReferenceDescription",
                                                [](auto& reference) {
                                                  reference.setIsManipulatorReferenced(true);
                                                  reference.setReferencedManipulatorLabel("robot");
                                                }));
  add(filled<KtLinkAttachment>("LinkAttachment", [](auto& attachment) {
    attachment.setManipulatorIndex(2);
    attachment.setLinkIdentifier("tool");
    attachment.setFrame(kFrame);
  }));
  add(filled<KtPropagationDescriptor>("PropagationDescriptor", [](auto& descriptor) {
    descriptor.setCheckForCollisions(false);
    descriptor.setCollisionDetectionTolerance(0.25);
    descriptor.setCollisionDetectionFidelity(3);
  }));
  add(filled<KtXmlVectorType<KtPropagationResultData>>("PropagationResults", [](auto& list) {
    list.resize(2);
    list[1].setHitJointLimit(true);
    list[1].setHitSingularity(true);
    list[1].setCollisionOccurred(true);
    list[1].setCollidedLink(ktBaseIndex);
    list[1].setLinkIndexAtJointLimit(7);
    list[1].setOtherCollidedLink(8);
    list[1].setOtherCollidedManipulator(9);
    list[1].registerGenericStoppingCriterion("tips & falls");
  }));
  add(filled<KtSystemProcessingParameters>(
      "SystemProcessingParameters", [](auto& parameters) { parameters.setMaxGJKIterations(5); }));
  add(filled<KtXmlMapType<Text, KtStoppingCriterionVector>>("TextToStoppingCriteria",
                                                            [](auto& map) {
                                                              KtStoppingCriterionVector list;
                                                              list.setAddLibraries(library());
                                                              map.add(std::string("arm"), list);
                                                            }));
  add(filled<KtLinkInteractionsVector>("LinkInteractionsVector",
                                       [](auto& list) { list.setAddLibraries(library()); }));
}
