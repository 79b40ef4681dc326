#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using Real = KtXmlBasicType<double>;
using Text = KtXmlBasicType<std::string>;
using Vector = KtXmlVectorType<Real>;
using VariableVector = KtXmlVariableVectorType<KtBaseScalarFunction>;
using VariableElement = KtXmlVariableElementType<KtBaseScalarFunction>;
using TreeContainer = KtBaseExpressionTreeContainer<KtBaseScalarFunction>;
using Map = KtXmlMapType<Text, KtXmlBasicType<KtU32>>;
using Set = KtXmlSetType<KtXmlBasicType<KtU32>>;
using Pair = KtXmlPairType<Text, Real>;
using LabelMap = KtLabelAssociatedMap<Real>;
using Mass = KtRigidBodyMassProperties;
using T = KtCoordinateSystemTransformation;

// The order of virtual operations is part of the interface: a program that was built against one
// build of the library must run with the next.
TEST(VirtualOrder, FoundationKeepsIts) {
  expectOrder("KtAngle", 0, &KtAngle::sine, &KtAngle::cosine);
  expectOrder("KtXmlObject", 2, &KtXmlObject::accept, &KtXmlObject::clone, &KtXmlObject::xmlInit,
              &KtXmlObject::read, &KtXmlObject::readAttribute, &KtXmlObject::write,
              &KtXmlObject::writeSchema, &KtXmlObject::createSchema, &KtXmlObject::xmlInitialized,
              &KtXmlObject::setXmlInitialized, &KtXmlObject::specified, &KtXmlObject::setSpecified,
              &KtXmlObject::isBasicType, &KtXmlObject::equalsDefault, &KtXmlObject::equality,
              &KtXmlObject::newObject, &KtXmlObject::token);
  using C = KtXmlCompoundType;
  expectOrder("KtXmlCompoundType", kObject + 1, &C::readAttributes, &C::readElements,
              &C::writeAttributes, &C::writeElements, &C::writeSchemaAttributes,
              &C::writeSchemaElements, &C::registerComponents, &C::registerComponent,
              &C::registerComponentReadOnly, &C::componentMap, &C::registerAttributeComponent,
              &C::registerAttributeComponentReadOnly, &C::attributeComponentMap,
              &C::specialDescriptorMap, &C::hasChildren, &C::hasAttributes, &C::readValueFromToken,
              &C::readValueFromSpecialToken, &C::readAttributeFromToken, &C::newComponentMap,
              &C::newSpecialDescriptorMap, &C::createComponentMap, &C::createAttributeComponentMap,
              &C::createSpecialDescriptorMap, &C::isReadOnlyComponent, &C::isReadOnlyAttribute);
  using H = KtXmlBaseVariableCompoundType;
  expectOrder("KtXmlBaseVariableCompoundType", kObject + 1, &H::registerComponentCreators,
              &H::registerComponentCreator, &H::newObjectFromToken, &H::addLibraries,
              &H::setAddLibraries, &H::creatorMap, &H::readValueFromToken, &H::processLibraries);
  using E = KtBaseExpressionTreeElement;
  expectOrder("KtBaseExpressionTreeElement", kCompound + 1, &E::container, &E::setContainer);
}

TEST(VirtualOrder, ReaderAndWriterKeepTheirs) {
  using R = KtXmlReader;
  expectOrder("KtXmlReader", 2, &R::nextEvent, &R::currentEvent, &R::currentToken,
              &R::nextAttributeToken, &R::attributeValue, &R::attributeCount, &R::hasMoreData,
              &R::setDataMode, &R::fileName, &R::lineCount, &R::factory);
  using W = KtXmlWriter;
  expectOrder("KtXmlWriter", 2, &W::beginObjectElement, &W::beginElement, &W::beginAttribute,
              &W::endElement);
}

TEST(VirtualOrder, ContainersKeepTheirs) {
  expectOrder("KtXmlVectorType", kObject + 1, &Vector::pushBack, taking<KtU32>(&Vector::erase),
              taking<KtU32, KtU32>(&Vector::erase), constant(&Vector::vectorContainer),
              variable(&Vector::vectorContainer), &Vector::reserve, &Vector::resize,
              &Vector::resizeToAtLeast, &Vector::clear, &Vector::assign, &Vector::size,
              &Vector::leftRotate, &Vector::writeHeaderToStream, &Vector::writeBodyToStream,
              &Vector::appendElementToStream, &Vector::writeFooterToStream, &Vector::append);
  using V = VariableVector;
  expectOrder("KtXmlVariableVectorType", kHolder + 1, constant(&V::operator[]),
              variable(&V::operator[]), &V::exchange, taking<KtU32>(&V::erase),
              taking<KtU32, KtU32>(&V::erase), &V::pushBack, &V::vectorContainer, &V::reserve,
              &V::resize, &V::clear, &V::assign, &V::size, &V::writeHeaderToStream,
              &V::writeBodyToStream, &V::appendElementToStream, &V::writeFooterToStream);
  using X = VariableElement;
  expectOrder("KtXmlVariableElementType", kHolder + 1, constant(&X::element), variable(&X::element),
              &X::setElement);
  using B = TreeContainer;
  expectOrder("KtBaseExpressionTreeContainer", kHolder + 1, constant(&B::topElement),
              variable(&B::topElement), &B::setTopElement, &B::setAndDeleteTopElementPointer,
              &B::setTopElementContainerToThis);
  using M = Map;
  expectOrder("KtXmlMapType", kObject + 1, &M::lookup, constant(&M::lookupPointer),
              variable(&M::lookupPointer), &M::add, &M::erase, &M::clear,
              constant(&M::mapContainer), variable(&M::mapContainer), &M::keyIndex, &M::indexKey,
              &M::size);
  expectOrder("KtXmlSetType", kObject + 1, &Set::find, &Set::clear, &Set::size, &Set::add,
              &Set::erase, &Set::setContainer);
  using P = Pair;
  expectOrder("KtXmlPairType", kObject + 1, constant(&P::first), variable(&P::first), &P::setFirst,
              constant(&P::second), variable(&P::second), &P::setSecond, &P::set,
              constant(&P::pairContainer), variable(&P::pairContainer));
  expectOrder("KtLabelAssociatedMap", kCompound + 1, &LabelMap::resize, &LabelMap::setValue,
              &LabelMap::addLabel, &LabelMap::value, &LabelMap::valueByIndex,
              &LabelMap::makeIndicesCompatible);
}

TEST(VirtualOrder, MassPropertiesKeepTheirs) {
  using Motion = const KtGeneralMotion&;
  expectOrder("KtRigidBodyMassProperties", kCompound + 1, taking<const T&>(&Mass::transformBy),
              taking<const KtOrientation&>(&Mass::transformBy),
              taking<const KtVector&>(&Mass::transformBy),
              taking<Motion, Motion>(&Mass::calculateForce), taking<Motion>(&Mass::calculateForce),
              taking<Motion, const KtGeneralForce&>(&Mass::calculateAcceleration),
              taking<const KtGeneralForce&>(&Mass::calculateAcceleration), &Mass::mass,
              &Mass::firstMoment, &Mass::secondMoment, &Mass::invSecondMoment, &Mass::set,
              &Mass::getCenterOfMass, &Mass::getPrincipalFrame, &Mass::isValid,
              &Mass::spatialCholeskyDecomposition, &Mass::getArray, &Mass::approxEq, &Mass::scaleBy,
              &Mass::getEllipsoid, &Mass::makeValid, &Mass::computeSecondMomentInverse);
}

TEST(VirtualOrder, ShapesKeepTheirs) {
  using S = KtShape;
  expectOrder("KtShape", kTreeElement + 1, constant(&S::outerBoundingVolume), &S::innerBoundedShape,
              &S::boundingVolumeLevel, &S::closestPointIndex);
  using C = KtShapeContainer;
  const std::size_t last =
      slotOf(&KtBaseExpressionTreeContainer<KtShape>::setTopElementContainerToThis);
  expectOrder("KtShapeContainer", last + 1, &C::scaleBy, &C::transformBy, &C::addBoundingVolume,
              &C::deleteBoundingVolumes);
  using P = KtShapePointEvent;
  expectOrder("KtShapePointEvent", kCompound + 1, &P::distance, &P::setDistance, &P::isImpacted,
              &P::setIsImpacted);
}

}  // namespace
