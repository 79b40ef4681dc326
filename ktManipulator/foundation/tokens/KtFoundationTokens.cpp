#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

#include "ktManipulator/foundation/xml/KtXmlTokens.h"

namespace {

KtToken qualified(const char* localName) {
  return KtToken(std::string(KtXml::namespaceName) + localName);
}

}  // namespace

namespace KtFoundCommon {

const KtToken KtCoordinateSystemTransformToken = qualified("coordinateSystemTransform");
const KtToken KtGeneralForceToken = qualified("generalForce");
const KtToken KtGeneralVelocityToken = qualified("generalVelocity");
const KtToken KtSecondMomentToken = qualified("secondMoment");
const KtToken KtSurfaceTensionSpringConstantToken("ktSurfaceTensionSpringConstant");
const KtToken KtVectorToken = qualified("vector3");
const KtToken KtOrientationToken = qualified("orientation");
const KtToken KtSpatialMatrixToken = qualified("spatialMatrix");
const KtToken KtTranslationToken = qualified("translation");
const KtToken KtLinearToken = qualified("linear");
const KtToken KtAngularToken = qualified("angular");
const KtToken KtForceToken = qualified("force");
const KtToken KtMomentToken = qualified("moment");
const KtToken KtScalarFunctionContainerToken = qualified("scalarFunctionContainer");
const KtToken KtLinearScalarFunctionToken = qualified("linearScalarFunction");
const KtToken KtStartValueToken = qualified("startValue");
const KtToken KtEndValueToken = qualified("endValue");
const KtToken KtLinearMultivariableConstraintToken = qualified("linearMultivariableConstraint");
const KtToken KtConstantToken = qualified("constant");
const KtToken KtCoefficientsToken = qualified("coefficients");

}  // namespace KtFoundCommon

namespace KtGeom {

const KtToken KtLinkCollisionForceToken = qualified("linkCollisionForce");
const KtToken KtShapeContainerToken = qualified("shapeContainer");
const KtToken KtSurfacesToken = qualified("surfaces");
const KtToken KtSphereToken = qualified("sphere");
const KtToken KtCapsuleToken = qualified("capsule");
const KtToken KtEllipsoidToken = qualified("ellipsoid");
const KtToken KtPlaneToken = qualified("plane");
const KtToken KtLineToken = qualified("line");
const KtToken KtLineSegmentToken = qualified("lineSegment");
const KtToken KtCenterToken = qualified("center");
const KtToken KtRadiusToken = qualified("radius");
const KtToken KtRadiiToken = qualified("radii");
const KtToken KtDimensionToken = qualified("dimension");
const KtToken KtBasePointToken = qualified("basePoint");
const KtToken KtNormalVectorToken = qualified("normalVector");
const KtToken KtPointToken = qualified("point");
const KtToken KtUnitVectorToken = qualified("unitVector");
const KtToken KtEndpoint0Token = qualified("endpoint0");
const KtToken KtEndpoint1Token = qualified("endpoint1");

}  // namespace KtGeom
