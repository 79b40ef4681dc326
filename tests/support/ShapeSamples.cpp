#include "support/SampleKit.h"

namespace {

using namespace samplekit;

// What every shape has, at values other than the defaults, with two volumes around it.
template <class Shape>
Sample shapeSample(const char* name, void (*fill)(Shape&)) {
  return {name, [fill] {
            auto shape = std::make_unique<Shape>();
            fill(*shape);
            shape->setIdentifier("part \"7\"");
            shape->setSurfaceLabel("rubber");
            KtDataMap data;
            data.add("ktSurfaceTensionSpringConstant", 2.5e4);
            data.add("own", -0.0);
            shape->setSurfaces(KtSurfaceMap(std::string("rubber"), data));
            shape->setTakesContactForces(false);
            shape->addBoundingVolume(KtShape::kBox);
            shape->addBoundingVolume(KtSphereShape(KtVector(1.0, 2.0, 3.0), 50.0));
            return shape;
          }};
}

const std::vector<KtVector> kTetrahedron = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

}  // namespace

void addShapeSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(filled<KtDataMap>("DataMap", [](auto& map) { map.add("ktDiffuseAlpha", 0.25); }));
  add(filled<KtSurfaceMap>(
      "SurfaceMap", [](auto& map) { map.add(std::string("0"), KtDataMap::boundingColor()); }));
  add(filled<KtShapePointEvent>("ShapePointEvent", [](auto& event) {
    event.setDistance(0.75);
    event.setIsImpacted(true);
  }));
  add(sample<KtXmlVertexList>("VertexList", kTetrahedron));
  add(sample<KtXmlTriangleList>("TriangleList",
                                std::vector<std::array<KtU32, 3>>{{0, 2, 1}, {4294967295U, 7, 9}}));
  add(shapeSample<KtSphereShape>("SphereShape", [](auto& shape) {
    shape.setCenter({1.0, 2.0, 3.0});
    shape.setRadius(0.25);
  }));
  add(shapeSample<KtCapsuleShape>("CapsuleShape", [](auto& shape) {
    shape.setCapsule({KtLineSegment({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}), 0.5});
  }));
  add(shapeSample<KtBoxShape>("BoxShape", [](auto& shape) {
    shape = KtBoxShape({1.0, 2.0, 3.0}, kFrame);
  }));
  add(shapeSample<KtCylinderShape>("CylinderShape",
                                   [](auto& shape) { shape = KtCylinderShape(0.5, 2.0, kFrame); }));
  add(shapeSample<KtConeShape>("ConeShape",
                               [](auto& shape) { shape = KtConeShape(0.5, 2.0, kFrame); }));
  add(shapeSample<KtEllipsoidShape>("EllipsoidShape", [](auto& shape) {
    shape = KtEllipsoidShape(KtEllipsoid(1.0, 2.0, 3.0, kFrame));
  }));
  add(shapeSample<KtConvexPolyhedron>("ConvexPolyhedron", [](auto& shape) {
    shape.setFromPoints(kTetrahedron);
    shape.setFrame(kFrame);
  }));
  add(shapeSample<KtPolyPhysicalExtent>("PolyPhysicalExtent", [](auto& shape) {
    shape.setMesh(kTetrahedron, {{0, 2, 1}, {0, 1, 3}});
    shape.setFrame(kFrame);
  }));
  add(filled<KtExtentVector>("ExtentVector",
                             [](auto& list) { list.pushBack(KtSphereShape({}, 1.0)); }));
  add(filled<KtShapeVector>("ShapeVector", [](auto& list) {
    list.pushBack(KtBoxShape({1.0, 1.0, 1.0}));
  }));
  add(shapeSample<KtExtentUnion>("ExtentUnion", [](auto& shape) {
    shape.addMember(KtSphereShape({}, 1.0));
    shape.addMember(KtConeShape(0.5, 2.0, kFrame));
  }));
  add(shapeSample<KtShapeUnion>("ShapeUnion", [](auto& shape) {
    KtExtentUnion inner;
    inner.addMember(KtSphereShape({}, 1.0));
    inner.addBoundingVolume(KtShape::kCapsule);
    shape.addMember(inner);
    shape.addMember(KtCylinderShape(0.5, 2.0, kFrame));
  }));
  add(filled<KtShapeContainer>("ShapeContainer", [](auto& holder) {
    holder.setTopElement(KtBoxShape({1.0, 2.0, 3.0}));
    holder.addBoundingVolume(KtShape::kSphere);
  }));
}
