// The mass properties of a link, without and with attached manipulators.
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/model/KtManipulatorSystem.h"
#include "ktManipulator/model/KtStatedSystem.h"

namespace {

void report(const char* message) {
  Kt::Print::instance().write(Kt::Print::kError, "%s", message);
}

}  // namespace

const KtRigidBodyMassProperties& KtManipulatorLink::baseMassProperties() const {
  return baseMassProperties_;
}

void KtManipulatorLink::setBaseMassProperties(const KtRigidBodyMassProperties& properties) {
  baseMassProperties_ = properties;
  updateMassProperties();
  updateDHMassProperties();
}

void KtManipulatorLink::setMassProperties(const KtRigidBodyMassProperties& properties) {
  baseMassProperties_ = properties;
  clearMassPropertiesMap();
}

const KtManipulatorLink::MassMap& KtManipulatorLink::massPropertiesMap() const {
  return massPropertiesMap_;
}

void KtManipulatorLink::setMassPropertiesMap(const MassMap& map) {
  massPropertiesMap_ = map;
  updateMassProperties();
  updateDHMassProperties();
}

void KtManipulatorLink::clearMassPropertiesMap() {
  massPropertiesMap_ = MassMap();
  totalMassProperties_ = baseMassProperties_;
  updateDHMassProperties();
}

void KtManipulatorLink::addMassProperties(const std::string& name,
                                          const KtRigidBodyMassProperties& properties) {
  massPropertiesMap_.add(name, properties);
  updateMassProperties();
  updateDHMassProperties();
}

bool KtManipulatorLink::deleteMassProperties(const std::string& name) {
  if (!massPropertiesMap_.erase(name)) return false;
  updateMassProperties();
  updateDHMassProperties();
  return true;
}

void KtManipulatorLink::updateMassProperties() {
  totalMassProperties_ = baseMassProperties_;
  for (const auto& [name, properties] : massPropertiesMap_.mapContainer()) {
    totalMassProperties_ += properties;
  }
}

void KtManipulatorLink::updateDHMassProperties() {
  massPropertiesInDHFrame_ = totalMassProperties_;
  massPropertiesInDHFrame_.transformBy(primaryFrame());
}

bool KtManipulatorLink::attachments(const KtStatedSystemStruct* asker) const {
  if (asker == nullptr || asker->statedSystem == nullptr) return false;
  const KtManipulatorAttachmentMap& map = asker->statedSystem->system().manipulatorAttachmentMap();
  if (map.mapContainer().empty()) return false;
  Scratch& s = scratch();
  return map.getDependentManipulatorsAndOffsets(asker->manipulatorIndex, label(), s.dependents,
                                                s.offsets);
}

const KtRigidBodyMassProperties& KtManipulatorLink::massProperties(
    const KtStatedSystemStruct* asker) const {
  if (!attachments(asker)) return totalMassProperties_;
  Scratch& s = scratch();
  s.massProperties = totalMassProperties_;
  const auto& manipulators = asker->statedSystem->system().manipulators();
  for (std::size_t i = 0; i < s.dependents.size(); ++i) {
    if (s.dependents[i] >= manipulators.size()) continue;
    KtRigidBodyMassProperties attached = manipulators[s.dependents[i]].massProperties(nullptr);
    attached.transformBy(s.offsets[static_cast<KtU32>(i)]);
    s.massProperties += attached;
  }
  return s.massProperties;
}

const KtRigidBodyMassProperties& KtManipulatorLink::massPropertiesInDHFrame(
    const KtStatedSystemStruct* asker) const {
  if (!attachments(asker)) return massPropertiesInDHFrame_;
  Scratch& s = scratch();
  s.massPropertiesInDHFrame = massPropertiesInDHFrame_;
  const auto& manipulators = asker->statedSystem->system().manipulators();
  for (std::size_t i = 0; i < s.dependents.size(); ++i) {
    if (s.dependents[i] >= manipulators.size()) continue;
    KtRigidBodyMassProperties attached = manipulators[s.dependents[i]].massProperties(nullptr);
    attached.transformBy(primaryFrame() * s.offsets[static_cast<KtU32>(i)]);
    s.massPropertiesInDHFrame += attached;
  }
  return s.massPropertiesInDHFrame;
}

void KtManipulatorLink::estimateMassProperties() {
  constexpr double kDensity = 2700.0;  // of aluminium
  if (const KtShape* shape = topShape(); shape != nullptr) {
    const KtCapsule capsule = shape->boundingCapsule();
    setMassProperties(
        KtRigidBodyMassProperties::uniformSolidCapsule(kDensity * capsule.volume(), capsule));
  } else {
    report("KtManipulatorLink::estimateMassProperties-->Shape container is empty\n");
    setMassProperties(KtRigidBodyMassProperties::defaultObject());
  }
}

bool KtManipulatorLink::replaceMassProperties(const std::string& label,
                                              const KtRigidBodyMassProperties& properties) {
  if (label == this->label()) {
    setMassProperties(properties);
    return false;
  }
  for (KtManipulatorLink& child : childLinks_.elements()) {
    if (child.replaceMassProperties(label, properties)) return true;
  }
  return false;
}
