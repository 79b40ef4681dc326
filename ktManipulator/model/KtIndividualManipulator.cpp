#include "ktManipulator/model/KtIndividualManipulator.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/kinematics/KtDenavitHartenberg.h"

template class KtXmlVectorType<KtIndividualManipulator>;

const KtGeneralMotion KtIndividualManipulator::m_theZeroAcceleration;

KtIndividualManipulator::KtIndividualManipulator() {
  setLinkIndex(ktBaseIndex);
  mapManipulator();
}

KtIndividualManipulator::KtIndividualManipulator(const KtIndividualManipulator& other)
    : KtXmlPersistent(other) {
  copyOwnFrom(other);
  KtIndividualManipulator::mapManipulator();
}

KtIndividualManipulator& KtIndividualManipulator::operator=(const KtIndividualManipulator& other) {
  if (this == &other) return *this;
  KtManipulatorLink::operator=(other);
  copyOwnFrom(other);
  mapManipulator();
  return *this;
}

void KtIndividualManipulator::copyAllButChildLinksFrom(const KtIndividualManipulator& other) {
  KtManipulatorLink::copyAllButChildLinksFrom(other);
  if (this != &other) copyOwnFrom(other);
  mapManipulator();
}

void KtIndividualManipulator::copyOwnFrom(const KtIndividualManipulator& other) {
  coordSysXForm_ = other.coordSysXForm_;
  absoluteBoundingSphere_ = other.absoluteBoundingSphere_;
  isFixedBase_ = other.isFixedBase_;
  optimizeOnLoad_ = other.optimizeOnLoad_;
  isControllable_ = other.isControllable_;
  manipulatorReferenceDescription_ = other.manipulatorReferenceDescription_;
  generalBoundObjects_ = other.generalBoundObjects_;
  stateConstraints_ = other.stateConstraints_;
  stateEqualityConstraints_ = other.stateEqualityConstraints_;
  stoppingCriteria_ = other.stoppingCriteria_;
  surfaces_ = other.surfaces_;
  selfCollisionLinkMap_ = other.selfCollisionLinkMap_;
  linkCollisionTable_ = other.linkCollisionTable_;
  manipulatorIndex_ = other.manipulatorIndex_;
  referenceManipulator_ = this;
}

bool KtIndividualManipulator::read(KtXmlReader& reader) {
  referenceManipulator_ = this;  // until a system resolves the reference
  const bool good = KtManipulatorLink::read(reader);
  mapManipulator();
  mapLinkCollisionCandidates();
  if (optimizeOnLoad()) recursiveOptimizeForRendering();
  return good;
}

void KtIndividualManipulator::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerTreeComponents();
  registerMassComponent();
  registerShapeComponent();
  registerMassMapComponent();
  registerComponent(KtFoundCommon::KtCoordinateSystemTransformToken, &coordSysXForm_);
  registerComponent(KtManip::KtAbsoluteBoundingSphereToken, &absoluteBoundingSphere_);
  registerComponent(KtManip::KtIsFixedBaseToken, &isFixedBase_);
  registerComponent(KtManip::KtOptimizeOnLoadToken, &optimizeOnLoad_);
  registerComponent(KtManip::KtIsControllableToken, &isControllable_);
  registerComponent(KtManip::KtManipulatorReferenceDescriptionToken,
                    &manipulatorReferenceDescription_);
  registerComponent(KtManip::KtGeneralBoundObjectVectorToken, &generalBoundObjects_);
  registerComponent(KtManip::KtStateConstraintVectorToken, &stateConstraints_);
  registerComponent(KtManip::KtStateEqualityConstraintVectorToken, &stateEqualityConstraints_);
  registerComponent(KtManip::KtStoppingCriteriaToken, &stoppingCriteria_);
  registerComponent(KtGeom::KtSurfacesToken, &surfaces_);
  registerComponent(KtManip::KtManipulatorSelfCollisionLinkMapToken, &selfCollisionLinkMap_);
}

bool KtIndividualManipulator::equalBeyondLink(const KtIndividualManipulator& other) const {
  return coordSysXForm_ == other.coordSysXForm_ &&
         absoluteBoundingSphere_ == other.absoluteBoundingSphere_ &&
         isFixedBase_ == other.isFixedBase_ && optimizeOnLoad_ == other.optimizeOnLoad_ &&
         isControllable_ == other.isControllable_ &&
         manipulatorReferenceDescription_ == other.manipulatorReferenceDescription_ &&
         generalBoundObjects_ == other.generalBoundObjects_ &&
         stateConstraints_ == other.stateConstraints_ &&
         stateEqualityConstraints_ == other.stateEqualityConstraints_ &&
         stoppingCriteria_ == other.stoppingCriteria_ && surfaces_ == other.surfaces_ &&
         selfCollisionLinkMap_ == other.selfCollisionLinkMap_;
}

bool KtIndividualManipulator::operator==(const KtIndividualManipulator& other) const {
  return KtManipulatorLink::operator==(other) && equalBeyondLink(other);
}

bool KtIndividualManipulator::equalForReferencing(const KtIndividualManipulator& other) const {
  return KtManipulatorLink::equalForReferencing(other) && equalBeyondLink(other);
}

// The tree

const KtXmlVectorType<KtManipulatorLink>& KtIndividualManipulator::childLinks() const {
  return referenceManipulator_ == this ? ownChildLinks() : referenceManipulator_->childLinks();
}

void KtIndividualManipulator::setChildLinks(const KtXmlVectorType<KtManipulatorLink>& links) {
  KtManipulatorLink::setChildLinks(links);
  mapManipulator();
}

// Only adds the new child to the tables. Programs call mapManipulator after adding the last child;
// it sets the manipulator and resolves references.
void KtIndividualManipulator::addChild(const KtManipulatorLink& link) {
  const KtManipulatorLink* first = ownChildLinks().size() > 0 ? &ownChildLinks()[0] : nullptr;
  KtManipulatorLink::addChild(link);
  auto& children = ownChildLinks();
  const bool moved = first != nullptr && first != &children[0];
  if (moved) {
    // All entries of the tables are dangling now.
    linkTable_.clear();
    labelTable_.clear();
  }
  if (isReference()) return;
  if (moved) {
    labelTable_[label()] = this;
    for (KtManipulatorLink& child : children.elements()) {
      child.mapLinks(linkTable_, labelTable_);
    }
  } else {
    children[children.size() - 1].mapLinks(linkTable_, labelTable_);
  }
}

void KtIndividualManipulator::clearChildLinks() {
  KtManipulatorLink::clearChildLinks();
  mapManipulator();
  buildSelfCollisionLinkMap();
}

void KtIndividualManipulator::addLinkToEndOfChain(const KtManipulatorLink& link) {
  // addChild is not used here because it would map twice.
  if (ownChildLinks().size() > 0) {
    ownChildLinks()[0].addLinkToEndOfChain(link);
  } else {
    KtManipulatorLink::addChild(link);
  }
  mapManipulator();
  buildSelfCollisionLinkMap();
}

KtU32 KtIndividualManipulator::linkIndex() const {
  return ktBaseIndex;
}

void KtIndividualManipulator::setFromLink(const KtManipulatorLink& link) {
  KtManipulatorLink::operator=(link);
  setParentLink(nullptr);
  coordSysXForm_.setToIdentity();
  fitAbsoluteBoundingSphere();
  isFixedBase_ = true;
  optimizeOnLoad_ = false;
  mapManipulator();
}

bool KtIndividualManipulator::mapManipulator() {
  linkTable_.clear();
  labelTable_.clear();
  return mapManipulator(linkTable_, labelTable_);
}

bool KtIndividualManipulator::mapManipulator(LinkTable& links, LabelTable& labels) {
  setManipulatorPointer(this);
  setLinkIndex(ktBaseIndex);
  if (isReference()) return true;
  labels[label()] = this;
  bool good = true;
  for (KtManipulatorLink& child : ownChildLinks().elements()) {
    good = child.mapLinks(links, labels) && good;
  }
  setLinkReferences(labels);
  for (const KtManipulatorLink* link : links) {
    if (link != nullptr) link->setManipulatorPointer(this);
  }
  return good;
}

KtU32 KtIndividualManipulator::manipulatorIndex() const {
  return manipulatorIndex_;
}
KtU32 KtIndividualManipulator::jointDof() const {
  return static_cast<KtU32>(referenceManipulator_->linkTable_.size());
}
KtU32 KtIndividualManipulator::jointAndBaseDof() const {
  return jointDof() + 6;
}
KtU32 KtIndividualManipulator::totalDof() const {
  return isFixedBase() ? jointDof() : jointAndBaseDof();
}

const KtManipulatorLink* KtIndividualManipulator::linkByIndex(KtU32 index) const {
  const LinkTable& links = referenceManipulator_->linkTable_;
  if (index < links.size()) return links[index];
  return index == ktBaseIndex ? this : nullptr;
}

KtManipulatorLink* KtIndividualManipulator::linkByIdentifier(const std::string& label) const {
  const LabelTable& labels = referenceManipulator_->labelTable_;
  const auto found = labels.find(label);
  if (found != labels.end()) return found->second;
  return label == this->label() ? referenceManipulator_ : nullptr;
}

KtU32 KtIndividualManipulator::linkIndexByIdentifier(const std::string& label) const {
  const LinkTable& links = referenceManipulator_->linkTable_;
  for (std::size_t i = 0; i < links.size(); ++i) {
    if (links[i] != nullptr && links[i]->label() == label) return static_cast<KtU32>(i);
  }
  return label == this->label() ? ktBaseIndex : ktUnmappedIndex;
}

bool KtIndividualManipulator::changeLinkLabel(const std::string& label,
                                              const std::string& newLabel) {
  const auto found = findLink(label);
  KtManipulatorLink* link = found != labelTable_.end() ? found->second
                            : label == this->label()   ? this
                                                       : nullptr;
  if (link == nullptr) return false;
  link->setLabel(newLabel);
  mapManipulator();
  return true;
}

bool KtIndividualManipulator::makeIndicesCompatible(KtU32& index1, KtU32& index2) const {
  if (index1 < index2) std::swap(index1, index2);
  return true;
}

// References

// References from a file may form a cycle or a chain that is too long for recursion. Only pointers
// to manipulators of the list are followed; others may be dangling.
bool KtIndividualManipulator::configureManipulatorReference(
    const KtXmlVectorType<KtIndividualManipulator>& manipulators) {
  constexpr int kMostSteps = 1000;
  const auto& all = manipulators.elements();
  const auto isListed = [&all](const KtIndividualManipulator* one) {
    const std::less<const KtIndividualManipulator*> before;
    return !all.empty() && !before(one, all.data()) && before(one, all.data() + all.size());
  };
  const KtIndividualManipulator* target = nullptr;
  if (isReference()) {
    const std::string& label = manipulatorReferenceDescription_.referencedManipulatorLabel();
    const auto found =
        std::find_if(all.begin(), all.end(),
                     [&label](const KtIndividualManipulator& one) { return one.label() == label; });
    if (found != all.end()) target = &*found;
  }
  int steps = 0;
  for (const KtIndividualManipulator* next = target; next != nullptr; ++steps) {
    if (next == this || steps == kMostSteps) {
      target = nullptr;
      break;
    }
    const KtIndividualManipulator* further = next->referenceManipulator_;
    next = further != next && isListed(further) ? further : nullptr;
  }
  if (target == nullptr) {
    if (!isListed(referenceManipulator_) || isReference()) {
      referenceManipulator_ = this;
      setReferenceLink(this);
    }
    return false;
  }
  // The system owns the manipulators and may change them.
  auto* own = const_cast<KtIndividualManipulator*>(
      target);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
  referenceManipulator_ = own;
  setReferenceLink(own);
  return true;
}

bool KtIndividualManipulator::findAndConvertToReferences() {
  if (isReference()) return true;
  useReferencesWherePossible(linkTable_);
  const KtIndividualManipulator copy(*this);
  *this = copy;
  return true;
}

bool KtIndividualManipulator::aboutToModifyLink(const std::string& label) {
  const auto found = findLink(label);
  if (found == labelTable_.end() || found->second == nullptr) return false;
  for (const KtManipulatorLink* link : linkTable_) {
    if (link == nullptr) continue;
    const KtLinkReferenceDescription& before = link->linkReferenceDescription();
    if (!before.isShapeReferenced() || before.referencedLinkLabel() != label) continue;
    const auto referrer = findLink(link->label());
    if (referrer == labelTable_.end() || referrer->second == nullptr) continue;
    KtLinkReferenceDescription description = referrer->second->linkReferenceDescription();
    description.setIsShapeReferenced(false);
    referrer->second->setShapeContainer(found->second->shapeContainer());
    referrer->second->setLinkReferenceDescription(description);
  }
  return true;
}

// Changes by label

bool KtIndividualManipulator::replaceLinkAndChildren(const std::string& label,
                                                     const KtManipulatorLink& link) {
  aboutToModifyLink(label);
  const auto found = findLink(label);
  if (found == labelTable_.end()) {
    mapManipulator();
    return false;
  }
  KtManipulatorLink* target = found->second;
  if (target == nullptr) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtIndividualManipulator::replaceLinkAndChildren(): unexpected NULL pointer for link %s.\n",
        label.c_str());
  } else {
    // The subtree keeps its parent and position, wherever the new links came from.
    KtManipulatorLink* parent = target->parentLink();
    target->KtManipulatorLink::operator=(link);
    target->setParentLink(parent);
  }
  mapManipulator();
  return target != nullptr;
}

bool KtIndividualManipulator::replaceLinkKinematics(KtU32 index,
                                                    const KtLinkKinematics& kinematics) {
  const KtManipulatorLink* link = linkByIndex(index);
  return link != nullptr && replaceLinkKinematics(link->label(), kinematics);
}

bool KtIndividualManipulator::replaceLinkKinematics(const std::string& label,
                                                    const KtLinkKinematics& kinematics) {
  const auto found = findLink(label);
  if (found == labelTable_.end() || found->second == nullptr) return false;
  found->second->setLinkKinematics(kinematics);
  return true;
}

bool KtIndividualManipulator::replaceLinkShape(KtU32 index, const KtShape& shape) {
  const KtManipulatorLink* link = linkByIndex(index);
  return link != nullptr && replaceLinkShape(link->label(), shape);
}

bool KtIndividualManipulator::replaceLinkShape(const std::string& label, const KtShape& shape) {
  const auto found = findLink(label);
  if (found == labelTable_.end() || found->second == nullptr) return false;
  found->second->setShape(shape);
  return true;
}

bool KtIndividualManipulator::replaceLinkPrimaryFrame(
    KtU32 index, const KtCoordinateSystemTransformation& frame) {
  const KtManipulatorLink* link = linkByIndex(index);
  return link != nullptr && replaceLinkPrimaryFrame(link->label(), frame);
}

bool KtIndividualManipulator::replaceLinkPrimaryFrame(
    const std::string& label, const KtCoordinateSystemTransformation& frame) {
  const auto found = findLink(label);
  if (found == labelTable_.end() || found->second == nullptr) return false;
  found->second->setPrimaryFrame(frame);
  return true;
}

bool KtIndividualManipulator::transformPrimaryFrame(const std::string& label,
                                                    const KtCoordinateSystemTransformation& frame) {
  const auto found = findLink(label);
  if (found != labelTable_.end() && found->second != nullptr) {
    return found->second->transformPrimaryFrame(frame);
  }
  Kt::Print::instance().write(
      Kt::Print::kError,
      found == labelTable_.end()
          ? "KtIndividualManipulator::transformPrimaryFrame()->bad link label, %s"
          : "KtIndividualManipulator::transformPrimaryFrame()->bad link for label, %s",
      label.c_str());
  return false;
}

bool KtIndividualManipulator::transformAllPrimaryFramesToIdentity() {
  const KtCoordinateSystemTransformation identity;
  // A reference may have been added, or its target moved, since the last mapping.
  if (!isReference()) setLinkReferences(labelTable_);
  std::map<const KtManipulatorLink*, KtCoordinateSystemTransformation> framesBefore;
  std::map<const KtShapeContainer*, KtCoordinateSystemTransformation> moved;
  const auto targetOf = [this](const KtManipulatorLink& link) {
    return linkByIdentifier(link.linkReferenceDescription().referencedLinkLabel());
  };
  // These stay as they are.
  const auto leadsNowhere = [&](const KtManipulatorLink& link) {
    return link.linkReferenceDescription().isShapeReferenced() && targetOf(link) == nullptr;
  };
  for (const auto& [label, link] : labelTable_) {
    if (link == nullptr || leadsNowhere(*link)) continue;
    const KtCoordinateSystemTransformation frame = link->primaryFrame();
    framesBefore.emplace(link, frame);
    const KtShapeContainer* const used = &link->shapeContainer();
    if (link->linkReferenceDescription().isShapeReferenced()) {
      const KtManipulatorLink* target = targetOf(*link);
      // If a cycle of references ends at the link itself, it uses its own shapes.
      const bool shares = used != &link->memberShapeContainer();
      const auto before = framesBefore.find(target);
      if (shares && frame == target->primaryFrame() && !leadsNowhere(*target) &&
          (before == framesBefore.end() || before->second == frame)) {
        KtRigidBodyMassProperties mass = link->massProperties(nullptr);
        mass.transformBy(frame);
        link->setMassProperties(mass);
        link->setPrimaryFrame(identity);
        continue;
      }
      if (shares) link->removeLinkReferences();
      // The shapes of a link that was visited before, even at the end of a chain of references,
      // are in its DH frame already.
      if (const auto done = moved.find(used); shares && done != moved.end()) {
        KtShapeContainer shapes = link->memberShapeContainer();
        shapes.transformBy(done->second.inverse());
        link->setShapeContainer(shapes);
      }
    }
    moved.emplace(&link->memberShapeContainer(), frame);
    link->transformPrimaryFrame(identity);
  }
  return true;
}

bool KtIndividualManipulator::transformLinkComponentsBy(const std::string& label,
                                                        const KtCoordinateSystemTransformation& t) {
  const auto found = findLink(label);
  if (found == labelTable_.end() || found->second == nullptr) return false;
  found->second->transformComponentsBy(t);
  return true;
}

bool KtIndividualManipulator::transformLinkSubtreeBy(const std::string& label,
                                                     const KtCoordinateSystemTransformation& t) {
  aboutToModifyLink(label);
  const auto found = findLink(label);
  if (found == labelTable_.end()) return false;
  if (found->second == nullptr) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtIndividualManipulator::transformLinkSubtreeBy(): unexpected NULL pointer for link %s.\n",
        label.c_str());
    return false;
  }
  found->second->transformLinkTreeBy(t);
  return true;
}

bool KtIndividualManipulator::getCraigDhParameters(std::vector<double>& parameters) const {
  parameters.clear();
  bool good = true;
  for (KtU32 i = 0; i < jointDof(); ++i) {
    const KtManipulatorLink* link = linkByIndex(i);
    if (link == nullptr) continue;
    const auto* joint =
        dynamic_cast<const KtDenavitHartenberg*>(link->linkKinematicsContainer().topElement());
    const bool plain = joint != nullptr && joint->dhType() == KtDenavitHartenberg::kCraig;
    const bool general = joint != nullptr && joint->dhType() == KtDenavitHartenberg::kGeneralCraig;
    if (!plain && !general) {
      good = false;
    } else if (plain || joint->precursor().approxEq(KtCoordinateSystemTransformation(), 1e-10)) {
      parameters.insert(parameters.end(), {joint->dhA(), joint->dhAlpha(), joint->dhD()});
    }
  }
  return good;
}

// What stands for the whole

const KtCoordinateSystemTransformation& KtIndividualManipulator::coordSysXForm() const {
  return coordSysXForm_;
}
void KtIndividualManipulator::setCoordSysXForm(const KtCoordinateSystemTransformation& t) {
  coordSysXForm_ = t;
}
const KtSphere& KtIndividualManipulator::absoluteBoundingSphere() const {
  return absoluteBoundingSphere_;
}
void KtIndividualManipulator::setAbsoluteBoundingSphere(const KtSphere& sphere) {
  absoluteBoundingSphere_ = sphere;
}
void KtIndividualManipulator::fitAbsoluteBoundingSphere() {
  absoluteBoundingSphere_.setRadius(upperBoundSubmanipulatorExtentDistance());
  absoluteBoundingSphere_.setCenter(KtVector());
}
bool KtIndividualManipulator::isFixedBase() const {
  return isFixedBase_;
}
void KtIndividualManipulator::setIsFixedBase(bool value) {
  isFixedBase_ = value;
}
bool KtIndividualManipulator::optimizeOnLoad() const {
  return optimizeOnLoad_;
}
void KtIndividualManipulator::setOptimizeOnLoad(bool value) {
  optimizeOnLoad_ = value;
}
bool KtIndividualManipulator::isControllable() const {
  return isControllable_;
}
void KtIndividualManipulator::setIsControllable(bool value) {
  isControllable_ = value;
}
const KtManipulatorReferenceDescription& KtIndividualManipulator::manipulatorReferenceDescription()
    const {
  return manipulatorReferenceDescription_;
}
void KtIndividualManipulator::setManipulatorReferenceDescription(
    const KtManipulatorReferenceDescription& description) {
  manipulatorReferenceDescription_ = description;
}
const KtGeneralBoundObjectVector& KtIndividualManipulator::generalBoundObjects() const {
  return generalBoundObjects_;
}
void KtIndividualManipulator::setGeneralBoundObjects(const KtGeneralBoundObjectVector& objects) {
  generalBoundObjects_ = objects;
}
const KtStateConstraintVector& KtIndividualManipulator::stateConstraints() const {
  return stateConstraints_;
}
void KtIndividualManipulator::setStateConstraints(const KtStateConstraintVector& constraints) {
  stateConstraints_ = constraints;
}
const KtStateEqualityConstraintVector& KtIndividualManipulator::stateEqualityConstraints() const {
  return stateEqualityConstraints_;
}
void KtIndividualManipulator::setStateEqualityConstraints(
    const KtStateEqualityConstraintVector& constraints) {
  stateEqualityConstraints_ = constraints;
}
const KtStoppingCriterionVector& KtIndividualManipulator::stoppingCriteria() const {
  return stoppingCriteria_;
}
void KtIndividualManipulator::setStoppingCriteria(const KtStoppingCriterionVector& criteria) {
  stoppingCriteria_ = criteria;
}
