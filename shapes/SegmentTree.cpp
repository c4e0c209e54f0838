#include "shapes/SegmentTree.h"

#include <cstddef>
#include <limits>

namespace kx {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A measure of direction seen from R that grows with the angle from east to north:
// 0 east, 1/2 north-east, 1 north. Every node lies up and right of R, where it is
// monotone, and it changes no faster than the angle itself.
double DirectionFrom(XY R, XY P) {
  const double up = P.y - R.y;
  return up / ((P.x - R.x) + up);
}

// A node that isn't a number fails every comparison, so its box meets no filter and
// SegmentCross finds nothing there; it mustn't spoil the boxes around it.
double Lower(double a, double b) { return b < a || a != a ? b : a; }
double Upper(double a, double b) { return b > a || a != a ? b : a; }

SegmentBox Union(const SegmentBox& a, const SegmentBox& b) {
  return {Lower(a.minX, b.minX), Lower(a.minY, b.minY), Upper(a.maxX, b.maxX),
          Upper(a.maxY, b.maxY), Lower(a.loU, b.loU),   Upper(a.hiU, b.hiU)};
}

}  // namespace

void SegmentTree::Clear() {
  m_segments = 0;
  m_levels.clear();
  m_spans.clear();
}

void SegmentTree::Build(const XY* nodes, int32_t count, XY origin, double margin) {
  Clear();
  if (count < 2) return;
  m_segments = count - 1;
  std::vector<SegmentBox> row(m_segments);
  // Without a usable margin every direction is taken in.
  const bool directed = margin < 0.25;
  double u0 = directed ? DirectionFrom(origin, nodes[0]) : 0;
  for (int32_t k = 1; k < count; ++k) {
    const XY a = nodes[k - 1], b = nodes[k];
    const double u1 = directed ? DirectionFrom(origin, b) : 0;
    row[k - 1] = {Lower(a.x, b.x), Lower(a.y, b.y), Upper(a.x, b.x), Upper(a.y, b.y),
                  directed ? Lower(u0, u1) - margin : -kInfinity,
                  directed ? Upper(u0, u1) + margin : kInfinity};
    u0 = u1;
  }
  int32_t span = 1;
  m_levels.push_back(std::move(row));
  while (m_levels.back().size() > 1) {
    const std::vector<SegmentBox>& below = m_levels.back();
    std::vector<SegmentBox> above((below.size() + kFanout - 1) / kFanout);
    for (std::size_t k = 0; k < below.size(); ++k)
      above[k / kFanout] = k % kFanout == 0 ? below[k] : Union(above[k / kFanout], below[k]);
    m_spans.push_back(span);
    span *= kFanout;
    m_levels.push_back(std::move(above));
  }
}

}  // namespace kx
