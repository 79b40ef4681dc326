#include "ktManipulator/model/KtLinkReferenceDescription.h"

void KtLinkReferenceDescription::registerComponents() {
  registerComponent(KtManip::KtIsShapeReferencedToken, &isShapeReferenced_);
  registerComponent(KtManip::KtReferencedLinkLabelToken, &referencedLinkLabel_);
}
