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
  expectOrder("KtAngle", 0, {slotOf(&KtAngle::sine), slotOf(&KtAngle::cosine)});
  expectOrder(
      "KtXmlObject", 2,
      {slotOf(&KtXmlObject::accept), slotOf(&KtXmlObject::clone), slotOf(&KtXmlObject::xmlInit),
       slotOf(&KtXmlObject::read), slotOf(&KtXmlObject::readAttribute), slotOf(&KtXmlObject::write),
       slotOf(&KtXmlObject::writeSchema), slotOf(&KtXmlObject::createSchema),
       slotOf(&KtXmlObject::xmlInitialized), slotOf(&KtXmlObject::setXmlInitialized),
       slotOf(&KtXmlObject::specified), slotOf(&KtXmlObject::setSpecified),
       slotOf(&KtXmlObject::isBasicType), slotOf(&KtXmlObject::equalsDefault),
       slotOf(&KtXmlObject::equality), slotOf(&KtXmlObject::newObject),
       slotOf(&KtXmlObject::token)});
  using C = KtXmlCompoundType;
  expectOrder("KtXmlCompoundType", kObject + 1,
              {slotOf(&C::readAttributes),
               slotOf(&C::readElements),
               slotOf(&C::writeAttributes),
               slotOf(&C::writeElements),
               slotOf(&C::writeSchemaAttributes),
               slotOf(&C::writeSchemaElements),
               slotOf(&C::registerComponents),
               slotOf(&C::registerComponent),
               slotOf(&C::registerComponentReadOnly),
               slotOf(&C::componentMap),
               slotOf(&C::registerAttributeComponent),
               slotOf(&C::registerAttributeComponentReadOnly),
               slotOf(&C::attributeComponentMap),
               slotOf(&C::specialDescriptorMap),
               slotOf(&C::hasChildren),
               slotOf(&C::hasAttributes),
               slotOf(&C::readValueFromToken),
               slotOf(&C::readValueFromSpecialToken),
               slotOf(&C::readAttributeFromToken),
               slotOf(&C::newComponentMap),
               slotOf(&C::newSpecialDescriptorMap),
               slotOf(&C::createComponentMap),
               slotOf(&C::createAttributeComponentMap),
               slotOf(&C::createSpecialDescriptorMap),
               slotOf(&C::isReadOnlyComponent),
               slotOf(&C::isReadOnlyAttribute)});
  using H = KtXmlBaseVariableCompoundType;
  expectOrder(
      "KtXmlBaseVariableCompoundType", kObject + 1,
      {slotOf(&H::registerComponentCreators), slotOf(&H::registerComponentCreator),
       slotOf(&H::newObjectFromToken), slotOf(&H::addLibraries), slotOf(&H::setAddLibraries),
       slotOf(&H::creatorMap), slotOf(&H::readValueFromToken), slotOf(&H::processLibraries)});
  using E = KtBaseExpressionTreeElement;
  expectOrder("KtBaseExpressionTreeElement", kCompound + 1,
              {slotOf(&E::container), slotOf(&E::setContainer)});
}

TEST(VirtualOrder, ReaderAndWriterKeepTheirs) {
  using R = KtXmlReader;
  expectOrder("KtXmlReader", 2,
              {slotOf(&R::nextEvent), slotOf(&R::currentEvent), slotOf(&R::currentToken),
               slotOf(&R::nextAttributeToken), slotOf(&R::attributeValue),
               slotOf(&R::attributeCount), slotOf(&R::hasMoreData), slotOf(&R::setDataMode),
               slotOf(&R::fileName), slotOf(&R::lineCount), slotOf(&R::factory)});
  using W = KtXmlWriter;
  expectOrder("KtXmlWriter", 2,
              {slotOf(&W::beginObjectElement), slotOf(&W::beginElement), slotOf(&W::beginAttribute),
               slotOf(&W::endElement)});
}

TEST(VirtualOrder, ContainersKeepTheirs) {
  expectOrder(
      "KtXmlVectorType", kObject + 1,
      {slotOf(&Vector::pushBack), slotOf(static_cast<bool (Vector::*)(KtU32)>(&Vector::erase)),
       slotOf(static_cast<bool (Vector::*)(KtU32, KtU32)>(&Vector::erase)),
       slotOf(static_cast<const std::vector<Real>& (Vector::*)() const>(&Vector::vectorContainer)),
       slotOf(static_cast<std::vector<Real>& (Vector::*)()>(&Vector::vectorContainer)),
       slotOf(&Vector::reserve), slotOf(&Vector::resize), slotOf(&Vector::resizeToAtLeast),
       slotOf(&Vector::clear), slotOf(&Vector::assign), slotOf(&Vector::size),
       slotOf(&Vector::leftRotate), slotOf(&Vector::writeHeaderToStream),
       slotOf(&Vector::writeBodyToStream), slotOf(&Vector::appendElementToStream),
       slotOf(&Vector::writeFooterToStream), slotOf(&Vector::append)});
  using V = VariableVector;
  using F = KtBaseScalarFunction;
  expectOrder("KtXmlVariableVectorType", kHolder + 1,
              {slotOf(static_cast<const F& (V::*)(KtU32) const>(&V::operator[])),
               slotOf(static_cast<F& (V::*)(KtU32)>(&V::operator[])), slotOf(&V::exchange),
               slotOf(static_cast<bool (V::*)(KtU32)>(&V::erase)),
               slotOf(static_cast<bool (V::*)(KtU32, KtU32)>(&V::erase)), slotOf(&V::pushBack),
               slotOf(&V::vectorContainer), slotOf(&V::reserve), slotOf(&V::resize),
               slotOf(&V::clear), slotOf(&V::assign), slotOf(&V::size),
               slotOf(&V::writeHeaderToStream), slotOf(&V::writeBodyToStream),
               slotOf(&V::appendElementToStream), slotOf(&V::writeFooterToStream)});
  using X = VariableElement;
  expectOrder("KtXmlVariableElementType", kHolder + 1,
              {slotOf(static_cast<const F* (X::*)() const>(&X::element)),
               slotOf(static_cast<F* (X::*)()>(&X::element)), slotOf(&X::setElement)});
  using B = TreeContainer;
  expectOrder(
      "KtBaseExpressionTreeContainer", kHolder + 1,
      {slotOf(static_cast<const F* (B::*)() const>(&B::topElement)),
       slotOf(static_cast<F* (B::*)()>(&B::topElement)), slotOf(&B::setTopElement),
       slotOf(&B::setAndDeleteTopElementPointer), slotOf(&B::setTopElementContainerToThis)});
  using M = Map;
  using U = KtXmlBasicType<KtU32>;
  expectOrder("KtXmlMapType", kObject + 1,
              {slotOf(&M::lookup),
               slotOf(static_cast<const U* (M::*)(const Text&) const>(&M::lookupPointer)),
               slotOf(static_cast<U* (M::*)(const Text&)>(&M::lookupPointer)), slotOf(&M::add),
               slotOf(&M::erase), slotOf(&M::clear),
               slotOf(static_cast<const std::map<Text, U>& (M::*)() const>(&M::mapContainer)),
               slotOf(static_cast<std::map<Text, U>& (M::*)()>(&M::mapContainer)),
               slotOf(&M::keyIndex), slotOf(&M::indexKey), slotOf(&M::size)});
  expectOrder("KtXmlSetType", kObject + 1,
              {slotOf(&Set::find), slotOf(&Set::clear), slotOf(&Set::size), slotOf(&Set::add),
               slotOf(&Set::erase), slotOf(&Set::setContainer)});
  using P = Pair;
  using Both = std::pair<Text, Real>;
  expectOrder("KtXmlPairType", kObject + 1,
              {slotOf(static_cast<const Text& (P::*)() const>(&P::first)),
               slotOf(static_cast<Text& (P::*)()>(&P::first)), slotOf(&P::setFirst),
               slotOf(static_cast<const Real& (P::*)() const>(&P::second)),
               slotOf(static_cast<Real& (P::*)()>(&P::second)), slotOf(&P::setSecond),
               slotOf(&P::set), slotOf(static_cast<const Both& (P::*)() const>(&P::pairContainer)),
               slotOf(static_cast<Both& (P::*)()>(&P::pairContainer))});
  expectOrder("KtLabelAssociatedMap", kCompound + 1,
              {slotOf(&LabelMap::resize), slotOf(&LabelMap::setValue), slotOf(&LabelMap::addLabel),
               slotOf(&LabelMap::value), slotOf(&LabelMap::valueByIndex),
               slotOf(&LabelMap::makeIndicesCompatible)});
}

TEST(VirtualOrder, MassPropertiesKeepTheirs) {
  using Motion = const KtGeneralMotion&;
  expectOrder(
      "KtRigidBodyMassProperties", kCompound + 1,
      {slotOf(static_cast<void (Mass::*)(const T&)>(&Mass::transformBy)),
       slotOf(static_cast<void (Mass::*)(const KtOrientation&)>(&Mass::transformBy)),
       slotOf(static_cast<void (Mass::*)(const KtVector&)>(&Mass::transformBy)),
       slotOf(static_cast<KtGeneralForce (Mass::*)(Motion, Motion) const>(&Mass::calculateForce)),
       slotOf(static_cast<KtGeneralForce (Mass::*)(Motion) const>(&Mass::calculateForce)),
       slotOf(static_cast<KtGeneralMotion (Mass::*)(Motion, const KtGeneralForce&) const>(
           &Mass::calculateAcceleration)),
       slotOf(static_cast<KtGeneralMotion (Mass::*)(const KtGeneralForce&) const>(
           &Mass::calculateAcceleration)),
       slotOf(&Mass::mass),
       slotOf(&Mass::firstMoment),
       slotOf(&Mass::secondMoment),
       slotOf(&Mass::invSecondMoment),
       slotOf(&Mass::set),
       slotOf(&Mass::getCenterOfMass),
       slotOf(&Mass::getPrincipalFrame),
       slotOf(&Mass::isValid),
       slotOf(&Mass::spatialCholeskyDecomposition),
       slotOf(&Mass::getArray),
       slotOf(&Mass::approxEq),
       slotOf(&Mass::scaleBy),
       slotOf(&Mass::getEllipsoid),
       slotOf(&Mass::makeValid),
       slotOf(&Mass::computeSecondMomentInverse)});
}

TEST(VirtualOrder, ShapesKeepTheirs) {
  using S = KtShape;
  expectOrder("KtShape", kTreeElement + 1,
              {slotOf(static_cast<const S* (S::*)() const>(&S::outerBoundingVolume)),
               slotOf(&S::innerBoundedShape), slotOf(&S::boundingVolumeLevel),
               slotOf(&S::closestPointIndex)});
  using C = KtShapeContainer;
  const std::size_t last =
      slotOf(&KtBaseExpressionTreeContainer<KtShape>::setTopElementContainerToThis);
  expectOrder("KtShapeContainer", last + 1,
              {slotOf(&C::scaleBy), slotOf(&C::transformBy), slotOf(&C::addBoundingVolume),
               slotOf(&C::deleteBoundingVolumes)});
  using P = KtShapePointEvent;
  expectOrder("KtShapePointEvent", kCompound + 1,
              {slotOf(&P::distance), slotOf(&P::setDistance), slotOf(&P::isImpacted),
               slotOf(&P::setIsImpacted)});
}

}  // namespace
