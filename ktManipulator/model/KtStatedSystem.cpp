#include "ktManipulator/model/KtStatedSystem.h"

#include <algorithm>

#include "ktManipulator/activestate/KtSystemActiveState.h"
#include "ktManipulator/foundation/core/KtPrint.h"

const KtManipulatorSystem KtStatedSystem::m_theNullSystem;

KtStatedSystem::KtStatedSystem() = default;
KtStatedSystem::~KtStatedSystem() = default;

KtStatedSystem::KtStatedSystem(const KtStatedSystem& other, bool independent)
    : KtXmlPersistent(other),
      system_(other.system_),
      state_(other.state_),
      modifiedShapeKeyVec_(other.modifiedShapeKeyVec_),
      selectedShapeKeyVector_(other.selectedShapeKeyVector_),
      transparencyAlpha_(other.transparencyAlpha_),
      isSelectionDataChanged_(other.isSelectionDataChanged_),
      isTransparentDisplay_(other.isTransparentDisplay_) {
  if (!independent) return;
  KtStatedSystem::aboutToModifySystem();
  KtStatedSystem::resetIsSystemModified();
}

KtStatedSystem& KtStatedSystem::operator=(const KtStatedSystem& other) {
  if (this == &other) return *this;
  KtXmlPersistent::operator=(other);
  system_ = other.system_;
  state_ = other.state_;
  modifiedShapeKeyVec_ = other.modifiedShapeKeyVec_;
  selectedShapeKeyVector_ = other.selectedShapeKeyVector_;
  transparencyAlpha_ = other.transparencyAlpha_;
  isSelectionDataChanged_ = other.isSelectionDataChanged_;
  isTransparentDisplay_ = other.isTransparentDisplay_;
  forgetReportedSystem();
  reregisterSystem();
  return *this;
}

bool KtStatedSystem::operator==(const KtStatedSystem& other) const {
  return KtXmlCompoundType::operator==(other) &&
         (system_ == other.system_ || system() == other.system()) && state_ == other.state_ &&
         modifiedShapeKeyVec_ == other.modifiedShapeKeyVec_ &&
         selectedShapeKeyVector_ == other.selectedShapeKeyVector_ &&
         transparencyAlpha_ == other.transparencyAlpha_ &&
         isSelectionDataChanged_ == other.isSelectionDataChanged_ &&
         isTransparentDisplay_ == other.isTransparentDisplay_;
}

bool KtStatedSystem::read(KtXmlReader& reader) {
  aboutToModifySystem();
  const bool good = KtXmlPersistent::read(reader);
  validateTopLevelDimensions();
  validateLowLevelDimensions();
  return good;
}

void KtStatedSystem::registerComponents() {
  aboutToModifySystem();
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtSystemToken, system_.get());
  registerComponent(KtManip::KtStateToken, &state_);
}

// The shared system

const KtManipulatorSystem& KtStatedSystem::system() const {
  return system_ != nullptr ? *system_ : m_theNullSystem;
}

bool KtStatedSystem::hasAttachments() const {
  return !system().manipulatorAttachmentMap().mapContainer().empty();
}

KtManipulatorSystem* KtStatedSystem::newManipulatorSystem() const {
  return new KtManipulatorSystem;
}

void KtStatedSystem::aboutToModifySystem() {
  isSystemModified_ = true;
  forgetReportedSystem();
  if (system_.use_count() == 1) return;
  std::shared_ptr<KtManipulatorSystem> own(newManipulatorSystem());
  if (system_ != nullptr) *own = *system_;
  system_ = std::move(own);
  reregisterSystem();
}

void KtStatedSystem::forgetReportedSystem() {
  for (const auto* kept : {&reportActiveState_, &lazyActiveState_}) {
    if (kept->get() != nullptr) kept->get()->resetForSystemChange();
  }
}

void KtStatedSystem::reregisterSystem() {
  if (!xmlInitialized()) return;
  if (system_ != nullptr) {
    registerComponent(KtManip::KtSystemToken, system_.get());
  } else {
    setXmlInitialized(false);  // the next reading or writing makes a system and a table
  }
}

void KtStatedSystem::setSystem(const KtManipulatorSystem& system) {
  aboutToModifySystem();
  *system_ = system;
}

void KtStatedSystem::setAndDeleteSystemPointer(KtManipulatorSystem* system) {
  aboutToModifySystem();
  if (system != system_.get()) system_.reset(system);
  reregisterSystem();
}

void KtStatedSystem::setFromSystem(const KtManipulatorSystem& system) {
  setSystem(system);
  setToMidpointState();
}

void KtStatedSystem::setFromManipulator(const KtIndividualManipulator& manipulator) {
  aboutToModifySystem();
  system_->setFromIndividualManipulator(manipulator);
  setToMidpointState();
}

KtIndividualManipulator& KtStatedSystem::clearAndInitializeForOneManipulator() {
  setFromManipulator(KtIndividualManipulator());
  return system_->manipulators_[0];
}

void KtStatedSystem::finalizeOneManipulator() {
  setToMidpointState();
}

bool KtStatedSystem::isSystemModified() const {
  return isSystemModified_;
}

void KtStatedSystem::resetIsSystemModified() const {
  isSystemModified_ = false;
}

// Operations that change the number of manipulators or joints

void KtStatedSystem::followSystem() {
  system_->rightSizeState(state_);
  forgetReportedSystem();
  if (reportActiveState_.get() != nullptr) reportActiveState_.get()->setNonredundantState(state_);
}

void KtStatedSystem::addManipulator(const KtIndividualManipulator& manipulator,
                                    const KtPositionState& position,
                                    const KtVelocityState& velocity) {
  // Copy them: they may be in the lists that grow below.
  const KtPositionState newPosition(position);
  const KtVelocityState newVelocity(velocity);
  aboutToModifySystem();
  const KtU32 index = system_->numberOfManipulators();
  system_->addManipulator(manipulator);
  state_.positionStates().resize(index + 1);
  state_.velocityStates().resize(index + 1);
  state_.positionStates()[index] = newPosition;
  state_.velocityStates()[index] = newVelocity;
  followSystem();
}

void KtStatedSystem::addManipulator(const KtIndividualManipulator& manipulator) {
  aboutToModifySystem();
  system_->addManipulator(manipulator);
  followSystem();
}

bool KtStatedSystem::exchangeManipulator(KtU32 index, const KtIndividualManipulator& manipulator,
                                         const KtPositionState& position,
                                         const KtVelocityState& velocity) {
  if (index >= state_.positionStates().size() || system_ == nullptr) return false;
  const KtVelocityState newVelocity(velocity);  // may be in a list that grows
  aboutToModifySystem();
  if (!system_->exchangeManipulator(index, manipulator)) return false;
  state_.positionStates()[index] = position;
  state_.velocityStates().resizeToAtLeast(index + 1);
  state_.velocityStates()[index] = newVelocity;
  followSystem();
  return true;
}

KtU32 KtStatedSystem::addShapeAsManipulator(const KtShape& shape,
                                            const KtCoordinateSystemTransformation& placement,
                                            const std::string& label, const KtDataMap& data) {
  const KtU32 index = system().numberOfManipulators();
  KtManipulatorLink body;
  body.setFromShape(shape);
  body.setLabel(label);
  // `setFromShape` doesn't number the shape, and only numbered shapes accept properties. Without
  // this call, the data would be lost without a message.
  body.mapShapes();
  body.setSurfaceProperties(shape.surfaceLabel(), data);
  KtIndividualManipulator manipulator;
  manipulator.setFromLink(body);
  KtPositionState position;
  position.setCoordSysXForm(placement);
  addManipulator(manipulator, position, KtVelocityState());
  return index;
}

namespace {

void eraseStates(KtManipulatorSystemState& state, KtU32 index) {
  if (index < state.positionStates().size()) state.positionStates().erase(index);
  if (index < state.velocityStates().size()) state.velocityStates().erase(index);
}

}  // namespace

KtU32 KtStatedSystem::deleteManipulator(const std::string& label) {
  aboutToModifySystem();
  if (system_->manipulatorByIdentifier(label) == nullptr) return ktUnmappedIndex;
  const KtU32 index = system_->deleteManipulator(label);
  if (index > 0x7FFFFFFFU) return index;
  eraseStates(state_, index);
  followSystem();
  return index;
}

bool KtStatedSystem::deleteManipulator(KtU32 index) {
  if (index >= system().numberOfManipulators()) return false;
  aboutToModifySystem();
  if (!system_->deleteManipulator(index)) return false;
  eraseStates(state_, index);
  followSystem();
  return true;
}

bool KtStatedSystem::mergeWith(const KtStatedSystem& other) {
  aboutToModifySystem();
  const bool merged = system_->mergeWith(other.system());
  return state_.mergeWith(other.state()) && merged;
}

bool KtStatedSystem::scaleManipulatorBy(KtU32 index, double factor) {
  if (index >= system().numberOfManipulators()) return false;
  KtManipulatorSystem scaledSystem(system());
  KtManipulatorSystem::ManipulatorVector manipulators(scaledSystem.manipulators());
  KtIndividualManipulator& scaled = manipulators[index];
  scaled.scaleBy(factor);
  KtU32 positions = 0;
  KtU32 velocities = 0;
  if (index < state_.positionStates().size()) {
    positions = state_.positionStates()[index].jointPositions().size();
  }
  if (index < state_.velocityStates().size()) {
    velocities = state_.velocityStates()[index].jointVelocities().size();
  }
  for (KtU32 j = 0; j < std::min(positions, scaled.jointDof()); ++j) {
    const KtManipulatorLink* const link = scaled.linkByIndex(j);
    if (link == nullptr) continue;
    const double scalability = link->linkKinematicsContainer().jointParameterScalability();
    const double k = 1.0 - scalability + factor * scalability;
    auto& position = state_.positionStates()[index].jointPositions()[j];
    position = position * k;
    if (j >= velocities) continue;
    auto& velocity = state_.velocityStates()[index].jointVelocities()[j];
    velocity = velocity * k;
  }
  scaledSystem.setManipulators(manipulators);
  setSystem(scaledSystem);
  return true;
}

// Operations that call the system

const KtSystemEnvironment& KtStatedSystem::environment() const {
  return system().environment();
}

void KtStatedSystem::rightSizeState(KtManipulatorSystemState& state) const {
  system().rightSizeState(state);
}

KtSphere KtStatedSystem::absoluteBoundingSphere() const {
  return system().absoluteBoundingSphere(state_);
}

KtU32 KtStatedSystem::jointDof() const {
  return system().jointDof();
}

void KtStatedSystem::setEnvironment(const KtSystemEnvironment& environment) {
  aboutToModifySystem();
  system_->setEnvironment(environment);
}

bool KtStatedSystem::findAndConvertToReferences() {
  aboutToModifySystem();
  return system_->findAndConvertToReferences();
}

bool KtStatedSystem::setJointLimit(KtU32 index, const std::string& label, bool lower,
                                   double value) {
  aboutToModifySystem();
  return system_->setJointLimit(index, label, lower, value);
}

bool KtStatedSystem::replaceLinkProperties(KtU32 index, const std::string& label,
                                           const KtManipulatorLink& link, bool withShape) {
  aboutToModifySystem();
  return system_->replaceLinkProperties(index, label, link, withShape);
}

bool KtStatedSystem::setSurfacesByKey(const KtShapeStateCacheKey& key,
                                      const KtSurfaceMap& surfaces) {
  aboutToModifySystem();
  return system_->setSurfacesByKey(key, surfaces);
}

// Changes of the shared system: programs rely on seeing these in every copy.

void KtStatedSystem::setCollisionExclusionMap(const KtSystemCollisionExclusionMap& map) {
  if (system_ != nullptr) system_->setCollisionExclusionMap(map);
}

void KtStatedSystem::setManipulatorAttachmentMap(const KtManipulatorAttachmentMap& map) {
  if (system_ != nullptr) system_->setManipulatorAttachmentMap(map);
}

void KtStatedSystem::truncateValues(const double& precision) {
  if (system_ != nullptr) system_->truncateValues(precision);
}

bool KtStatedSystem::setSelfCollisionMap(const KtManipulatorSelfCollisionLinkMap& map,
                                         const KtU32& index) {
  return system_ != nullptr && system_->setSelfCollisionMap(map, index);
}

// Lookups

bool KtStatedSystem::lookupManipulatorIndexFromLabel(const std::string& label, KtU32& index) const {
  const auto& all = system().manipulators().elements();
  const auto found = std::ranges::find_if(all, [&](const auto& m) { return m.label() == label; });
  if (found == all.end()) return false;
  index = static_cast<KtU32>(found - all.begin());
  return true;
}

const KtShape* KtStatedSystem::shapeByKey(const KtShapeStateCacheKey& key) const {
  const KtManipulatorSystem& all = system();
  if (key.manipulatorIndex() >= all.numberOfManipulators()) return nullptr;
  const KtManipulatorLink* const link =
      all.manipulators()[key.manipulatorIndex()].linkByIndex(key.linkIndex());
  return link != nullptr ? link->shapeByIndex(key.shapeIndex()) : nullptr;
}
