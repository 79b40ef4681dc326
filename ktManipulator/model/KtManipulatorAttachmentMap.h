#pragma once

#include <vector>

#include "ktManipulator/foundation/containers/KtXmlPairType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/state/KtManipulatorLinkIdentifier.h"

class KtIndividualManipulator;
class KtManipulatorActivePositionState;

/// Attachments of manipulators to links of others. The map leads from the index of a dependent
/// manipulator to the link of its parent and the offset of its base from that link's primary frame.
///
/// A manipulator has at most one parent and any number of dependents. Cycles are not detected. All
/// results are in ascending order of the dependent index.
class KT_EXPORT KtManipulatorAttachmentMap
    : public KtXmlPersistent<KtManipulatorAttachmentMap,
                             KtXmlMapType<KtXmlBasicType<unsigned int>,
                                          KtXmlPairType<KtManipulatorLinkIdentifier,
                                                        KtCoordinateSystemTransformation>>> {
 public:
  /// Attaches the dependent's base to a link of the parent.
  ///
  /// @param offset  the dependent's base in the primary frame of the link
  /// @return false, with nothing changed, if the two are the same manipulator or the dependent is
  ///         already attached
  virtual bool attachManipulator(KtU32 dependentIndex, KtU32 parentIndex, const KtString& linkLabel,
                                 const KtCoordinateSystemTransformation& offset);
  /// Removes the attachment of a dependent; false if it has none.
  virtual bool removeManipulatorAttachment(KtU32 dependentIndex);
  /// Finds the attachment of a manipulator.
  ///
  /// @return false, with nothing changed, if it has none
  virtual bool getDependentManipulatorInfo(KtU32 dependentIndex, KtU32& parentIndex,
                                           KtString& linkLabel,
                                           KtCoordinateSystemTransformation& offset) const;
  /// All manipulators that are attached to any link of the parent.
  virtual std::vector<KtU32> dependentManipulators(KtU32 parentIndex) const;
  /// All manipulators that are attached to one link of the parent, and their offsets.
  ///
  /// @param dependents  receives the indices and loses its old contents
  /// @param offsets     receives the offset of each
  /// @return true if there is any
  virtual bool getDependentManipulatorsAndOffsets(
      KtU32 parentIndex, const KtString& linkLabel, std::vector<KtU32>& dependents,
      KtXmlVectorType<KtCoordinateSystemTransformation>& offsets) const;
  /// The base pose for the state of each dependent of a parent: F * offset * B^-1, where F is the
  /// primary frame of the parent's link in the system and B is the dependent's own fixed
  /// placement.
  ///
  /// @param manipulators   those of the system
  /// @param positionState  the parent's position; results are cached in it
  /// @param dependents     receives the parent's dependents; unchanged if the parent doesn't exist
  /// @param locations      receives the location of each, if there is any
  /// @return false if the parent doesn't exist or has no dependents. Also false, with the earlier
  ///         dependents done, at the first dependent that doesn't exist or whose link doesn't.
  virtual bool calculateBaseLocations(
      KtU32 parentIndex, const KtXmlVectorType<KtIndividualManipulator>& manipulators,
      KtManipulatorActivePositionState& positionState, std::vector<KtU32>& dependents,
      KtXmlVectorType<KtCoordinateSystemTransformation>& locations) const;

  bool operator==(const KtManipulatorAttachmentMap&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorAttachmentMapToken; }
};

extern template class KtXmlVectorType<KtCoordinateSystemTransformation>;
extern template class KtXmlPairType<KtManipulatorLinkIdentifier, KtCoordinateSystemTransformation>;
extern template class KtXmlMapType<
    KtXmlBasicType<unsigned int>,
    KtXmlPairType<KtManipulatorLinkIdentifier, KtCoordinateSystemTransformation>>;
