/// @file
/// The element names of the value types and of geometry.
#pragma once

#include "ktManipulator/foundation/xml/KtToken.h"

/// Names of value types that files contain.
namespace KtFoundCommon {

KT_EXPORT extern const KtToken KtCoordinateSystemTransformToken;  ///< "coordinateSystemTransform"
KT_EXPORT extern const KtToken KtGeneralForceToken;               ///< "generalForce"
KT_EXPORT extern const KtToken KtGeneralVelocityToken;            ///< "generalVelocity"
KT_EXPORT extern const KtToken KtSecondMomentToken;               ///< "secondMoment"
KT_EXPORT extern const KtToken KtSurfaceTensionSpringConstantToken;  ///< key of a surface property
KT_EXPORT extern const KtToken KtVectorToken;                        ///< "vector3"
KT_EXPORT extern const KtToken KtOrientationToken;                   ///< "orientation"
KT_EXPORT extern const KtToken KtSpatialMatrixToken;                 ///< "spatialMatrix"
KT_EXPORT extern const KtToken KtTranslationToken;                   ///< "translation"
KT_EXPORT extern const KtToken KtLinearToken;                        ///< "linear"
KT_EXPORT extern const KtToken KtAngularToken;                       ///< "angular"
KT_EXPORT extern const KtToken KtForceToken;                         ///< "force"
KT_EXPORT extern const KtToken KtMomentToken;                        ///< "moment"
KT_EXPORT extern const KtToken KtScalarFunctionContainerToken;       ///< "scalarFunctionContainer"
KT_EXPORT extern const KtToken KtLinearScalarFunctionToken;          ///< "linearScalarFunction"
KT_EXPORT extern const KtToken KtStartValueToken;                    ///< "startValue"
KT_EXPORT extern const KtToken KtEndValueToken;                      ///< "endValue"
KT_EXPORT extern const KtToken
    KtLinearMultivariableConstraintToken;            ///< "linearMultivariableConstraint"
KT_EXPORT extern const KtToken KtConstantToken;      ///< "constant"
KT_EXPORT extern const KtToken KtCoefficientsToken;  ///< "coefficients"

}  // namespace KtFoundCommon

/// Names of geometry and of what collides.
namespace KtGeom {

KT_EXPORT extern const KtToken KtLinkCollisionForceToken;  ///< "linkCollisionForce"
KT_EXPORT extern const KtToken KtShapeContainerToken;      ///< "shapeContainer"
KT_EXPORT extern const KtToken KtSurfacesToken;            ///< "surfaces"
KT_EXPORT extern const KtToken KtSphereToken;              ///< "sphere"
KT_EXPORT extern const KtToken KtCapsuleToken;             ///< "capsule"
KT_EXPORT extern const KtToken KtEllipsoidToken;           ///< "ellipsoid"
KT_EXPORT extern const KtToken KtPlaneToken;               ///< "plane"
KT_EXPORT extern const KtToken KtLineToken;                ///< "line"
KT_EXPORT extern const KtToken KtLineSegmentToken;         ///< "lineSegment"
KT_EXPORT extern const KtToken KtCenterToken;              ///< "center"
KT_EXPORT extern const KtToken KtRadiusToken;              ///< "radius"
KT_EXPORT extern const KtToken KtRadiiToken;               ///< "radii"
KT_EXPORT extern const KtToken KtDimensionToken;           ///< "dimension"
KT_EXPORT extern const KtToken KtBasePointToken;           ///< "basePoint"
KT_EXPORT extern const KtToken KtNormalVectorToken;        ///< "normalVector"
KT_EXPORT extern const KtToken KtPointToken;               ///< "point"
KT_EXPORT extern const KtToken KtUnitVectorToken;          ///< "unitVector"
KT_EXPORT extern const KtToken KtEndpoint0Token;           ///< "endpoint0"
KT_EXPORT extern const KtToken KtEndpoint1Token;           ///< "endpoint1"
KT_EXPORT extern const KtToken KtShapePointEventToken;     ///< "shapePointEvent"
KT_EXPORT extern const KtToken KtDistanceToken;            ///< "distance"
KT_EXPORT extern const KtToken KtIsImpactedToken;          ///< "isImpacted"
KT_EXPORT extern const KtToken KtDataMapToken;             ///< "dataMap"
KT_EXPORT extern const KtToken KtSurfaceLabelToken;        ///< "surfaceLabel"
KT_EXPORT extern const KtToken KtTakesContactForcesToken;  ///< "takesContactForces"
KT_EXPORT extern const KtToken KtBoundingVolumeToken;      ///< "boundingVolume"
KT_EXPORT extern const KtToken KtSphereShapeToken;         ///< "sphereShape"
KT_EXPORT extern const KtToken KtCapsuleShapeToken;        ///< "capsuleShape"
KT_EXPORT extern const KtToken KtBoxShapeToken;            ///< "boxShape"
KT_EXPORT extern const KtToken KtCylinderShapeToken;       ///< "cylinderShape"
KT_EXPORT extern const KtToken KtConeShapeToken;           ///< "coneShape"
KT_EXPORT extern const KtToken KtEllipsoidShapeToken;      ///< "ellipsoidShape"
KT_EXPORT extern const KtToken KtConvexPolyhedronToken;    ///< "convexPolyhedron"
KT_EXPORT extern const KtToken KtPolyPhysicalExtentToken;  ///< "polyPhysicalExtent"
KT_EXPORT extern const KtToken KtShapeUnionToken;          ///< "shapeUnion"
KT_EXPORT extern const KtToken KtExtentUnionToken;         ///< "extentUnion"
KT_EXPORT extern const KtToken KtMembersToken;             ///< "members"
KT_EXPORT extern const KtToken KtSizeToken;                ///< "size"
KT_EXPORT extern const KtToken KtHeightToken;              ///< "height"
KT_EXPORT extern const KtToken KtVerticesToken;            ///< "vertices"
KT_EXPORT extern const KtToken KtTrianglesToken;           ///< "triangles"

}  // namespace KtGeom
