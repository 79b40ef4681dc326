#include "ktManipulator/model/KtLinkAttachment.h"

void KtLinkAttachment::registerComponents() {
  registerComponent(KtManip::KtManipulatorIdToken, &manipulatorIndex_);
  registerComponent(KtManip::KtLinkIdToken, &linkIdentifier_);
  registerComponent(KtManip::KtFrameToken, &frame_);
}
