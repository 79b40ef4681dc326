#include "ktManipulator/foundation/shape/algorithms/KtConvexHull.h"

#include <libqhull_r/qhull_ra.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace Kt::detail {

bool areUsable(const std::vector<KtVector>& points) noexcept {
  constexpr double largest = 1e100;
  return std::all_of(points.begin(), points.end(),
                     [](const KtVector& p) { return p.largestComponent() < largest && p == p; });
}

std::vector<Triangle> convexHull(const std::vector<KtVector>& points, std::string& complaint) {
  std::vector<Triangle> triangles;
  if (points.size() < 4) {
    complaint = "fewer than four points";
    return triangles;
  }
  if (!areUsable(points) || points.size() > 0x7FFFFFFF / 4) {
    complaint = "a point is not finite, or there are too many";
    return triangles;
  }
  // Qhull's tolerances go with the largest coordinate: bring the cloud to the origin and to size 1.
  KtVector least = points[0];
  KtVector largest = points[0];
  for (const KtVector& p : points) {
    least = {std::min(least.x, p.x), std::min(least.y, p.y), std::min(least.z, p.z)};
    largest = {std::max(largest.x, p.x), std::max(largest.y, p.y), std::max(largest.z, p.z)};
  }
  const KtVector middle = (least + largest) * 0.5;
  const double extent = (largest - least).largestComponent();
  if (!(extent > 0.0)) {
    complaint = "all points are one";
    return triangles;
  }
  std::vector<coordT> coordinates;
  coordinates.reserve(points.size() * 3);
  for (const KtVector& p : points) {
    const KtVector q = (p - middle) / extent;
    coordinates.insert(coordinates.end(), {q.x, q.y, q.z});
  }

  // Its messages go into a buffer: the log takes one line of our own.
  char* text = nullptr;
  std::size_t length = 0;
  std::FILE* messages = open_memstream(&text, &length);
  if (messages == nullptr) {
    complaint = "no memory";
    return triangles;
  }
  qhT state;
  qh_zero(&state, messages);
  char command[] = "qhull Qt Pp";
  const int failure = qh_new_qhull(&state, 3, static_cast<int>(points.size()), coordinates.data(),
                                   False, command, nullptr, messages);
  if (failure == 0) {
    qhT* qh = &state;  // the name that the macros of the library use
    facetT* facet = nullptr;
    vertexT* vertex = nullptr;
    vertexT** vertexp = nullptr;
    double six = 0.0;  // times the volume: negative where the sense is the other one
    FORALLfacets {
      Triangle corners{};
      std::size_t count = 0;
      FOREACHvertex_(facet->vertices) {
        if (count < 3) corners[count] = static_cast<KtU32>(qh_pointid(qh, vertex->point));
        ++count;
      }
      if (count != 3) continue;
      // The library's own sense of rotation: that of a triangle which is thin as rounding can't be
      // told from its corners.
      if (facet->toporient != 0) std::swap(corners[1], corners[2]);
      six += (points[corners[0]] - middle)
                 .dot(((points[corners[1]] - middle) / extent)
                          .cross((points[corners[2]] - middle) / extent));
      triangles.push_back(corners);
    }
    if (six < 0.0) {
      for (Triangle& corners : triangles) std::swap(corners[1], corners[2]);
    }
  } else {
    complaint = failure == qh_ERRsingular ? "all points lie on one plane" : "the search failed";
  }
  qh_freeqhull(&state, !qh_ALL);
  int leftOver = 0;
  int blocks = 0;
  qh_memfreeshort(&state, &leftOver, &blocks);
  std::fclose(messages);
  std::free(text);
  return triangles;
}

}  // namespace Kt::detail
