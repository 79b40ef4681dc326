#include "ktManipulator/model/KtManipulatorLink.h"

#include <algorithm>
#include <string>
#include <utility>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

template class KtXmlVectorType<KtManipulatorLink>;

const KtCoordinateSystemTransformation KtManipulatorLink::m_theDummyTransformation;
const KtGeneralMotion KtManipulatorLink::m_theDummyGeneralVelocity;
const KtGeneralMotion KtManipulatorLink::m_theDummyGeneralAcceleration;
const KtGeneralForce KtManipulatorLink::m_theDummyGeneralForce;
const KtRigidBodyMassProperties KtManipulatorLink::m_theDummyCrbi =
    KtRigidBodyMassProperties::nullObject();
const KtArticulatedBodyDynamics KtManipulatorLink::m_theDummyArbd;
const KtPolyPhysicalExtent KtManipulatorLink::m_theDummyPhysicalExtent;
const KtGeneralMotion KtManipulatorLink::m_theDummySpatialMomentum;
const KtGeneralMotion KtManipulatorLink::m_theDummySpatialMomentumRate;

KtManipulatorLink::KtManipulatorLink() {
  jointActuator_.setManipulatorLink(this);
}

KtManipulatorLink::KtManipulatorLink(const KtManipulatorLink& other) : KtXmlPersistent(other) {
  copyOwnFrom(other);
  childLinks_ = other.childLinks_;
  adoptChildren();
  rebind();
}

KtManipulatorLink& KtManipulatorLink::operator=(const KtManipulatorLink& other) {
  if (this == &other) return *this;
  // The other link may be in the subtree that the assignment removes, so its children are copied
  // first. Moving the new list in doesn't copy them again and keeps their addresses.
  KtXmlVectorType<KtManipulatorLink> children = other.childLinks_;
  copyAllButChildLinksFrom(other);
  childLinks_ = std::move(children);
  adoptChildren();
  return *this;
}

void KtManipulatorLink::copyAllButChildLinksFrom(const KtManipulatorLink& other) {
  if (this == &other) {
    childLinks_.resize(0);
    return;
  }
  KtXmlPersistent::operator=(other);
  copyOwnFrom(other);
  rebind();
}

// The tables of shapes are not copied: they point into the other link.
void KtManipulatorLink::copyOwnFrom(const KtManipulatorLink& other) {
  label_ = other.label_;
  linkKinematicsContainer_ = other.linkKinematicsContainer_;
  memberShapeContainer_ = other.memberShapeContainer_;
  jointActuator_ = other.jointActuator_;
  oldJointActuator_ = other.oldJointActuator_;
  oldJointActuatorContainer_ = other.oldJointActuatorContainer_;
  baseMassProperties_ = other.baseMassProperties_;
  springProperties_ = other.springProperties_;
  damperProperties_ = other.damperProperties_;
  linkReferenceDescription_ = other.linkReferenceDescription_;
  upperLimitContainer_ = other.upperLimitContainer_;
  lowerLimitContainer_ = other.lowerLimitContainer_;
  namedPoints_ = other.namedPoints_;
  namedFrames_ = other.namedFrames_;
  isConstrained_ = other.isConstrained_;
  massPropertiesMap_ = other.massPropertiesMap_;
  massPropertiesInDHFrame_ = other.massPropertiesInDHFrame_;
  totalMassProperties_ = other.totalMassProperties_;
  numShapes_ = other.numShapes_;
  parentLink_ = other.parentLink_;
  linkIndex_ = other.linkIndex_;
  referenceLink_ = this;
  manipulator_ = nullptr;
  forgetShapeTables();
}

// Updates the pointers to and from this link after its members were replaced.
void KtManipulatorLink::rebind() {
  mapShapes();
  jointActuator_.setManipulatorLink(this);
  KtManipulatorLink::updateDefaultLimitConstraints();
}

bool KtManipulatorLink::read(KtXmlReader& reader) {
  // Reading replaces the shapes and the references.
  forgetShapeTables();
  referenceLink_ = this;
  const bool good = KtXmlCompoundType::read(reader);
  mapShapes();
  adoptChildren();
  updateMassProperties();
  updateDHMassProperties();
  // The old form stays; the next read into this link converts it again.
  if (!(oldJointActuator_ == KtOldJointActuator::nullObject())) {
    jointActuator_.setFromOldJointActuator(oldJointActuator_);
  }
  const auto* held = dynamic_cast<const KtOldJointActuator*>(oldJointActuatorContainer_.element());
  if (held != nullptr && !(*held == KtOldJointActuator::nullObject())) {
    jointActuator_.setFromOldJointActuator(*held);
  }
  jointActuator_.setManipulatorLink(this);
  updateDefaultLimitConstraints();
  return good;
}

void KtManipulatorLink::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerTreeComponents();
  registerShapeComponent();
  registerComponent(KtManip::KtCompositeJointActuatorToken, &jointActuator_);
  registerComponentReadOnly(KtManip::KtJointActuatorToken, &oldJointActuator_);
  registerComponentReadOnly(KtManip::KtJointActuatorContainerToken, &oldJointActuatorContainer_);
  registerMassComponent();
  registerComponent(KtManip::KtSpringPropertiesToken, &springProperties_);
  registerComponent(KtManip::KtDamperPropertiesToken, &damperProperties_);
  registerComponent(KtManip::KtLinkReferenceDescriptionToken, &linkReferenceDescription_);
  registerComponent(KtManip::KtUpperLimitConstraintToken, &upperLimitContainer_);
  registerComponent(KtManip::KtLowerLimitConstraintToken, &lowerLimitContainer_);
  registerComponent(KtManip::KtNamedPointsToken, &namedPoints_);
  registerComponent(KtManip::KtNamedFramesToken, &namedFrames_);
  registerComponent(KtManip::KtIsConstrainedToken, &isConstrained_);
  registerMassMapComponent();
}

void KtManipulatorLink::registerTreeComponents() {
  registerComponent(KtManip::KtIdentifierToken, &label_);
  registerComponent(KtManip::KtLinkKinematicsContainerToken, &linkKinematicsContainer_);
  registerComponent(KtManip::KtChildLinksToken, &childLinks_);
}

void KtManipulatorLink::registerMassComponent() {
  registerComponent(KtManip::KtMassPropertiesToken, &baseMassProperties_);
}

void KtManipulatorLink::registerShapeComponent() {
  registerComponent(KtGeom::KtShapeContainerToken, &memberShapeContainer_);
}

void KtManipulatorLink::registerMassMapComponent() {
  registerComponent(KtManip::KtMassPropertiesMapToken, &massPropertiesMap_);
}

const std::string& KtManipulatorLink::label() const {
  return label_.value();
}
void KtManipulatorLink::setLabel(const std::string& label) {
  label_ = label;
}

void KtManipulatorLink::appendToAllLabels(const std::string& suffix) {
  const std::string kept = suffix;  // it may be one of the labels
  label_ = label_.value() + kept;
  for (KtManipulatorLink& child : childLinks_.elements()) child.appendToAllLabels(kept);
}

void KtManipulatorLink::relabelSubtree(const std::string& prefix, KtU32& counter) {
  const std::string kept = prefix;  // it may be one of the labels
  setLabel(kept + std::to_string(counter++));
  for (KtManipulatorLink& child : childLinks_.elements()) {
    child.relabelSubtree(kept, counter);
  }
}

const KtLinkKinematicsContainer& KtManipulatorLink::linkKinematicsContainer() const {
  return linkKinematicsContainer_;
}

void KtManipulatorLink::setLinkKinematicsContainer(const KtLinkKinematicsContainer& container) {
  linkKinematicsContainer_ = container;
  updateDHMassProperties();
}

void KtManipulatorLink::setLinkKinematics(const KtLinkKinematics& kinematics) {
  linkKinematicsContainer_.setTopElement(kinematics);
}

const KtCoordinateSystemTransformation& KtManipulatorLink::primaryFrame() const {
  return linkKinematicsContainer_.primaryFrame();
}

void KtManipulatorLink::setPrimaryFrame(const KtCoordinateSystemTransformation& frame) {
  linkKinematicsContainer_.setPrimaryFrame(frame);
  updateDHMassProperties();
}

const KtXmlVectorType<KtManipulatorLink>& KtManipulatorLink::childLinks() const {
  return childLinks_;
}

void KtManipulatorLink::setChildLinks(const KtXmlVectorType<KtManipulatorLink>& links) {
  if (&links != &childLinks_) {
    // The links may be below one of those that are removed.
    KtXmlVectorType<KtManipulatorLink> copy = links;
    childLinks_ = std::move(copy);
  }
  adoptChildren();
}

void KtManipulatorLink::addChild(const KtManipulatorLink& link) {
  childLinks_.pushBack(link);
  adoptChildren();
}

void KtManipulatorLink::clearChildLinks() {
  childLinks_.resize(0);
}

void KtManipulatorLink::addLinkToEndOfChain(const KtManipulatorLink& link) {
  if (childLinks_.size() > 0) {
    childLinks_[0].addLinkToEndOfChain(link);
  } else {
    addChild(link);
  }
}

// Updates all children, because the list may have moved them.
void KtManipulatorLink::adoptChildren() {
  for (KtManipulatorLink& child : childLinks_.elements()) child.setParentLink(this);
}

KtManipulatorLink* KtManipulatorLink::parentLink() const {
  return parentLink_;
}
void KtManipulatorLink::setParentLink(KtManipulatorLink* link) {
  parentLink_ = link;
}

KtU32 KtManipulatorLink::linkIndex() const {
  return linkIndex_;
}

KtU32 KtManipulatorLink::subtreeLinkCount() const {
  KtU32 count = 1;
  for (const KtManipulatorLink& child : childLinks().elements()) {
    count += child.subtreeLinkCount();
  }
  return count;
}

bool KtManipulatorLink::mapLinks(LinkTable& links, LabelTable& labels) {
  linkIndex_ = static_cast<KtU32>(links.size());
  links.push_back(this);
  labels[label()] = this;
  bool good = true;
  for (KtManipulatorLink& child : childLinks_.elements()) {
    good = child.mapLinks(links, labels) && good;
  }
  updateDefaultLimitConstraints();
  return good;
}

void KtManipulatorLink::collectLeafLinks(LinkTable& links) const {
  const auto& children = childLinks().elements();
  if (children.empty()) links.push_back(this);
  for (const KtManipulatorLink& child : children) child.collectLeafLinks(links);
}

const KtIndividualManipulator* KtManipulatorLink::manipulator() const {
  return manipulator_;
}
void KtManipulatorLink::setManipulatorPointer(const KtIndividualManipulator* manipulator) const {
  manipulator_ = manipulator;
}

// A reference may lead to another reference, and references from a file may form a cycle, which is
// detected here. It follows labels, because pointers of links that are resolved later are stale.
bool KtManipulatorLink::setLinkReferences(const LabelTable& labels) {
  constexpr int kMostSteps = 1000;
  referenceLink_ = this;
  if (linkReferenceDescription_.isShapeReferenced()) {
    const std::string& label = linkReferenceDescription_.referencedLinkLabel();
    const auto found = labels.find(label);
    auto next = found;
    int steps = 0;
    while (next != labels.end() && next->second != nullptr && next->second != this &&
           next->second->linkReferenceDescription().isShapeReferenced() && steps < kMostSteps) {
      next = labels.find(next->second->linkReferenceDescription().referencedLinkLabel());
      ++steps;
    }
    const bool circular = next != labels.end() && (next->second == this || steps == kMostSteps);
    if (found != labels.end() && found->second != nullptr && !circular) {
      referenceLink_ = found->second;
    } else {
      Kt::Print::instance().write(Kt::Print::kError,
                                  "KtManipulatorLink::setLinkReference(): could not find link with "
                                  "label %s for referencing.  Using self.",
                                  label.c_str());
    }
  }
  for (KtManipulatorLink& child : childLinks_.elements()) child.setLinkReferences(labels);
  return true;
}

// The shapes must be the same after the next mapping, and after a file. A base keeps its own: its
// file holds no reference. A label leads to the last link that has it. And a link that is converted
// answers with the candidate's shapes at once, to those that reference it and come later.
bool KtManipulatorLink::useReferencesWherePossible(const LinkTable& links) {
  bool changed = false;
  const std::size_t count =
      linkIndex() == ktBaseIndex ? 0 : std::min<std::size_t>(linkIndex(), links.size());
  const auto isFoundByItsLabel = [&links](const KtManipulatorLink* candidate) {
    const auto last = std::find_if(links.rbegin(), links.rend(), [&](const auto* link) {
      return link != nullptr && link->label() == candidate->label();
    });
    return *last == candidate;
  };
  for (std::size_t i = 0; i < count; ++i) {
    const KtManipulatorLink* candidate = links[i];
    if (candidate == nullptr || candidate == this || candidate->referenceLink_ != candidate ||
        candidate->linkReferenceDescription().isShapeReferenced() ||
        !(candidate->shapeContainer() == shapeContainer()) || !isFoundByItsLabel(candidate)) {
      continue;
    }
    linkReferenceDescription_.setReferencedLinkLabel(candidate->label());
    linkReferenceDescription_.setIsShapeReferenced(true);
    memberShapeContainer_ = KtShapeContainer();
    forgetShapeTables();
    // The table has const pointers, but the manipulator owns the links.
    referenceLink_ =
        const_cast<KtManipulatorLink*>(  // NOLINT(cppcoreguidelines-pro-type-const-cast)
            candidate);
    changed = true;
    break;
  }
  for (KtManipulatorLink& child : childLinks_.elements()) {
    changed = child.useReferencesWherePossible(links) || changed;
  }
  return changed;
}

bool KtManipulatorLink::removeLinkReferences() {
  if (!linkReferenceDescription_.isShapeReferenced()) return true;
  linkReferenceDescription_.setReferencedLinkLabel("");
  linkReferenceDescription_.setIsShapeReferenced(false);
  setShapeContainer(referenceLink_->shapeContainer());
  referenceLink_ = this;
  return true;
}

const KtLinkReferenceDescription& KtManipulatorLink::linkReferenceDescription() const {
  return linkReferenceDescription_;
}
void KtManipulatorLink::setLinkReferenceDescription(const KtLinkReferenceDescription& description) {
  linkReferenceDescription_ = description;
}

bool KtManipulatorLink::equalForReferencing(const KtManipulatorLink& other) const {
  return KtXmlCompoundType::operator==(other) &&
         linkKinematicsContainer_ == other.linkKinematicsContainer_ &&
         childLinks_ == other.childLinks_ && shapeContainer() == other.shapeContainer() &&
         jointActuator_ == other.jointActuator_ &&
         baseMassProperties_ == other.baseMassProperties_ &&
         springProperties_ == other.springProperties_ &&
         damperProperties_ == other.damperProperties_ &&
         linkReferenceDescription_ == other.linkReferenceDescription_ &&
         massPropertiesInDHFrame_ == other.massPropertiesInDHFrame_ &&
         numberOfShapes() == other.numberOfShapes() &&
         upperLimitContainer_ == other.upperLimitContainer_ &&
         lowerLimitContainer_ == other.lowerLimitContainer_ && namedPoints_ == other.namedPoints_ &&
         namedFrames_ == other.namedFrames_ && isConstrained_ == other.isConstrained_ &&
         massPropertiesMap_ == other.massPropertiesMap_;
}

bool KtManipulatorLink::operator==(const KtManipulatorLink& other) const {
  return equalForReferencing(other) && label_ == other.label_;
}

KtManipulatorLink::Scratch& KtManipulatorLink::scratch() const {
  return scratch_.require();
}
