#pragma once

#include "ktManipulator/model/KtManipulatorLink.h"

/// One mechanism: a tree of links of which this object is the root and the base. The base has no
/// joint.
class KT_EXPORT KtIndividualManipulator
    : public KtXmlPersistent<KtIndividualManipulator, KtManipulatorLink> {
 public:
  KtIndividualManipulator();
  KtIndividualManipulator(const KtIndividualManipulator& other);
  KtIndividualManipulator& operator=(const KtIndividualManipulator& other);

  bool read(KtXmlReader& reader) override;
  void registerComponents() override;
  void addChild(const KtManipulatorLink& link) override;
  /// Always `ktBaseIndex`.
  KtU32 linkIndex() const override { return ktBaseIndex; }

  /// Whether the base cannot move.
  virtual bool isFixedBase() const { return isFixedBase_; }
  /// Sets what `isFixedBase()` answers.
  virtual void setIsFixedBase(bool value) { isFixedBase_ = value; }
  /// Number of joints: of links but the root.
  virtual KtU32 jointDof() const { return static_cast<KtU32>(linkTable_.size()); }
  /// `jointDof()` and the six of a free base.
  virtual KtU32 jointAndBaseDof() const { return jointDof() + 6; }
  /// `jointDof()` for a fixed base, else `jointAndBaseDof()`.
  virtual KtU32 totalDof() const { return isFixedBase() ? jointDof() : jointAndBaseDof(); }
  /// The link of a label, also this object itself; null if there is none.
  virtual KtManipulatorLink* linkByIdentifier(const std::string& label) const;
  /// The link of an index, this object for `ktBaseIndex`; null if there is none.
  virtual const KtManipulatorLink* linkByIndex(KtU32 index) const;
  /// Numbers all links anew.
  virtual bool mapManipulator();

  /// Equality of the tree and the base's kind.
  bool operator==(const KtIndividualManipulator& other) const;
  /// Name of the class in files.
  static const KtToken& classToken() { return KtManip::KtIndividualManipulatorToken; }

 private:
  KtXmlBasicType<bool> isFixedBase_{true};
  LinkTable linkTable_;
  LabelTable labelTable_;
};
