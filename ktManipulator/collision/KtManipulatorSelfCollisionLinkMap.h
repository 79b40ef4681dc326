#pragma once

#include "ktManipulator/foundation/containers/KtXmlMapType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

class KtIndividualManipulator;

/// Which links of one manipulator may collide with each other: a flag for each pair of labels, true
/// for a candidate. A pair without an entry is none.
///
/// It lists what may collide, where `KtSystemCollisionExclusionMap` lists what may not. A pair
/// stands once, under the label that comes first by its bytes, and all operations take the two
/// labels in either order. The manipulator compiles the map into a table of bits; a change here
/// counts only after that.
class KT_EXPORT KtManipulatorSelfCollisionLinkMap
    : public KtXmlPersistent<
          KtManipulatorSelfCollisionLinkMap,
          KtXmlMapType<KtXmlBasicType<std::string>,
                       KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<bool>>>> {
 public:
  /// Gives every pair of links, the root and each link with itself included, an entry that is no
  /// candidate. Entries of other labels stay.
  virtual void buildMapFromSystem(const KtIndividualManipulator& manipulator);
  /// Sets the flag of a pair, whose labels need not be those of any link.
  virtual void setLinkCollisionCanditateByIdentifier(const KtString& label1, const KtString& label2,
                                                     bool isCandidate);
  /// The flag of a pair.
  ///
  /// @param isCandidate  receives the flag; unchanged if the pair has no entry
  /// @return whether the pair has an entry
  virtual bool linkCollisionCanditateByIdentifier(const KtString& label1, const KtString& label2,
                                                  bool& isCandidate) const;
  /// Sets the flag of every entry.
  virtual void setAllAsCollisionCandidates();
  /// Clears the flag of every entry.
  virtual void unsetAllAsCollisionCandidates();

  /// Whether the label has an entry, with whatever label, that is no candidate.
  bool linkHasExclusionCandidate(const KtString& label) const;

  bool operator==(const KtManipulatorSelfCollisionLinkMap&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorSelfCollisionLinkMapToken; }

 private:
  void setAll(bool isCandidate);
};
