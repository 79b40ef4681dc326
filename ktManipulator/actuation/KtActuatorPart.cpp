#include "ktManipulator/actuation/KtActuatorPart.h"

#include "ktManipulator/model/KtManipulatorLink.h"

KtU32 KtActuatorPart::linkIndex() const {
  return link_ != nullptr ? link_->mappedIndex() : ktUnmappedIndex;
}
