#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "ktManipulator/ktManipulator.h"

/// An object of a persistent class, with no member at its default.
struct Sample {
  std::string name;
  std::function<std::unique_ptr<KtXmlObject>()> make;
};

/// Names a sample in the names of tests.
inline void PrintTo(const Sample& sample, std::ostream* stream) {
  *stream << sample.name;
}

/// A small class that has all that a compound can have, and holds a list of its own kind.
class SampleNode : public KtXmlPersistent<SampleNode, KtXmlCompoundType> {
 public:
  void registerComponents() override {
    registerAttributeComponent(KtToken("kind"), &kind);
    registerComponent(name("label"), &label);
    registerComponent(name("weight"), &weight);
    registerComponent(name("mode"), &mode);
    registerComponent(name("motion"), &motion);
    registerComponentReadOnly(name("oldWeight"), &oldWeight);
    registerComponent(name("function"), &function);
    registerComponent(name("children"), &children);
    specialDescriptorMap().add(name("mass"), &weight, true);
  }
  void xmlInit() override {
    mode.setEnumString(0, "idle");
    mode.setEnumString(1, "running");
    KtXmlCompoundType::xmlInit();
  }
  bool operator==(const SampleNode&) const = default;

  static KtToken name(const char* local) { return KtToken(KtManip::ns.text() + local); }
  static const KtToken& classToken() {
    static const KtToken token = name("sampleNode");
    return token;
  }

  KtXmlBasicType<KtU32> kind;
  KtXmlBasicType<std::string> label;
  KtXmlBasicType<KtReal> weight;
  KtXmlEnumType<KtU32> mode;
  KtGeneralMotion motion;
  KtXmlBasicType<KtReal> oldWeight;
  KtScalarFunctionContainer function;
  KtXmlVectorType<SampleNode> children;
};

/// A concrete list of polymorphic elements.
class SampleFunctionVector
    : public KtXmlPersistent<SampleFunctionVector, KtXmlVariableVectorType<KtBaseScalarFunction>> {
 public:
  using KtXmlPersistent::KtXmlPersistent;
  SampleFunctionVector() = default;
  void registerComponentCreators() override {
    registerComponentCreator(KtLinearScalarFunction::classToken(), KtLinearScalarFunction::creator);
  }
  bool operator==(const SampleFunctionVector&) const = default;
  static const KtToken& classToken() {
    static const KtToken token = SampleNode::name("sampleFunctionVector");
    return token;
  }
};

/// A concrete holder of one polymorphic element.
class SampleFunctionHolder
    : public KtXmlPersistent<SampleFunctionHolder, KtXmlVariableElementType<KtBaseScalarFunction>> {
 public:
  void registerComponentCreators() override {
    registerComponentCreator(KtLinearScalarFunction::classToken(), KtLinearScalarFunction::creator);
    // A class that this holder can't take.
    registerComponentCreator(KtGeneralMotion::classToken(), KtGeneralMotion::creator);
  }
  bool operator==(const SampleFunctionHolder&) const = default;
  static const KtToken& classToken() {
    static const KtToken token = SampleNode::name("sampleFunctionHolder");
    return token;
  }
};

/// One sample for every persistent class of the library.
std::vector<Sample> allSamples();
