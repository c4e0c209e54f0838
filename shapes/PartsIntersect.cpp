// Every pair of segments of two parts, with a resume point on each side so that a
// touch can be followed along the touching segments, over the closing node of a ring
// too. A touch alone is no crossing; a pending side that leaves on the other side is.
#include <algorithm>
#include <functional>
#include <unordered_set>

#include "shapes/PartGeometry.h"

namespace kx {

namespace {

struct WalkState {
  int32_t i, j, resumeI, resumeJ;
  Side sideA, sideB;
  bool wrap1, wrap2;

  // Nothing pending: pairs that can't touch give nothing and the walk counts j up past
  // them, so they may be skipped.
  bool Settled() const { return sideA == 0 && sideB == 0 && resumeI == 0 && resumeJ == 0; }
  bool operator==(const WalkState& o) const {
    return i == o.i && j == o.j && resumeI == o.resumeI && resumeJ == o.resumeJ &&
           sideA == o.sideA && sideB == o.sideB && wrap1 == o.wrap1 && wrap2 == o.wrap2;
  }
};

struct StateHash {
  size_t operator()(const WalkState& s) const {
    size_t h = std::hash<int64_t>()((int64_t(s.i) << 32) ^ uint32_t(s.j));
    h ^= std::hash<int64_t>()((int64_t(s.resumeI) << 32) ^ uint32_t(s.resumeJ)) * 31;
    return h ^ (size_t(s.sideA) | size_t(s.sideB) << 2 | size_t(s.wrap1) << 4 |
                size_t(s.wrap2) << 5);
  }
};

class PairWalk {
 public:
  PairWalk(const PartGeometry& one, const PartGeometry& two, bool same)
      : m_one(one), m_two(two), m_same(same), n1(one.count), n2(two.count) {}

  bool Run();

 private:
  bool SkipToCandidate();
  bool Cross();
  void Follow();
  bool NextJ();
  bool NextI();
  bool Advance() { return NextJ() && NextI(); }
  bool SeenBefore();
  bool MoveOn();
  // A part against itself skips the neighbours of segment i: the next segment, and the
  // segments of length 0 after it, so that the first it meets leaves the node where
  // segment i ends.
  int32_t FirstJ() const { return m_same ? PastRepeats(s.i + 2) : 1; }
  // j, or further while segment j starts where segment j - 2 ends.
  int32_t PastRepeats(int32_t j) const;

  const PartGeometry& m_one;
  const PartGeometry& m_two;
  const bool m_same;
  const int32_t n1, n2;
  WalkState s{1, 0, 0, 0, 0, 0, false, false};
  std::unordered_set<WalkState, StateHash> m_seen;
  int32_t m_breakI = 0, m_breakJ = 0;  // where the walk went on after the last loop
  // The last step went back to a resume point: the one way a walk can come round to a
  // state it was in before.
  bool m_restored = false;
};

int32_t PairWalk::PastRepeats(int32_t j) const {
  if (j >= n2) return j;
  const XY* nodes = m_two.nodes.data();
  const XY end = nodes[j - 2];
  while (j < n2 && nodes[j - 1].x == end.x && nodes[j - 1].y == end.y) ++j;
  return j;
}

bool PairWalk::Run() {
  if (n1 < 2 || n2 < 2) return false;
  if (m_same && n1 < 4) return false;
  s.j = FirstJ();
  for (;;) {
    if (s.j >= n2) {
      if (!Advance()) return false;
      continue;
    }
    if ((m_restored || !s.Settled()) && SeenBefore()) {
      if (!MoveOn()) return false;
      continue;
    }
    m_restored = false;
    if (s.Settled() && !SkipToCandidate()) {
      s.j = n2;
      if (!Advance()) return false;
      continue;
    }
    if (Cross()) return true;
    Follow();
    if (!Advance()) return false;
  }
}

// With nothing pending, a pair whose boxes don't meet gives false and no side, and the
// walk would only count j up past it.
bool PairWalk::SkipToCandidate() {
  const XY a = m_one.Node(s.i - 1), b = m_one.Node(s.i);
  const BoxFilter box{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x),
                      std::max(a.y, b.y)};
  const int32_t j = m_two.tree.FindNext(box, s.j);
  if (j < 0 || j >= n2) return false;
  s.j = j;
  return true;
}

bool PairWalk::Cross() {
  return SegmentCross(m_one.Node(s.i - 1), m_one.Node(s.i), m_two.Node(s.j - 1), m_two.Node(s.j),
                      s.sideA, s.sideB);
}

// A pending side holds its segment's place and moves on along that part; once nothing
// is pending, the walk returns to the places it held.
void PairWalk::Follow() {
  if (s.sideA == 0 && s.sideB == 0) {
    m_restored = s.resumeI || s.resumeJ;
    if (s.resumeJ) {
      s.j = s.resumeJ;
      s.resumeJ = 0;
    }
    if (s.resumeI) {
      s.i = s.resumeI;
      s.resumeI = 0;
    }
    ++s.j;
    return;
  }
  if (s.sideA != 0) {
    if (s.resumeI == 0) s.resumeI = s.i;
    ++s.i;
  }
  if (s.sideB != 0) {
    if (s.resumeJ == 0) s.resumeJ = s.j;
    ++s.j;
  }
}

// Past the last segment of part two: a ring with a pending side goes on over its
// closing node once; otherwise the next segment of part one begins.
bool PairWalk::NextJ() {
  if (s.j < n2) return true;
  if (s.resumeJ && m_two.closed && !s.wrap2) {
    s.wrap2 = true;
    s.j = FirstJ();
    return true;
  }
  if (s.resumeJ) {
    s.j = s.resumeJ;
    s.resumeJ = 0;
    s.sideB = 0;
    s.wrap2 = false;
    m_restored = true;
  }
  ++s.j;
  if (s.j >= n2) {
    ++s.i;
    s.j = FirstJ();
    if (s.j >= n2) return false;
  }
  return true;
}

bool PairWalk::NextI() {
  if (s.i < n1) return true;
  if (s.resumeI && m_one.closed && !s.wrap1) {
    s.wrap1 = true;
    s.i = 1;
    return true;
  }
  if (s.resumeI) {
    s.i = s.resumeI;
    s.resumeI = 0;
    s.sideA = 0;
    s.wrap1 = false;
    m_restored = true;
  }
  return s.i < n1;
}

bool PairWalk::SeenBefore() { return !m_seen.insert(s).second; }

// The resume points led back to a state seen before: only touches lie on that loop,
// which give no crossing (an open part's last segment, for one, hands its pending side
// back to itself). The walk leaves it for the pair after the place it held, and never
// for one before an earlier such exit, so that it ends.
bool PairWalk::MoveOn() {
  int32_t i = s.resumeI ? s.resumeI : s.i, j = s.resumeJ ? s.resumeJ : s.j;
  if (i < m_breakI || (i == m_breakI && j < m_breakJ)) {
    i = m_breakI;
    j = m_breakJ;
  }
  s = WalkState{i, j + 1, 0, 0, 0, 0, false, false};
  m_restored = false;
  if (s.j >= n2) {
    ++s.i;
    s.j = FirstJ();
    if (s.j >= n2) return false;
  }
  m_breakI = s.i;
  m_breakJ = s.j;
  return s.i < n1;
}

}  // namespace

bool PartsIntersect(const PartGeometry& one, const PartGeometry& two, bool same) {
  const SegmentBox *a = one.tree.Root(), *b = two.tree.Root();
  if (!a || !b) return false;
  if (!BoxFilter{a->minX, a->minY, a->maxX, a->maxY}.Meets(*b)) return false;
  return PairWalk(one, two, same).Run();
}

}  // namespace kx
