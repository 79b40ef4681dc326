#include "ktManipulator/model/KtManipulatorReferenceDescription.h"

void KtManipulatorReferenceDescription::registerComponents() {
  registerComponent(KtManip::KtIsManipulatorReferencedToken, &isManipulatorReferenced_);
  registerComponent(KtManip::KtReferencedManipulatorLabelToken, &referencedManipulatorLabel_);
}
