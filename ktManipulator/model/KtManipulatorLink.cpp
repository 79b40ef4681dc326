#include "ktManipulator/model/KtManipulatorLink.h"

template class KtXmlVectorType<KtManipulatorLink>;

KtManipulatorLink::KtManipulatorLink(const KtManipulatorLink& other)
    : KtXmlPersistent(other),
      label_(other.label_),
      childLinks_(other.childLinks_),
      parentLink_(other.parentLink_),
      linkIndex_(other.linkIndex_) {
  adoptChildren();
}

KtManipulatorLink& KtManipulatorLink::operator=(const KtManipulatorLink& other) {
  if (this != &other) {
    KtXmlPersistent::operator=(other);
    label_ = other.label_;
    parentLink_ = other.parentLink_;
    linkIndex_ = other.linkIndex_;
    childLinks_ = other.childLinks_;
    adoptChildren();
  }
  return *this;
}

bool KtManipulatorLink::read(KtXmlReader& reader) {
  const bool good = KtXmlCompoundType::read(reader);
  adoptChildren();
  return good;
}

void KtManipulatorLink::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtIdentifierToken, &label_);
  registerComponent(KtManip::KtChildLinksToken, &childLinks_);
}

void KtManipulatorLink::addChild(const KtManipulatorLink& link) {
  childLinks_.pushBack(link);
  adoptChildren();
}

bool KtManipulatorLink::mapLinks(LinkTable& links, LabelTable& labels) {
  linkIndex_ = static_cast<KtU32>(links.size());
  links.push_back(this);
  labels[label()] = this;
  bool good = true;
  for (KtU32 i = 0; i < childLinks_.size(); ++i) {
    good = childLinks_[i].mapLinks(links, labels) && good;
  }
  return good;
}

bool KtManipulatorLink::operator==(const KtManipulatorLink& other) const {
  return label_ == other.label_ && childLinks_ == other.childLinks_;
}

void KtManipulatorLink::adoptChildren() {
  for (KtU32 i = 0; i < childLinks_.size(); ++i) childLinks_[i].setParentLink(this);
}
