#include "ktManipulator/foundation/containers/KtXmlFlagMask.h"

namespace Kt::detail {

bool XmlMaskBit::read(KtXmlReader& reader) {
  if (!KtXmlBasicType::read(reader)) return false;
  *mask_ = (*mask_ & ~(1U << bit_)) | static_cast<KtU32>(value()) << bit_;
  return true;
}

bool XmlMaskBit::write(KtXmlWriter& writer) const {
  return KtXmlBasicType<bool>((*mask_ >> bit_ & 1U) != 0).write(writer);
}

}  // namespace Kt::detail
