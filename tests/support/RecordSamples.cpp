#include "support/SampleKit.h"

using namespace samplekit;

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
  add(tableSample<KtLinkReferenceDescription>("LinkReferenceDescription"));
  add(tableSample<KtManipulatorReferenceDescription>("ManipulatorReferenceDescription"));
  add(tableSample<KtLinkAttachment>("LinkAttachment"));
  add(tableSample<KtPropagationDescriptor>("PropagationDescriptor"));
  add(tableSample<KtSystemProcessingParameters>("SystemProcessingParameters"));
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
  add(filled<KtXmlMapType<Text, KtStoppingCriterionVector>>("TextToStoppingCriteria",
                                                            [](auto& map) {
                                                              KtStoppingCriterionVector list;
                                                              list.setAddLibraries(someLibrary());
                                                              map.add(std::string("arm"), list);
                                                            }));
  add(filled<KtLinkInteractionsVector>("LinkInteractionsVector",
                                       [](auto& list) { list.setAddLibraries(someLibrary()); }));
}
