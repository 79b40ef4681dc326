#include "support/Samples.h"

#include <cmath>

#include "support/SampleKit.h"

namespace {

using namespace samplekit;

void fillNode(SampleNode& node) {
  node.kind = 7U;
  node.label = std::string(" <base> & \"more\" ");
  node.weight = 2.5;
  node.mode = 1U;
  node.motion = {{1.0, 2.0, 3.0}, {-0.1, 0.2, -0.3}};
  node.function.setTopElement(KtLinearScalarFunction(0.25, 4.0));
  node.children.resize(2);
  node.children[1].label = std::string("child");
  node.children[1].children.resize(1);
}

/// Finds the type of a component and sets it to the next of a row of distinct values.
class Filler {
 public:
  void fill(KtXmlObject& object) {
    if (const auto* compound = dynamic_cast<const KtXmlCompoundType*>(&object)) {
      for (const auto& entry : compound->componentMap().entries()) {
        if (!entry.readOnly) fill(*entry.component);
      }
    } else if (auto* flag = dynamic_cast<Bool*>(&object)) {
      *flag = !*flag;
    } else if (auto* choice = dynamic_cast<KtXmlEnumType<KtU32>*>(&object)) {
      *choice = *choice == 1U ? 0U : 1U;
    } else {
      setValue(object) ||
          setList<Bool, KtXmlVectorType<Real>, KtGeneralForce, KtManufacturerData>(object);
    }
  }

 private:
  double real() {
    value_ = (value_ < 0.0 ? 1.0 : -1.0) * (std::abs(value_) + 1.0 / 3.0);
    return value_;
  }
  KtVector vector() { return {real(), real(), real()}; }

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
    auto reals = someReals();
    auto texts = someTexts();
    reals.pushBack(real());
    const std::string text = "<\"" + std::to_string(real()) + "\" & more>";
    texts.pushBack(text);
    return setTo(object, Real(real()), Text(text), U32(static_cast<KtU32>(5.0 + std::abs(real()))),
                 KtXmlVector(vector()), KtGeneralMotion(vector(), vector()),
                 KtGeneralForce(vector(), vector()),
                 KtCoordinateSystemTransformation(vector(), KtOrientation(0.5, -0.5, 0.5, 0.5)),
                 reals, texts);
  }
  template <class... Elements>
  bool setList(KtXmlObject& object) {
    const auto set = [&]<class List>(List* list) {
      if (list == nullptr) return false;
      list->resize(2 + lists_++ % 3);
      for (KtU32 i = 0; i < list->size(); ++i) fill((*list)[i]);
      return true;
    };
    return (set(dynamic_cast<KtXmlVectorType<Elements>*>(&object)) || ...);
  }

  double value_ = 0.0;
  KtU32 lists_ = 0;
};

}  // namespace

void samplekit::fillComponents(KtXmlCompoundType& object) {
  Filler().fill(object);
}

void addFoundationSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(sample<Bool>("Bool", true));
  add(sample<Real>("Real", 0.1));
  add(sample<U32>("U32", 4294967295U));
  add(sample<Text>("Text", std::string("  a <text>\r\n\t& \"more\" ")));
  add(sample<KtXmlBasicType<KtAngle>>("Angle", KtAngle(-2.25)));
  add(sample<KtXmlBasicType<KtNonNegReal>>("NonNegReal", KtNonNegReal(1e-9)));
  add(sample<KtXmlEnumType<KtU32>>("Enum", 3U));
  add(filled<KtXmlVectorType<Bool>>("BoolVector", [](auto& list) {
    list.assign(3, true);
    list[1] = false;
  }));
  add(filled<KtXmlVectorType<Real>>("RealVector", [](auto& list) { list = someReals(); }));
  add(filled<KtXmlVectorType<Text>>("TextVector", [](auto& list) { list = someTexts(); }));
  add(filled<KtXmlVectorType<KtXmlVectorType<Bool>>>(
      "BoolVectorVector", [](auto& list) { list.assign(2, KtXmlVectorType<Bool>(2, true)); }));
  add(filled<KtXmlVectorType<KtXmlVectorType<Real>>>("RealVectorVector", [](auto& list) {
    list.resize(3);
    list[0] = list[2] = someReals();
  }));
  add(filled<KtXmlVectorType<KtXmlVectorType<KtGeneralForce>>>("ForceVectorVector", [](auto& list) {
    list.resize(1);
    list[0].assign(2, KtGeneralForce({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}));
  }));
  add(filled<KtXmlVectorVector>("VectorVector",
                                [](auto& list) { list.assign(2, KtXmlVector(1.0, 2.0, 3.0)); }));
  add(filled<KtXmlVectorType<KtRigidBodyMassProperties>>(
      "MassVector", [](auto& list) { list.pushBack(KtRigidBodyMassProperties::defaultObject()); }));
  add(filled<KtXmlMapType<Text, U32>>("TextToU32", [](auto& map) {
    map.add(std::string("b"), 2U);
    map.add(std::string(""), 1U);
  }));
  add(filled<KtXmlMapType<Text, KtXmlVector>>(
      "TextToVector", [](auto& map) { map.add(std::string("tip"), KtVector(1.0, 2.0, 3.0)); }));
  add(filled<KtXmlMapType<Text, KtCoordinateSystemTransformation>>(
      "TextToFrame", [](auto& map) { map.add(std::string("tool"), kFrame); }));
  add(filled<KtXmlMapType<Text, KtRigidBodyMassProperties>>("TextToMass", [](auto& map) {
    map.add(std::string("load"), KtRigidBodyMassProperties::defaultObject());
  }));
  add(filled<KtXmlMapType<Text, KtXmlMapType<Text, Bool>>>("TextToMap", [](auto& map) {
    map.add(std::string("empty"), {});
    map.add(std::string("full"), {std::string("inner"), true});
  }));
  add(filled<KtXmlSetType<U32>>("U32Set", [](auto& set) {
    set.add(9U);
    set.add(2U);
  }));
  add(sample<KtXmlPairType<Text, Real>>("Pair", Text(std::string("left")), Real(2.5)));
  add(sample<KtXmlPairType<KtXmlPairType<U32, Text>, KtScalarFunctionContainer>>(
      "NestedPair", KtXmlPairType<U32, Text>(3U, std::string("link")), [] {
        KtScalarFunctionContainer holder;
        holder.setTopElement(KtLinearScalarFunction(1.0, 2.0));
        return holder;
      }()));
  add(filled<KtLabelAssociatedMap<Bool>>("BoolLabelMap", [](auto& map) {
    map.addLabel("a");
    map.addLabel("b");
    map.setValue("a", "b", true);
  }));
  add(filled<KtLabelAssociatedRealMap>("RealLabelMap", [](auto& map) {
    map.addLabel("steel");
    map.addLabel("rubber");
    map.setValue("rubber", "steel", 0.7);
  }));
  add(sample<KtXmlVector>("Vector", 1.5, -0.0, 1e-300));
  add(sample<KtXmlOrientation>("Orientation", KtOrientation(0.5, -0.5, 0.5, 0.5)));
  add(sample<KtCoordinateSystemTransformation>("Transformation", kFrame));
  add(sample<KtGeneralMotion>("Motion", KtVector(1.0, 2.0, 3.0), KtVector(4.0, 5.0, 6.0)));
  add(sample<KtGeneralForce>("Force", KtVector(1.0, 2.0, 3.0), KtVector(4.0, 5.0, 6.0)));
  add(sample<KtLine>("Line", KtVector(1.0, 2.0, 3.0), KtVector(0.0, 0.6, 0.8)));
  add(sample<KtLineSegment>("LineSegment", KtVector(1.0, 2.0, 3.0), KtVector(4.0, 5.0, 6.0)));
  add(sample<KtPlane>("Plane", KtVector(1.0, 2.0, 3.0), KtVector(0.0, 0.6, 0.8)));
  add(sample<KtSphere>("Sphere", KtVector(1.0, 2.0, 3.0), 0.25, 2));
  add(sample<KtCapsule>("Capsule", KtLineSegment({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}), 0.5));
  add(sample<KtEllipsoid>("Ellipsoid", 1.0, 2.0, 3.0, kFrame));
  add(sample<KtSpatialMatrix>("SpatialMatrix", 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0));
  add(sample<KtSecondMoment>("SecondMoment", 3.0, 4.0, 5.0, 0.1, 0.2, 0.3));
  add({"MassProperties", [] {
         return std::make_unique<KtRigidBodyMassProperties>(
             KtRigidBodyMassProperties::defaultObject());
       }});
  add(sample<KtLinearScalarFunction>("LinearScalarFunction", 0.5, -2.0));
  add(filled<KtScalarFunctionContainer>("ScalarFunctionContainer", [](auto& holder) {
    holder.setTopElement(KtLinearScalarFunction(1.0, 2.0));
  }));
  add(filled<KtLinearMultivariableConstraint>("LinearMultivariableConstraint",
                                              [](auto& constraint) {
                                                constraint.setConstant(2.0);
                                                constraint.setCoefficient(2, -1.0);
                                              }));
  add(filled<KtMultivariableConstraintContainer>("MultivariableConstraintContainer",
                                                 [](auto& holder) {
                                                   KtLinearMultivariableConstraint constraint;
                                                   constraint.setConstant(-3.0);
                                                   holder.setTopElement(constraint);
                                                 }));
  add(filled<SampleNode>("Node", fillNode));
  add(filled<SampleFunctionVector>("FunctionVector", [](auto& list) {
    list.pushBack(KtLinearScalarFunction(1.0, 2.0));
    list.pushBack(KtLinearScalarFunction(3.0, 4.0));
  }));
  add(filled<SampleFunctionHolder>("FunctionHolder", [](auto& holder) {
    holder.setAddLibraries(someLibrary());
    holder.setElement(KtLinearScalarFunction(1.0, 2.0));
  }));
}

std::vector<Sample> allSamples() {
  std::vector<Sample> samples;
  addFoundationSamples(samples);
  addActuationSamples(samples);
  addActiveStateSamples(samples);
  addKinematicsSamples(samples);
  addDynamicsSamples(samples);
  addStateSamples(samples);
  addConstraintSamples(samples);
  addRecordSamples(samples);
  addShapeSamples(samples);
  addModelSamples(samples);
  addSystemSamples(samples);
  return samples;
}
