#include "ktManipulator/foundation/shape/algorithms/KtBoundingVolumeFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

#include "ktManipulator/foundation/matrix/KtSecondMoment.h"
#include "ktManipulator/foundation/shape/algorithms/KtConvexHull.h"

namespace Kt::detail {

namespace {

// Plain: the persistent sphere would carry too much through these loops.
struct Ball {
  KtVector center;
  double radius = 0.0;
};
using Balls = std::vector<Ball>;

double reach(const Ball& ball, const KtVector& from) {
  return (ball.center - from).mag() + ball.radius;
}

double reach(const Balls& balls, const KtVector& from) {
  double farthest = 0.0;
  for (const Ball& ball : balls) farthest = std::max(farthest, reach(ball, from));
  return farthest;
}

// The ball that touches all of up to four balls from outside around them, with its centre in the
// flat through theirs; none if there is no such ball.
std::optional<Ball> touching(const std::array<Ball, 5>& balls, const std::array<unsigned, 4>& pick,
                             unsigned count) {
  const Ball& origin = balls[pick[0]];
  if (count == 1) return origin;
  // With z the centre from that of ball 0 and q those of the others: |z - q_i| = R - r_i. The
  // differences to the equation of ball 0 are linear: q_i . z = a_i + b_i R.
  const unsigned n = count - 1;
  std::array<KtVector, 3> q;
  double system[3][5] = {};
  for (unsigned i = 0; i < n; ++i) q[i] = balls[pick[i + 1]].center - origin.center;
  for (unsigned i = 0; i < n; ++i) {
    const double r = balls[pick[i + 1]].radius;
    for (unsigned j = 0; j < n; ++j) system[i][j] = q[i].dot(q[j]);
    system[i][3] = 0.5 * (q[i].magSquared() + origin.radius * origin.radius - r * r);
    system[i][4] = r - origin.radius;
  }
  for (unsigned column = 0; column < n; ++column) {
    unsigned pivot = column;
    for (unsigned i = column + 1; i < n; ++i) {
      if (std::abs(system[i][column]) > std::abs(system[pivot][column])) pivot = i;
    }
    if (std::abs(system[pivot][column]) <= 1e-12 * q[column].magSquared()) return std::nullopt;
    std::swap(system[pivot], system[column]);
    for (unsigned i = 0; i < n; ++i) {
      if (i == column) continue;
      const double factor = system[i][column] / system[column][column];
      for (unsigned k = 0; k < 5; ++k) system[i][k] -= factor * system[column][k];
    }
  }
  KtVector u;
  KtVector v;
  for (unsigned i = 0; i < n; ++i) {
    u += q[i] * (system[i][3] / system[i][i]);
    v += q[i] * (system[i][4] / system[i][i]);
  }
  // |u + v R| = R - r_0.
  const double a = v.magSquared() - 1.0;
  const double b = u.dot(v) + origin.radius;
  const double c = u.magSquared() - origin.radius * origin.radius;
  const double discriminant = b * b - a * c;
  if (discriminant < 0.0) return std::nullopt;
  const double root = std::sqrt(discriminant);
  std::array<double, 2> candidates = {
      a != 0.0 ? (-b + root) / a : -0.5 * c / KtMath::nonZeroPos(b),
      a != 0.0 ? (-b - root) / a : -0.5 * c / KtMath::nonZeroPos(b)};
  if (candidates[0] > candidates[1]) std::swap(candidates[0], candidates[1]);
  double least = 0.0;
  for (unsigned i = 0; i < count; ++i) least = std::max(least, balls[pick[i]].radius);
  for (const double radius : candidates) {
    if (radius >= least * (1.0 - 1e-12)) return Ball{origin.center + u + v * radius, radius};
  }
  return std::nullopt;
}

// The smallest ball around all: the farthest ball enters the basis, whose smallest ball is found by
// trying its subsets. B. Gaertner, Fast and robust smallest enclosing balls, ESA 1999, for the
// choice of the ball that enters; K. Fischer, B. Gaertner, The smallest enclosing ball of balls:
// combinatorial structure and algorithms, SoCG 2003, for why subsets of four are enough.
Ball smallest(const Balls& balls) {
  std::vector<Ball> basis;
  Ball best = balls[0];
  basis.push_back(best);
  for (int step = 0; step < 100; ++step) {
    const Ball* farthest = &balls[0];
    for (const Ball& ball : balls) {
      if (reach(ball, best.center) > reach(*farthest, best.center)) farthest = &ball;
    }
    if (reach(*farthest, best.center) <= best.radius * (1.0 + 1e-12)) break;
    std::array<Ball, 5> candidates;
    std::copy(basis.begin(), basis.end(), candidates.begin());
    const unsigned count = static_cast<unsigned>(basis.size()) + 1;
    candidates[count - 1] = *farthest;
    std::optional<Ball> next;
    std::vector<Ball> nextBasis;
    for (unsigned subset = 0; subset < 1U << (count - 1); ++subset) {
      std::array<unsigned, 4> pick{count - 1};
      unsigned size = 1;
      for (unsigned i = 0; i + 1 < count; ++i) {
        if ((subset >> i & 1U) != 0 && size < 5) {
          if (size < 4) pick[size] = i;
          ++size;
        }
      }
      if (size > 4) continue;
      const std::optional<Ball> ball = touching(candidates, pick, size);
      if (!ball || (next && ball->radius >= next->radius)) continue;
      bool around = true;
      for (unsigned i = 0; i < count; ++i) {
        around = around && reach(candidates[i], ball->center) <= ball->radius * (1.0 + 1e-10);
      }
      if (!around) continue;
      next = ball;
      nextBasis.clear();
      for (unsigned i = 0; i < size; ++i) nextBasis.push_back(candidates[pick[i]]);
    }
    // Rounding may leave no better basis; what is there is made to contain all below.
    if (!next || !(next->radius > best.radius)) break;
    best = *next;
    basis = nextBasis;
  }
  best.radius = reach(balls, best.center);
  return best;
}

KtVector anyAcross(const KtVector& axis) {
  const KtVector seed = std::abs(axis.x) < 0.6 ? KtVector::xVector(1.0) : KtVector::yVector(1.0);
  return axis.cross(seed).unitVector();
}

double extentOf(const Balls& balls) {
  KtVector mean;
  for (const Ball& ball : balls) mean += ball.center / static_cast<double>(balls.size());
  return reach(balls, mean);
}

// Orientation of the principal axes of the centres.
KtOrientation principalOrientation(const Balls& balls) {
  KtVector mean;
  for (const Ball& ball : balls) mean += ball.center / static_cast<double>(balls.size());
  const double scale = KtMath::nonZeroPos(reach(balls, mean));
  KtSecondMoment spread;
  for (const Ball& ball : balls) {
    const KtVector d = (ball.center - mean) / scale;
    spread += KtSecondMoment(d.x * d.x, d.y * d.y, d.z * d.z, d.x * d.y, d.x * d.z, d.y * d.z);
  }
  KtOrientation r;
  spread.principalOrientation(r);
  return r;
}

// Only what is on the hull counts; balls of different radii stay all.
Balls reduced(const std::vector<KtSphere>& spheres, std::vector<Triangle>& triangles) {
  Balls balls;
  balls.reserve(spheres.size());
  std::vector<KtVector> centers;
  centers.reserve(spheres.size());
  bool oneRadius = true;
  for (const KtSphere& sphere : spheres) {
    balls.push_back({sphere.center(), std::max(0.0, sphere.radius())});
    centers.push_back(sphere.center());
    oneRadius = oneRadius && balls.back().radius == balls.front().radius;
  }
  std::string complaint;
  triangles = convexHull(centers, complaint);
  if (!oneRadius || balls.size() <= 32 || triangles.empty()) return balls;
  std::vector<KtU32> places(balls.size(), ktUnmappedIndex);
  Balls onHull;
  for (Triangle& triangle : triangles) {
    for (KtU32& corner : triangle) {
      if (places[corner] == ktUnmappedIndex) {
        places[corner] = static_cast<KtU32>(onHull.size());
        onHull.push_back(balls[corner]);
      }
      corner = places[corner];
    }
  }
  return onHull;
}

struct CapsuleFit {
  KtVector origin;  // a point of the axis
  KtVector axis;
  double from = 0.0;
  double to = 0.0;
  double radius = 0.0;
  double size = 0.0;  // what is made small
};

// The ends along an axis that a capsule of a radius needs.
void fitEnds(const Balls& balls, CapsuleFit& fit, double grain) {
  double from = std::numeric_limits<double>::infinity();
  double to = -from;
  for (const Ball& ball : balls) {
    const KtVector d = ball.center - fit.origin;
    const double t = d.dot(fit.axis);
    const double across = (d - fit.axis * t).mag();
    const double room = fit.radius - ball.radius;
    const double half = KtMath::sqrt(room * room - across * across);
    to = std::max(to, t - half);
    from = std::min(from, t + half);
  }
  if (from > to) from = to = 0.5 * (from + to);
  fit.from = from;
  fit.to = to;
  // A little is added, so that of flat and thin clouds too the smaller fit wins.
  const double r = fit.radius + grain;
  fit.size = r * r * (to - from + 4.0 / 3.0 * r);
}

CapsuleFit fitAlong(const Balls& balls, const KtVector& axis, double largest, double grain) {
  Balls across(balls);
  for (Ball& ball : across) ball.center -= axis * ball.center.dot(axis);
  const Ball tube = smallest(across);
  CapsuleFit fit;
  fit.axis = axis;
  fit.origin = tube.center;
  const auto withRadius = [&](double radius) {
    CapsuleFit one = fit;
    one.radius = radius;
    fitEnds(balls, one, grain);
    return one;
  };
  // A wider capsule may be so much shorter that it is smaller: golden section over the radius.
  double low = tube.radius;
  double high = std::max(low, largest);
  CapsuleFit best = withRadius(low);
  constexpr double golden = 0.6180339887498949;
  double left = high - golden * (high - low);
  double right = low + golden * (high - low);
  CapsuleFit atLeft = withRadius(left);
  CapsuleFit atRight = withRadius(right);
  for (int step = 0; step < 20; ++step) {
    if (atLeft.size < atRight.size) {
      high = right;
      right = left;
      atRight = atLeft;
      left = high - golden * (high - low);
      atLeft = withRadius(left);
    } else {
      low = left;
      left = right;
      atLeft = atRight;
      right = low + golden * (high - low);
      atRight = withRadius(right);
    }
  }
  for (const CapsuleFit& one : {atLeft, atRight}) {
    if (one.size < best.size) best = one;
  }
  return best;
}

struct BoxFit {
  KtOrientation orientation;
  KtVector center;
  KtVector size;
  double volume = 0.0;
};

BoxFit fitBox(const Balls& balls, const KtOrientation& orientation, double grain) {
  const KtOrientation toBox = orientation.inverse();
  constexpr double far = std::numeric_limits<double>::infinity();
  KtVector least(far, far, far);
  KtVector largest(-far, -far, -far);
  for (const Ball& ball : balls) {
    const KtVector c = toBox * ball.center;
    const double r = ball.radius;
    least = {std::min(least.x, c.x - r), std::min(least.y, c.y - r), std::min(least.z, c.z - r)};
    largest = {std::max(largest.x, c.x + r), std::max(largest.y, c.y + r),
               std::max(largest.z, c.z + r)};
  }
  BoxFit fit;
  fit.orientation = orientation;
  fit.center = orientation * ((least + largest) * 0.5);
  fit.size = largest - least;
  fit.volume = (fit.size.x + grain) * (fit.size.y + grain) * (fit.size.z + grain);
  return fit;
}

}  // namespace

bool areUsable(const std::vector<KtSphere>& spheres) noexcept {
  constexpr double largest = 1e75;  // products of three lengths stay finite
  return !spheres.empty() && std::all_of(spheres.begin(), spheres.end(), [](const KtSphere& s) {
    return s.center() == s.center() && s.center().largestComponent() < largest &&
           std::abs(s.radius()) < largest;
  });
}

KtSphere smallestSphere(const std::vector<KtSphere>& spheres) {
  std::vector<Triangle> triangles;
  const Ball ball = smallest(reduced(spheres, triangles));
  double radius = ball.radius;
  for (const KtSphere& sphere : spheres) {
    radius = std::max(radius, (sphere.center() - ball.center).mag() + sphere.radius());
  }
  return {ball.center, radius * (1.0 + 1e-14), 3};
}

KtCapsule smallCapsule(const std::vector<KtSphere>& spheres) {
  std::vector<Triangle> triangles;
  const Balls balls = reduced(spheres, triangles);
  const Ball around = smallest(balls);
  const double grain = 1e-6 * around.radius;

  const KtOrientation principal = principalOrientation(balls);
  // The line between two points far apart lies well in what is long and thin.
  const auto farthestFrom = [&](const KtVector& from) {
    return std::max_element(
               balls.begin(), balls.end(),
               [&](const Ball& a, const Ball& b) { return reach(a, from) < reach(b, from); })
        ->center;
  };
  const KtVector end = farthestFrom(around.center);
  std::vector<KtVector> axes = {KtVector::xVector(1.0), KtVector::yVector(1.0),
                                KtVector::zVector(1.0), principal.xAxis(),
                                principal.yAxis(),      principal.zAxis()};
  const KtVector longest = farthestFrom(end) - end;
  if (longest.mag() > 0.0) axes.push_back(longest.unitVector());

  CapsuleFit best;
  best.size = std::numeric_limits<double>::infinity();
  for (const KtVector& axis : axes) {
    const CapsuleFit fit = fitAlong(balls, axis, around.radius, grain);
    if (fit.size < best.size * (1.0 - 1e-9)) best = fit;
  }
  for (double step = 0.2; step > 1e-4;) {
    const KtVector u = anyAcross(best.axis);
    const KtVector v = best.axis.cross(u);
    bool better = false;
    for (const KtVector& turn : {u, -u, v, -v}) {
      const CapsuleFit fit =
          fitAlong(balls, (best.axis + turn * step).unitVector(), around.radius, grain);
      if (fit.size < best.size * (1.0 - 1e-9)) {
        best = fit;
        better = true;
        break;
      }
    }
    if (!better) step *= 0.4;
  }
  KtLineSegment segment(best.origin + best.axis * best.from, best.origin + best.axis * best.to);
  // Rounding, and the points that the hull left out, may stick out a little.
  double radius = best.radius;
  const KtVector along = segment.endpoint1() - segment.endpoint0();
  for (const KtSphere& sphere : spheres) {
    const KtVector d = sphere.center() - segment.endpoint0();
    const double share =
        std::clamp(d.dot(along) / KtMath::nonZeroPos(along.magSquared()), 0.0, 1.0);
    radius = std::max(radius, (d - along * share).mag() + sphere.radius());
  }
  return {segment, radius * (1.0 + 1e-14)};
}

OrientedBox smallBox(const std::vector<KtSphere>& spheres) {
  std::vector<Triangle> triangles;
  const Balls balls = reduced(spheres, triangles);
  const double grain = 1e-6 * extentOf(balls);

  // The smallest box has a side flush with a face of the hull (or two with edges): try the largest
  // faces, with each of their edges.
  std::vector<KtOrientation> starts = {KtOrientation(), principalOrientation(balls)};
  const auto area = [&](const Triangle& t) {
    const KtVector& a = balls[t[0]].center;
    return (balls[t[1]].center - a).cross(balls[t[2]].center - a);
  };
  const std::size_t faces = std::min<std::size_t>(triangles.size(), 24);
  std::partial_sort(triangles.begin(), triangles.begin() + static_cast<std::ptrdiff_t>(faces),
                    triangles.end(), [&](const Triangle& a, const Triangle& b) {
                      const double first = area(a).magSquared();
                      const double second = area(b).magSquared();
                      return first != second ? first > second : a < b;
                    });
  for (std::size_t i = 0; i < faces; ++i) {
    const KtVector normal = area(triangles[i]).unitVector();
    for (unsigned edge = 0; edge < 3; ++edge) {
      const KtVector along =
          (balls[triangles[i][(edge + 1) % 3]].center - balls[triangles[i][edge]].center)
              .unitVector();
      KtOrientation start;
      start.setFromDcmColumns(normal, along, normal.cross(along));
      starts.push_back(start);
    }
  }
  BoxFit best;
  best.volume = std::numeric_limits<double>::infinity();
  for (KtOrientation start : starts) {
    start.normalize();
    const BoxFit fit = fitBox(balls, start, grain);
    if (fit.volume < best.volume * (1.0 - 1e-9)) best = fit;
  }
  for (double step = 0.2; step > 1e-4;) {
    bool better = false;
    for (const double angle : {step, -step}) {
      for (const KtOrientation& turn :
           {KtOrientation::xRotation(angle), KtOrientation::yRotation(angle),
            KtOrientation::zRotation(angle)}) {
        KtOrientation orientation = best.orientation * turn;
        orientation.normalize();
        const BoxFit fit = fitBox(balls, orientation, grain);
        if (fit.volume < best.volume * (1.0 - 1e-9)) {
          best = fit;
          better = true;
          break;
        }
      }
      if (better) break;
    }
    if (!better) step *= 0.4;
  }
  // Around all balls, also those that the hull left out; and a little for rounding.
  Balls all;
  all.reserve(spheres.size());
  for (const KtSphere& sphere : spheres) {
    all.push_back({sphere.center(), std::max(0.0, sphere.radius())});
  }
  best = fitBox(all, best.orientation, grain);
  const double slack = 1e-14 * (best.size.largestComponent() + best.center.largestComponent());
  return {{best.center, best.orientation}, best.size + KtVector(slack, slack, slack)};
}

std::vector<KtVector> pointsAround(const std::vector<KtSphere>& spheres) {
  std::vector<KtVector> points;
  for (const KtSphere& sphere : spheres) {
    if (!(sphere.radius() > 0.0)) {
      points.push_back(sphere.center());
      continue;
    }
    for (const KtVector& p : unitBallPoints()) {
      points.push_back(sphere.center() + p * sphere.radius());
    }
  }
  return points;
}

const std::vector<KtVector>& unitBallPoints() {
  // The icosahedron with its faces divided twice, then widened until its faces touch the ball.
  static const std::vector<KtVector> thePoints = [] {
    std::vector<KtVector> points;
    const double g = std::numbers::phi;
    for (const double a : {-1.0, 1.0}) {
      for (const double b : {-g, g}) {
        points.push_back(KtVector(0.0, a, b).unitVector());
        points.push_back(KtVector(a, b, 0.0).unitVector());
        points.push_back(KtVector(b, 0.0, a).unitVector());
      }
    }
    std::string complaint;
    for (int division = 0; division < 2; ++division) {
      const std::size_t corners = points.size();
      for (const Triangle& t : convexHull(points, complaint)) {
        for (unsigned edge = 0; edge < 3; ++edge) {
          // Each edge belongs to two faces, in opposite directions.
          const KtU32 from = t[edge];
          const KtU32 to = t[(edge + 1) % 3];
          if (from < to && to < corners) {
            points.push_back((points[from] + points[to]).unitVector());
          }
        }
      }
    }
    double inner = 1.0;
    for (const Triangle& t : convexHull(points, complaint)) {
      const KtVector& a = points[t[0]];
      const KtVector normal = (points[t[1]] - a).cross(points[t[2]] - a).unitVector();
      inner = std::min(inner, normal.dot(a));
    }
    for (KtVector& point : points) point /= inner * (1.0 - 1e-14);
    return points;
  }();
  return thePoints;
}

void appendCircle(std::vector<KtVector>& points, double radius, double z) {
  constexpr int count = 48;
  constexpr double step = 2.0 * std::numbers::pi / count;
  const double outer = radius / std::cos(0.5 * step) * (1.0 + 1e-14);
  for (int i = 0; i < count; ++i) {
    points.emplace_back(outer * std::cos(step * i), outer * std::sin(step * i), z);
  }
}

}  // namespace Kt::detail
