#pragma once

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "support/Samples.h"

/// What the lists of samples are written with.
namespace samplekit {

using Bool = KtXmlBasicType<bool>;
using Real = KtXmlBasicType<double>;
using Text = KtXmlBasicType<std::string>;
using U32 = KtXmlBasicType<KtU32>;

inline const KtCoordinateSystemTransformation kFrame(KtVector(0.1, -2.5, 1e-7),
                                                     KtOrientation(0.5, -0.5, 0.5, 0.5));

template <class Cls, class... Arguments>
Sample sample(const char* name, const Arguments&... arguments) {
  return {name, [=] { return std::make_unique<Cls>(arguments...); }};
}

template <class Cls>
Sample filled(const char* name, void (*fill)(Cls&)) {
  return {name, [fill] {
            auto object = std::make_unique<Cls>();
            fill(*object);
            return object;
          }};
}

/// Gives every component of the object that is written a value of its own, which is no default, as
/// its table lists them. Components that hold objects of several classes stay as they are, and so
/// do maps.
void fillComponents(KtXmlCompoundType& object);

/// An object that `fillComponents` has filled.
template <class Cls>
Cls fromTable() {
  Cls object;
  fillComponents(object);
  return object;
}

template <class Cls>
Sample tableSample(const char* name) {
  return {name, [] { return std::make_unique<Cls>(fromTable<Cls>()); }};
}

inline KtXmlVectorType<Real> someReals() {
  KtXmlVectorType<Real> list;
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double x : {0.1, -0.0, 1.0 / 3.0, 5e-324, 1.7976931348623157e308, infinity, -infinity,
                         123456789.0, -1e22}) {
    list.pushBack(x);
  }
  return list;
}

// Texts that look like markup, quotation, separators and nothing, and some beyond ASCII.
inline KtXmlVectorType<Text> someTexts() {
  KtXmlVectorType<Text> list;
  for (const char* text : {"plain", "two words", "", "\"", "back\\slash", "\"q\\\"", "<a>&]]>",
                           "line\nbreak\r\ttab ", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\xA6\xBE"}) {
    list.pushBack(std::string(text));
  }
  return list;
}

/// The names of libraries that a holder asks for its classes.
inline KtXmlVectorType<Text> someLibrary() {
  return {1, std::string("sampleLibrary")};
}

}  // namespace samplekit
