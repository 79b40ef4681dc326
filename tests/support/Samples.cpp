#include "support/Samples.h"

#include <cxxabi.h>

#include <cctype>
#include <cmath>
#include <limits>

namespace {

using Bool = KtXmlBasicType<bool>;
using Real = KtXmlBasicType<double>;
using Text = KtXmlBasicType<std::string>;
using U32 = KtXmlBasicType<KtU32>;
using T = KtCoordinateSystemTransformation;
using Mass = KtRigidBodyMassProperties;
using Reals = KtXmlVectorType<Real>;
using Texts = KtXmlVectorType<Text>;

const T kFrame(KtVector(0.1, -2.5, 1e-7), KtOrientation(0.5, -0.5, 0.5, 0.5));
const std::vector<KtVector> kTetrahedron = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const KtGeneralMotion kMotion({1.0, 2.0, 3.0}, {-0.1, 0.2, -0.3});
const KtGeneralForce kForce({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});

template <class Element, class... Values>
KtXmlVectorType<Element> listOf(const Values&... values) {
  KtXmlVectorType<Element> list;
  (list.pushBack(Element(values)), ...);
  return list;
}

Reals someReals() {
  const double infinity = std::numeric_limits<double>::infinity();
  return listOf<Real>(0.1, -0.0, 1.0 / 3.0, 5e-324, 1.7976931348623157e308, infinity, -infinity,
                      123456789.0, -1e22);
}

// Texts that look like markup, quotation, separators and nothing, and some beyond ASCII.
Texts someTexts() {
  Texts list;
  for (const char* text : {"plain", "two words", "", "\"", "back\\slash", "\"q\\\"", "<a>&]]>",
                           "line\nbreak\r\ttab ", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\xA6\xBE"}) {
    list.pushBack(std::string(text));
  }
  return list;
}

// Sets an object, with all that it is made of, to values that are no defaults and differ.
class Filler {
 public:
  template <class E>
  void fill(KtXmlVectorType<E>& list) {
    list.resize(2 + lists_++ % 3);
    for (KtU32 i = 0; i < list.size(); ++i) fill(list[i]);
  }
  template <class K, class V>
  void fill(KtXmlMapType<K, V>& map) {
    for (int i = 0; i < 2; ++i) map.add(made<K>(), made<V>());
  }
  template <class E>
  void fill(KtXmlSetType<E>& set) {
    for (int i = 0; i < 2; ++i) set.add(made<E>());
  }
  template <class First, class Second>
  void fill(KtXmlPairType<First, Second>& pair) {
    fill(pair.first()), fill(pair.second());
  }
  void fill(KtXmlObject& object) {
    if (auto* holder = dynamic_cast<KtXmlBaseVariableCompoundType*>(&object)) {
      fillHolder(*holder);
    } else if (const auto* compound = dynamic_cast<const KtXmlCompoundType*>(&object)) {
      for (const auto& entry : compound->componentMap().entries()) {
        if (!entry.readOnly) fill(*entry.component);
      }
    } else if (auto* choice = dynamic_cast<KtXmlEnumType<KtU32>*>(&object)) {
      *choice = *choice == 1U ? 0U : 1U;
    } else if (auto* flag = dynamic_cast<Bool*>(&object)) {
      KtXmlReader::readString(*flag ? "<basic>false</basic>" : "<basic>true</basic>", object);
    } else {
      setValue(object) ||
          fillAs<KtXmlVectorType<Bool>, KtXmlVectorType<Reals>, KtXmlVectorType<KtGeneralForce>,
                 KtXmlVectorType<KtManufacturerData>, KtXmlVectorType<KtLinkPositionState>,
                 KtXmlVectorType<KtLinkVelocityState>, KtXmlVectorType<KtLinkAccelerationState>,
                 KtXmlVectorType<KtLinkForceState>, KtXmlVectorType<KtLinkMassState>,
                 KtXmlVectorType<KtLinkArticulationState>, KtXmlMapType<Text, Mass>,
                 KtXmlMapType<Text, KtXmlVector>, KtXmlMapType<Text, T>, KtSurfaceMap>(object);
    }
  }

 private:
  template <class Cls>
  Cls made() {
    Cls object;
    fill(object);
    return object;
  }
  double real() {
    value_ = (value_ < 0.0 ? 1.0 : -1.0) * (std::abs(value_) + 1.0 / 3.0);
    return value_;
  }
  KtVector vector() { return {real(), real(), real()}; }
  std::string text() { return "<\"" + std::to_string(real()) + "\" & more>"; }

  // One of the first class that the holder knows; the name of a library if it knows none. Shapes
  // hold shapes, which end somewhere.
  void fillHolder(KtXmlBaseVariableCompoundType& holder) {
    if (depth_ > 1) return;
    holder.newObjectFromToken(KtToken("none"));  // makes it register its classes
    if (holder.creatorMap().empty()) {
      holder.setAddLibraries({1, std::string("sampleLibrary")});
      return;
    }
    const std::unique_ptr<KtXmlObject> element(holder.creatorMap().begin()->second());
    ++depth_, fill(*element), --depth_;
    const std::string text = KtXmlWriter::writeString(*element);
    const std::string name(holder.token().localName());
    KtXmlReader::readString("<" + name + ">" + text.substr(text.find("?>") + 2) + "</" + name + ">",
                            holder);
  }
  template <class... Values>
  static bool setTo(KtXmlObject& object, const Values&... values) {
    const auto set = [&object]<class Value>(const Value& value) {
      auto* member = dynamic_cast<Value*>(&object);
      if (member != nullptr) *member = value;
      return member != nullptr;
    };
    return (set(values) || ...);
  }
  bool setValue(KtXmlObject& object) {
    Reals reals = someReals();
    Texts texts = someTexts();
    reals.pushBack(real());
    texts.pushBack(text());
    const double positive = std::abs(real());
    return setTo(object, Real(real()), Text(text()), U32(static_cast<KtU32>(5.0 + positive)),
                 KtXmlBasicType<KtNonNegReal>(KtNonNegReal(positive)),
                 KtXmlBasicType<KtAngle>(KtAngle(positive)), KtXmlVector(vector()),
                 KtGeneralMotion(vector(), vector()), KtGeneralForce(vector(), vector()),
                 T(vector(), KtOrientation(0.5, -0.5, 0.5, 0.5)), Mass::pointMass(positive), reals,
                 texts);
  }
  template <class... Lists>
  bool fillAs(KtXmlObject& object) {
    const auto fillList = [this](auto* list) {
      if (list != nullptr) fill(*list);
      return list != nullptr;
    };
    return (fillList(dynamic_cast<Lists*>(&object)) || ...);
  }

  double value_ = 0.0;
  KtU32 lists_ = 0, depth_ = 0;
};

template <class Cls>
Cls filled() {
  Cls object;
  Filler().fill(object);
  return object;
}

// The name of a class in the names of tests and files.
template <class Cls>
std::string nameOf() {
  const std::unique_ptr<char, decltype(&std::free)> full(
      abi::__cxa_demangle(typeid(Cls).name(), nullptr, nullptr, nullptr), &std::free);
  std::string name;
  for (const char* c = full.get(); *c != 0; ++c) {
    if (std::string_view(c).starts_with("std::")) c += 4;
    if (std::isalnum(static_cast<unsigned char>(*c)) != 0) name += *c;
  }
  return name.substr(0, 120);
}

class Samples {
 public:
  template <class... Cls>
  void addFilled() {
    (all_.push_back({nameOf<Cls>(), [] { return std::make_unique<Cls>(filled<Cls>()); }}), ...);
  }
  // Every test's process lists the samples, and few make them.
  template <class Make>
  void addMade(Make make) {
    using Cls = decltype(make());
    all_.push_back({nameOf<Cls>(), [make] { return std::make_unique<Cls>(make()); }});
  }
  template <class Cls>
  void add(const Cls& value) {
    addMade([value] { return value; });
  }
  const std::vector<Sample>& all() const { return all_; }

 private:
  std::vector<Sample> all_;
};

SampleNode node() {
  SampleNode node;
  node.kind = 7U;
  node.label = std::string(" <base> & \"more\" ");
  node.weight = 2.5;
  node.mode = 1U;
  node.motion = kMotion;
  node.function.setTopElement(KtLinearScalarFunction(0.25, 4.0));
  node.children.resize(2);
  node.children[1].label = std::string("child");
  node.children[1].children.resize(1);
  return node;
}

template <class Link = KtManipulatorLink>
Link link(const std::string& label) {
  Link link = filled<Link>();
  link.setLabel(label);
  link.setLinkKinematics(KtDenavitHartenberg::defaultObject());
  link.setMassProperties(Mass::defaultObject());
  link.addMassProperties("load", Mass::pointMass(2.0));
  KtLinkReferenceDescription description;
  description.setReferencedLinkLabel("another");
  link.setLinkReferenceDescription(description);
  return link;
}

KtIndividualManipulator arm(const std::string& label) {
  auto arm = link<KtIndividualManipulator>(label);
  arm.addChild(link("upper arm"));
  arm.addLinkToEndOfChain(link("forearm"));
  arm.setAbsoluteBoundingSphere(KtSphere({1.0, 2.0, 3.0}, 0.25, 3));
  KtManipulatorReferenceDescription description;
  description.setReferencedManipulatorLabel("another");
  arm.setManipulatorReferenceDescription(description);
  arm.setLinkReferenceDescription({});  // which no file has
  return arm;
}

KtManipulatorSystem system() {
  KtManipulatorSystem system;
  system.setEnvironment(filled<KtSystemEnvironment>());
  system.addManipulator(arm("left"));
  system.addManipulator(arm("right"));
  system.findAndConvertToReferences();
  KtManipulatorAttachmentMap attachments;
  attachments.attachManipulator(1, 0, "upper arm", kFrame);
  system.setManipulatorAttachmentMap(attachments);
  KtSystemCollisionExclusionMap exclusions;
  exclusions.excludeManipulatorCollisionCandidates(0, 1);
  exclusions.excludeLinkCollisionCandidates(0, "forearm", 1);
  exclusions.excludeLinkCollisionCandidate(0, "upper arm", 1, "right");
  system.setCollisionExclusionMap(exclusions);
  system.setLinkInteractionsVector(filled<KtLinkInteractionsVector>());
  return system;
}

// Through its setter the primary frame brings its inverse up to date, as reading does.
template <class Joint>
Joint joint() {
  Joint joint = filled<Joint>();
  joint.setPrimaryFrame(filled<Joint>().primaryFrame());
  return joint;
}

// With two volumes around it.
template <class Shape>
Shape bounded(Shape shape) {
  shape.setIdentifier("part \"7\"");
  shape.setSurfaceLabel("rubber");
  shape.setSurfaces(KtSurfaceMap(std::string("rubber"), KtDataMap::boundingColor()));
  shape.setTakesContactForces(false);
  shape.addBoundingVolume(KtShape::kBox);
  shape.addBoundingVolume(KtSphereShape(KtVector(1.0, 2.0, 3.0), 50.0));
  return shape;
}

void addValues(Samples& to) {
  to.add(Text(std::string("  a <text>\r\n\t& \"more\" ")));
  to.add(KtXmlBasicType<KtAngle>(KtAngle(-2.25)));
  to.add(someReals()), to.add(someTexts());
  to.add(KtXmlEnumType<KtU32>(3U));
  to.add(KtXmlOrientation(KtOrientation(0.5, -0.5, 0.5, 0.5)));
  to.add(kFrame), to.add(kMotion), to.add(kForce);
  to.add(KtLine({1.0, 2.0, 3.0}, {0.0, 0.6, 0.8}));
  to.add(KtPlane({1.0, 2.0, 3.0}, {0.0, 0.6, 0.8}));
  to.add(KtLineSegment({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}));
  to.add(KtSphere({1.0, 2.0, 3.0}, 0.25, 2));
  to.add(KtCapsule({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}}, 0.5));
  to.add(KtEllipsoid(1.0, 2.0, 3.0, kFrame));
  to.add(KtSpatialMatrix(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0));
  to.add(KtSecondMoment(3.0, 4.0, 5.0, 0.1, 0.2, 0.3));
  to.add(Mass::defaultObject());
  KtArticulatedBodyInertia inertia;
  inertia.setFromRigidBody(Mass::defaultObject());
  to.add(inertia), to.add(KtArticulatedBodyDynamics(inertia, kForce));
  KtLabelAssociatedMap<Bool> pairs;
  KtLabelAssociatedRealMap friction;
  for (const char* label : {"a", "b"}) pairs.addLabel(label), friction.addLabel(label);
  pairs.setValue("a", "b", true), friction.setValue("b", "a", 0.7);
  to.add(pairs), to.add(friction);
  KtLinearMultivariableConstraint linear;
  linear.setConstant(2.0), linear.setCoefficient(2, -1.0);
  to.add(linear);
  KtManipulatorSelfCollisionLinkMap links;
  links.setLinkCollisionCanditateByIdentifier("upper", "fore", true);
  links.setLinkCollisionCanditateByIdentifier("fore", "fore", false);
  to.add(links);
  to.addMade([] { return system().collisionExclusionMap(); });
  to.addMade([] { return system().manipulatorAttachmentMap(); });
  to.add(KtXmlVertexList(kTetrahedron));
  to.add(KtXmlTriangleList({{0, 2, 1}, {4294967295U, 7, 9}}));
  to.addMade([] {
    KtManipulatorLink tree = link("arm");
    tree.addChild(link("hand"));
    return tree;
  });
  to.addMade(node), to.addMade([] { return arm("robot"); }), to.addMade(system);
  SampleFunctionVector functions;
  for (const double a : {1.0, 3.0}) functions.pushBack(KtLinearScalarFunction(a, 4.0));
  to.add(functions);
  SampleFunctionHolder holder;
  holder.setAddLibraries({1, std::string("sampleLibrary")});
  holder.setElement(KtLinearScalarFunction(1.0, 2.0));
  to.add(holder);
  // Reading cuts the lists to a common length.
  KtManipulatorSystemState state;
  state.setPositionStates({2, filled<KtPositionState>()});
  state.setVelocityStates({2, filled<KtVelocityState>()});
  state.setTime(0.1);
  to.add(state);
  to.addMade([] {
    KtStatedSystem stated;
    stated.setFromSystem(system());
    KtVelocityState velocity = stated.state().velocityStates()[1];
    velocity.setGeneralVelocity(kMotion);
    stated.setIndividualVelocityState(1, velocity);
    return stated;
  });
  to.addMade([] {
    KtSystemActiveState active;
    active.setNumManipulators(2);
    active.manipulatorActiveStateVector()[1] = filled<KtManipulatorActiveState>();
    return active;
  });
}

void addShapes(Samples& to) {
  KtConvexPolyhedron hull;
  hull.setFromPoints(kTetrahedron), hull.setFrame(kFrame);
  KtPolyPhysicalExtent mesh;
  mesh.setMesh(kTetrahedron, {{0, 2, 1}, {0, 1, 3}}), mesh.setFrame(kFrame);
  KtExtentUnion extents;
  extents.addMember(KtSphereShape({}, 1.0)), extents.addMember(KtConeShape(0.5, 2.0, kFrame));
  KtShapeUnion shapes;
  shapes.addMember(extents), shapes.addMember(KtCylinderShape(0.5, 2.0, kFrame));
  KtSphereShape ball;
  ball.setCenter({1.0, 2.0, 3.0}), ball.setRadius(0.25);
  KtCapsuleShape capsule;
  capsule.setCapsule({KtLineSegment({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}), 0.5});
  const auto add = [&to](const auto&... shape) {
    (to.addMade([shape] { return bounded(shape); }), ...);
  };
  add(hull, mesh, extents, shapes, ball, capsule, KtBoxShape({1.0, 2.0, 3.0}, kFrame),
      KtCylinderShape(0.5, 2.0, kFrame), KtConeShape(0.5, 2.0, kFrame),
      KtEllipsoidShape(KtEllipsoid(1.0, 2.0, 3.0, kFrame)));
  to.addMade([shapes] {
    KtShapeContainer holder;
    holder.setTopElement(bounded(shapes));
    return holder;
  });
}

}  // namespace

std::vector<Sample> allSamples() {
  Samples samples;
  addValues(samples);
  addShapes(samples);
  samples.add(joint<KtScrewTypeLink>());
  samples.add(joint<KtQuadrilateralTypeLink>());
  KtDenavitHartenberg turning = KtDenavitHartenberg::defaultObject();
  turning.setDhType(KtDenavitHartenberg::kGeneralCraig), turning.setPrecursor(kFrame);
  samples.add(turning);
  samples.addFilled<
      Bool, Real, U32, KtXmlBasicType<KtNonNegReal>, KtXmlVector, KtXmlVectorType<Bool>,
      KtXmlVectorType<KtXmlVectorType<Bool>>, KtXmlVectorType<Reals>,
      KtXmlVectorType<KtXmlVectorType<KtGeneralForce>>, KtXmlVectorVector, KtXmlVectorType<Mass>,
      KtXmlVectorType<KtJointActuator>, KtXmlVectorType<KtPropagationResultData>,
      KtXmlVectorType<KtManipulatorTorque>, KtXmlVectorType<KtManipulatorActivePositionState>,
      KtXmlMapType<Text, U32>, KtXmlMapType<Text, KtXmlVector>, KtXmlMapType<Text, T>,
      KtXmlMapType<Text, Mass>, KtXmlMapType<Text, KtXmlMapType<Text, Bool>>,
      KtXmlMapType<Text, KtStoppingCriterionVector>, KtXmlSetType<U32>, KtXmlPairType<Text, Real>,
      KtXmlPairType<KtXmlPairType<U32, Text>, KtScalarFunctionContainer>, KtDataMap, KtSurfaceMap,
      KtLinearScalarFunction, KtScalarFunctionContainer, KtMultivariableConstraintContainer,
      KtShapePointEvent, KtExtentVector, KtShapeVector>();
  samples.addFilled<
      KtManufacturerData, KtActuatorState, KtPassThroughPowerConverter, KtDcElectricMotor,
      KtHydraulicCylinder, KtPowerConverterContainer, KtMechanicalActuatorComponent,
      KtMechanicalActuatorComponentContainer, KtOldJointActuator, KtJointActuatorContainer,
      KtJointActuator, KtSpringProperties, KtDamperProperties, KtPositionState, KtVelocityState,
      KtAccelerationState, KtManipulatorTorque, KtManipulatorExternalForce,
      KtMultivariableJointStateConstraint, KtLinearStateEqualityConstraint,
      KtStateConstraintContainer, KtStateConstraintVector, KtStateEqualityConstraintVector,
      KtLinkKinematicsContainer, KtQuadrilateralFixedSliderJointOAObject,
      KtQuadrilateralFixedSliderJointCBObject, KtQuadrilateralPivotedSliderJointBObject,
      KtQuadrilateralPivotedSliderJointCObject, KtGeneralBoundObjectVector, KtSystemEnvironment,
      KtManipulatorLinkIdentifier, KtLinkReferenceDescription, KtManipulatorReferenceDescription,
      KtLinkAttachment, KtPropagationDescriptor, KtSystemProcessingParameters,
      KtLinkInteractionsVector, KtManipulatorActiveState, KtManipulatorActivePositionState,
      KtManipulatorActiveVelocityState, KtManipulatorActiveAccelerationState,
      KtManipulatorActiveForceState, KtManipulatorActiveMassState,
      KtManipulatorActiveArticulationState, KtLinkPositionState, KtLinkVelocityState,
      KtLinkAccelerationState, KtLinkForceState, KtLinkMassState, KtLinkArticulationState>();
  return samples.all();
}
