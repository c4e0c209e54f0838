// The segments of one part (nodes k - 1 to k) grouped in node order: a box around each
// segment, then around each run of 8, and so on up to one box for the part. A ring's
// neighbouring segments lie near each other, so the boxes stay tight, and a search for
// the next segment from a given one on that meets a condition visits only boxes that
// meet it. The walks of the intersection and inside tests skip by it over every pair
// that cannot touch, and step one by one only where a touch is pending.
#pragma once

#include <cstdint>
#include <vector>

#include "shapes/SegmentCross.h"

namespace kx {

struct SegmentBox {
  double minX, minY, maxX, maxY;
  // The directions the box spans seen from the origin of the rays (see RayFilter).
  double loU, hiU;
};

// Segments whose closed box meets a query box: the only ones SegmentCross can find
// crossing or touching it.
struct BoxFilter {
  double minX, minY, maxX, maxY;
  bool Meets(const SegmentBox& b) const {
    return b.minX <= maxX && b.maxX >= minX && b.minY <= maxY && b.maxY >= minY;
  }
};

// Segments that the ray from Q to the common origin R may meet. R lies below and left of
// every node, so a box meets the ray's box exactly when its low corner is below and left
// of Q; and only a box whose directions from R, widened by a margin that covers the
// rounding of those directions, take in Q's direction can give a crossing or a touch.
struct RayFilter {
  double x, y, u;
  bool Meets(const SegmentBox& b) const {
    return b.loU <= u && u <= b.hiU && b.minX <= x && b.minY <= y;
  }
};

class SegmentTree {
 public:
  // Segments 1 to count - 1 of `nodes`. The directions are taken from `origin`, each
  // box widened by `margin`; from a margin of 0.25 on, every box takes in all of them.
  void Build(const XY* nodes, int32_t count, XY origin, double margin);
  void Clear();

  // The smallest segment k >= first (segments count from 1) whose box meets the filter,
  // or -1.
  template <class Filter>
  int32_t FindNext(const Filter& filter, int32_t first) const {
    if (m_levels.empty() || first > m_segments) return -1;
    const int32_t top = int32_t(m_levels.size()) - 1;
    const int32_t found = Search(filter, top, 0, first - 1);
    return found < 0 ? -1 : found + 1;
  }
  // Every segment whose box meets the filter, in order, into `found` (segments count
  // from 1): one descent for a query that then walks all of them.
  template <class Filter>
  void Collect(const Filter& filter, std::vector<int32_t>& found) const {
    found.clear();
    if (m_levels.empty() || !filter.Meets(m_levels.back()[0])) return;
    if (m_levels.size() == 1)
      found.push_back(1);
    else
      Gather(filter, int32_t(m_levels.size()) - 1, 0, found);
  }
  // The box of the whole part; only a tree of one segment or more has one.
  const SegmentBox* Root() const { return m_levels.empty() ? nullptr : &m_levels.back()[0]; }

 private:
  static constexpr int32_t kFanout = 8;

  template <class Filter>
  int32_t Search(const Filter& filter, int32_t level, int32_t box, int32_t first) const {
    const std::vector<SegmentBox>& row = m_levels[level];
    if (!filter.Meets(row[box])) return -1;
    if (level == 0) return box;
    const int32_t span = m_spans[level - 1];  // segments under one box of the level below
    const int32_t below = int32_t(m_levels[level - 1].size());
    int32_t child = box * kFanout;
    const int32_t end = child + kFanout < below ? child + kFanout : below;
    if (first / span > child) child = first / span;
    for (; child < end; ++child) {
      const int32_t found = Search(filter, level - 1, child, first);
      if (found >= first) return found;
    }
    return -1;
  }

  // The box itself meets the filter; its children are tested here, so that only those
  // that meet it cost a call.
  template <class Filter>
  void Gather(const Filter& filter, int32_t level, int32_t box, std::vector<int32_t>& found) const {
    const std::vector<SegmentBox>& row = m_levels[level - 1];
    const int32_t below = int32_t(row.size());
    const int32_t end = box * kFanout + kFanout < below ? box * kFanout + kFanout : below;
    for (int32_t child = box * kFanout; child < end; ++child) {
      if (!filter.Meets(row[child])) continue;
      if (level == 1)
        found.push_back(child + 1);
      else
        Gather(filter, level - 1, child, found);
    }
  }

  int32_t m_segments = 0;
  std::vector<std::vector<SegmentBox>> m_levels;  // segment boxes first, root last
  std::vector<int32_t> m_spans;                    // segments under one box, per level
};

}  // namespace kx
