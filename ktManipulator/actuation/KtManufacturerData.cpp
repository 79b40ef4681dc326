#include "ktManipulator/actuation/KtManufacturerData.h"

#include "ktManipulator/foundation/tokens/KtManipTokens.h"

template class KtXmlVectorType<KtManufacturerData>;

const KtToken& KtManufacturerData::classToken() {
  return KtManip::KtManufacturerToken;
}

void KtManufacturerData::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtManufacturerToken, &manufacturer_);
  registerComponent(KtManip::KtPartNumberToken, &partNumber_);
}
