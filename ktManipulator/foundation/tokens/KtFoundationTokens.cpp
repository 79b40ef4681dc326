#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

#include "ktManipulator/foundation/xml/KtXmlTokens.h"

namespace KtFoundCommon {

const KtToken KtCoordinateSystemTransformToken = KtXml::qualifiedToken("coordinateSystemTransform");
const KtToken KtGeneralForceToken = KtXml::qualifiedToken("generalForce");
const KtToken KtGeneralVelocityToken = KtXml::qualifiedToken("generalVelocity");
const KtToken KtSecondMomentToken = KtXml::qualifiedToken("secondMoment");
const KtToken KtSurfaceTensionSpringConstantToken("ktSurfaceTensionSpringConstant");
const KtToken KtVectorToken = KtXml::qualifiedToken("vector3");
const KtToken KtOrientationToken = KtXml::qualifiedToken("orientation");
const KtToken KtSpatialMatrixToken = KtXml::qualifiedToken("spatialMatrix");
const KtToken KtTranslationToken = KtXml::qualifiedToken("translation");
const KtToken KtLinearToken = KtXml::qualifiedToken("linear");
const KtToken KtAngularToken = KtXml::qualifiedToken("angular");
const KtToken KtForceToken = KtXml::qualifiedToken("force");
const KtToken KtMomentToken = KtXml::qualifiedToken("moment");
const KtToken KtScalarFunctionContainerToken = KtXml::qualifiedToken("scalarFunctionContainer");
const KtToken KtLinearScalarFunctionToken = KtXml::qualifiedToken("linearScalarFunction");
const KtToken KtStartValueToken = KtXml::qualifiedToken("startValue");
const KtToken KtEndValueToken = KtXml::qualifiedToken("endValue");
const KtToken KtLinearMultivariableConstraintToken =
    KtXml::qualifiedToken("linearMultivariableConstraint");
const KtToken KtConstantToken = KtXml::qualifiedToken("constant");
const KtToken KtCoefficientsToken = KtXml::qualifiedToken("coefficients");

}  // namespace KtFoundCommon

namespace KtGeom {

const KtToken KtLinkCollisionForceToken = KtXml::qualifiedToken("linkCollisionForce");
const KtToken KtShapeContainerToken = KtXml::qualifiedToken("shapeContainer");
const KtToken KtSurfacesToken = KtXml::qualifiedToken("surfaces");
const KtToken KtSphereToken = KtXml::qualifiedToken("sphere");
const KtToken KtCapsuleToken = KtXml::qualifiedToken("capsule");
const KtToken KtEllipsoidToken = KtXml::qualifiedToken("ellipsoid");
const KtToken KtPlaneToken = KtXml::qualifiedToken("plane");
const KtToken KtLineToken = KtXml::qualifiedToken("line");
const KtToken KtLineSegmentToken = KtXml::qualifiedToken("lineSegment");
const KtToken KtCenterToken = KtXml::qualifiedToken("center");
const KtToken KtRadiusToken = KtXml::qualifiedToken("radius");
const KtToken KtRadiiToken = KtXml::qualifiedToken("radii");
const KtToken KtDimensionToken = KtXml::qualifiedToken("dimension");
const KtToken KtBasePointToken = KtXml::qualifiedToken("basePoint");
const KtToken KtNormalVectorToken = KtXml::qualifiedToken("normalVector");
const KtToken KtPointToken = KtXml::qualifiedToken("point");
const KtToken KtUnitVectorToken = KtXml::qualifiedToken("unitVector");
const KtToken KtEndpoint0Token = KtXml::qualifiedToken("endpoint0");
const KtToken KtEndpoint1Token = KtXml::qualifiedToken("endpoint1");
const KtToken KtShapePointEventToken = KtXml::qualifiedToken("shapePointEvent");
const KtToken KtDistanceToken = KtXml::qualifiedToken("distance");
const KtToken KtIsImpactedToken = KtXml::qualifiedToken("isImpacted");
const KtToken KtDataMapToken = KtXml::qualifiedToken("dataMap");
const KtToken KtSurfaceLabelToken = KtXml::qualifiedToken("surfaceLabel");
const KtToken KtTakesContactForcesToken = KtXml::qualifiedToken("takesContactForces");
const KtToken KtBoundingVolumeToken = KtXml::qualifiedToken("boundingVolume");
const KtToken KtSphereShapeToken = KtXml::qualifiedToken("sphereShape");
const KtToken KtCapsuleShapeToken = KtXml::qualifiedToken("capsuleShape");
const KtToken KtBoxShapeToken = KtXml::qualifiedToken("boxShape");
const KtToken KtCylinderShapeToken = KtXml::qualifiedToken("cylinderShape");
const KtToken KtConeShapeToken = KtXml::qualifiedToken("coneShape");
const KtToken KtEllipsoidShapeToken = KtXml::qualifiedToken("ellipsoidShape");
const KtToken KtConvexPolyhedronToken = KtXml::qualifiedToken("convexPolyhedron");
const KtToken KtPolyPhysicalExtentToken = KtXml::qualifiedToken("polyPhysicalExtent");
const KtToken KtShapeUnionToken = KtXml::qualifiedToken("shapeUnion");
const KtToken KtExtentUnionToken = KtXml::qualifiedToken("extentUnion");
const KtToken KtMembersToken = KtXml::qualifiedToken("members");
const KtToken KtSizeToken = KtXml::qualifiedToken("size");
const KtToken KtHeightToken = KtXml::qualifiedToken("height");
const KtToken KtVerticesToken = KtXml::qualifiedToken("vertices");
const KtToken KtTrianglesToken = KtXml::qualifiedToken("triangles");

}  // namespace KtGeom
