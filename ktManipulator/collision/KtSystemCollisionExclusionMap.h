#pragma once

#include <map>
#include <set>

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/state/KtManipulatorLinkIdentifier.h"
#include "ktManipulator/state/KtManipulatorLinkIndex.h"

class KtIndividualManipulator;
class KtManipulatorSystem;

/// What of different manipulators may not collide, at three grains: manipulator and manipulator,
/// link and manipulator, link and link. What is not listed may collide.
///
/// It lists what may not collide, where `KtManipulatorSelfCollisionLinkMap` lists what may. Within
/// one manipulator it says nothing. The two sides of a pair may be given in either order.
///
/// Links are named by label. For the queries by index `buildMapFromSystem` compiles the labels into
/// indices: until it runs again they don't see changes of links, and are out of date when the
/// manipulators change. The manipulator grain needs no compiling.
class KT_EXPORT KtSystemCollisionExclusionMap
    : public KtXmlPersistent<KtSystemCollisionExclusionMap, KtXmlCompoundType> {
 public:
  /// The type of sets of manipulators.
  using IndexSet = KtXmlSetType<KtXmlBasicType<unsigned int>>;
  /// The type of sets of links.
  using LinkSet = KtXmlSetType<KtManipulatorLinkIdentifier>;
  /// The type of the manipulator grain: from the smaller index to the larger ones.
  using ManipulatorMap = KtXmlMapType<KtXmlBasicType<unsigned int>, IndexSet>;
  /// The type of the grain of links and manipulators.
  using LinkManipulatorMap = KtXmlMapType<KtManipulatorLinkIdentifier, IndexSet>;
  /// The type of the link grain: from the smaller identifier to the larger ones.
  using LinkLinkMap = KtXmlMapType<KtManipulatorLinkIdentifier, LinkSet>;

  void registerComponents() override;

  /// Excludes the pair of a link and a link.
  ///
  /// @return whether the manipulators differ; nothing is done if not
  virtual bool excludeLinkCollisionCandidate(KtU32 manipulator1, const KtString& label1,
                                             KtU32 manipulator2, const KtString& label2);
  /// Excludes a link and all of another manipulator.
  ///
  /// @return whether the manipulators differ; nothing is done if not
  virtual bool excludeLinkCollisionCandidates(KtU32 manipulator, const KtString& label,
                                              KtU32 otherManipulator);
  /// Excludes all of one manipulator and all of another.
  ///
  /// @return whether the manipulators differ; nothing is done if not
  virtual bool excludeManipulatorCollisionCandidates(KtU32 manipulator1, KtU32 manipulator2);
  /// Takes back what the operation of this name with `exclude` did, and nothing of the other
  /// grains. A pair that is not listed stays so.
  ///
  /// @return whether the manipulators differ; nothing is done if not
  virtual bool removeLinkCollisionExclusionCandidate(KtU32 manipulator1, const KtString& label1,
                                                     KtU32 manipulator2, const KtString& label2);
  /// See `removeLinkCollisionExclusionCandidate`.
  virtual bool removeLinkCollisionExclusionCandidates(KtU32 manipulator, const KtString& label,
                                                      KtU32 otherManipulator);
  /// See `removeLinkCollisionExclusionCandidate`.
  virtual bool removeManipulatorCollisionExclusionCandidates(KtU32 manipulator1,
                                                             KtU32 manipulator2);
  /// Compiles the labels for the queries by index. An entry that names a link that the system does
  /// not have is left out and so has no effect there.
  virtual void buildMapFromSystem(const KtManipulatorSystem& system);
  /// Whether two links, given by labels, may not collide by any of the three grains. False within
  /// one manipulator. Needs no compiling.
  virtual bool isLinkCollisionCandidateExcluded(KtU32 manipulator1, const KtString& label1,
                                                KtU32 manipulator2, const KtString& label2) const;
  /// The same for links given by indices, `ktBaseIndex` for a root, as of the last compiling.
  virtual bool isLinkCollisionCandidateExcluded(KtU32 manipulator1, KtU32 link1, KtU32 manipulator2,
                                                KtU32 link2) const;

  /// Whether all of one manipulator and all of another are excluded.
  bool isManipulatorCollisionExcluded(KtU32 manipulator1, KtU32 manipulator2) const;
  /// Whether a link of manipulator 1 and all of manipulator 2 are excluded, by the entries of that
  /// link alone.
  bool isLinktoManipulatorCollisionExcluded(KtU32 manipulator1, const KtString& label,
                                            KtU32 manipulator2) const;
  /// Whether a manipulator stands in any entry of the manipulator grain.
  bool manipulatorHasExclusionCandidate(KtU32 manipulator) const;
  /// Whether a link stands by its label in any entry of the other two grains.
  bool linkHasExclusionCandidate(KtU32 manipulator, const KtString& label) const;
  /// Removes everything, what is compiled too.
  void removeAllExclusionCandidates();
  /// What `buildMapFromSystem` does, for a system of these manipulators.
  void buildMapFromManipulators(const KtXmlVectorType<KtIndividualManipulator>& manipulators);
  /// Finds the link that an identifier names.
  ///
  /// @param index  receives the indices, `ktBaseIndex` for a root; unchanged if there is no such
  ///               manipulator or link
  /// @return whether there is
  bool convertToManipulatorLinkIndex(const KtXmlVectorType<KtIndividualManipulator>& manipulators,
                                     const KtManipulatorLinkIdentifier& identifier,
                                     KtManipulatorLinkIndex& index) const;
  /// Finds the links that the identifiers of a set name.
  ///
  /// @param indices  receives, instead of what it held, those that there are
  /// @return whether all of them are there
  bool obtainManipulatorLinkIndices(const KtXmlVectorType<KtIndividualManipulator>& manipulators,
                                    const LinkSet& identifiers,
                                    std::set<KtManipulatorLinkIndex>& indices) const;

  /// The entries of the manipulator grain.
  const ManipulatorMap& manipulatorExclusionMap() const noexcept {
    return manipulatorExclusionMap_;
  }
  /// The entries of the grain of links and manipulators.
  const LinkManipulatorMap& linkManipulatorExclusionMap() const noexcept {
    return linkManipulatorExclusionMap_;
  }
  /// The entries of the link grain.
  const LinkLinkMap& linkLinkExclusionMap() const noexcept { return linkLinkExclusionMap_; }

  /// Exact equality of the entries by label. What is compiled from them does not count.
  bool operator==(const KtSystemCollisionExclusionMap& other) const;
  static const KtToken& classToken() { return KtManip::KtSystemCollisionExclusionMapToken; }

 private:
  bool isExcludedByIndex(const KtManipulatorLinkIndex& link, KtU32 manipulator) const;

  ManipulatorMap manipulatorExclusionMap_;
  LinkManipulatorMap linkManipulatorExclusionMap_;
  LinkLinkMap linkLinkExclusionMap_;

  // Compiled
  std::map<KtManipulatorLinkIndex, std::set<KtU32>> linkManipulatorIndexMap_;
  std::map<KtManipulatorLinkIndex, std::set<KtManipulatorLinkIndex>> linkLinkIndexMap_;
};

extern template class KtXmlMapType<KtXmlBasicType<unsigned int>,
                                   KtXmlSetType<KtXmlBasicType<unsigned int>>>;
