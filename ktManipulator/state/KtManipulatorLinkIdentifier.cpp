#include "ktManipulator/state/KtManipulatorLinkIdentifier.h"

template class KtXmlSetType<KtManipulatorLinkIdentifier>;
template class KtXmlMapType<KtManipulatorLinkIdentifier,
                            KtXmlSetType<KtXmlBasicType<unsigned int>>>;
template class KtXmlMapType<KtManipulatorLinkIdentifier, KtXmlSetType<KtManipulatorLinkIdentifier>>;

void KtManipulatorLinkIdentifier::registerComponents() {
  registerComponent(KtManip::KtManipulatorIdToken, &manipulatorIndex_);
  registerComponent(KtManip::KtLinkIdToken, &linkId_);
}
