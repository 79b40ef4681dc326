#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

/// Where a part of an actuator can be bought: a record for people, which no computation reads.
class KT_EXPORT KtManufacturerData : public KtXmlPersistent<KtManufacturerData, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// The name of the manufacturer; empty by default.
  virtual const KtString& manufacturer() const { return manufacturer_.value(); }
  virtual void setManufacturer(const KtString& name) { manufacturer_ = name; }
  /// The manufacturer's name of the part; empty by default.
  virtual const KtString& partNumber() const { return partNumber_.value(); }
  virtual void setPartNumber(const KtString& number) { partNumber_ = number; }
  /// Whether either text is not empty.
  virtual bool isValid() const { return !manufacturer().empty() || !partNumber().empty(); }

  bool operator==(const KtManufacturerData&) const = default;
  static const KtToken& classToken();

 private:
  KtXmlBasicType<KtString> manufacturer_;
  KtXmlBasicType<KtString> partNumber_;
};

extern template class KtXmlVectorType<KtManufacturerData>;
