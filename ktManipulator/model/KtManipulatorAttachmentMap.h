#pragma once

#include <vector>

#include "ktManipulator/foundation/containers/KtXmlPairType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/state/KtManipulatorLinkIdentifier.h"

class KtIndividualManipulator;
class KtManipulatorActivePositionState;

/// Which manipulators have their base fixed to a link of another: from the index of a dependent
/// manipulator to the link of its parent and the offset of its base from that link's primary frame.
///
/// A manipulator has at most one parent and any number of dependents. Cycles are not looked for.
/// All walks go in ascending order of the dependent index.
class KT_EXPORT KtManipulatorAttachmentMap
    : public KtXmlPersistent<KtManipulatorAttachmentMap,
                             KtXmlMapType<KtXmlBasicType<unsigned int>,
                                          KtXmlPairType<KtManipulatorLinkIdentifier,
                                                        KtCoordinateSystemTransformation>>> {
 public:
  /// Attaches the dependent's base to a link of the parent.
  ///
  /// @param offset  the dependent's base in the primary frame of the link
  /// @return false, with nothing changed, if the two are the same or the dependent is attached
  ///         already: a second attachment replaces nothing
  virtual bool attachManipulator(KtU32 dependentIndex, KtU32 parentIndex, const KtString& linkLabel,
                                 const KtCoordinateSystemTransformation& offset);
  /// Removes the attachment of a dependent; false if it has none.
  virtual bool removeManipulatorAttachment(KtU32 dependentIndex);
  /// Where a manipulator is attached.
  ///
  /// @return false, with nothing changed, if it is not
  virtual bool getDependentManipulatorInfo(KtU32 dependentIndex, KtU32& parentIndex,
                                           KtString& linkLabel,
                                           KtCoordinateSystemTransformation& offset) const;
  /// All manipulators that are attached to any link of the parent.
  virtual std::vector<KtU32> dependentManipulators(KtU32 parentIndex) const;
  /// All manipulators that are attached to one link of the parent, and their offsets.
  ///
  /// @param dependents  receives them instead of what it held
  /// @param offsets     receives the offset of each
  /// @return whether there is any
  virtual bool getDependentManipulatorsAndOffsets(
      KtU32 parentIndex, const KtString& linkLabel, std::vector<KtU32>& dependents,
      KtXmlVectorType<KtCoordinateSystemTransformation>& offsets) const;
  /// Where the state of each dependent of a parent must place its base: F * offset * B^-1 with F
  /// the primary frame of the parent's link in the system and B the dependent's own fixed
  /// placement.
  ///
  /// @param manipulators   those of the system
  /// @param positionState  the parent's position; may be filled further
  /// @param dependents     receives the parent's dependents, unless the parent is no manipulator
  /// @param locations      receives the location of each, if there is any
  /// @return false if the parent is no manipulator or has no dependents; false at the first
  ///         dependent that is no manipulator or whose link does not exist, those before it done
  virtual bool calculateBaseLocations(
      KtU32 parentIndex, const KtXmlVectorType<KtIndividualManipulator>& manipulators,
      KtManipulatorActivePositionState& positionState, std::vector<KtU32>& dependents,
      KtXmlVectorType<KtCoordinateSystemTransformation>& locations) const;

  /// Exact equality.
  bool operator==(const KtManipulatorAttachmentMap&) const = default;
  /// Name of the class in files.
  static const KtToken& classToken() { return KtManip::KtManipulatorAttachmentMapToken; }
};

extern template class KtXmlVectorType<KtCoordinateSystemTransformation>;
extern template class KtXmlPairType<KtManipulatorLinkIdentifier, KtCoordinateSystemTransformation>;
extern template class KtXmlMapType<
    KtXmlBasicType<unsigned int>,
    KtXmlPairType<KtManipulatorLinkIdentifier, KtCoordinateSystemTransformation>>;
