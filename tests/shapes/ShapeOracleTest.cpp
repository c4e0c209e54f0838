// Area, length, point in shape and crossing of boundaries against GEOS, on declarative
// cases: holes, reversed rings, several parts, repeated and collinear nodes, rays
// through and past nodes, points on edges and nodes. oracle/make_cases.py asked GEOS
// (through shapely) and wrote oracle/cases.txt; it says where the library's rule and
// GEOS part ways and which answer the file carries then. oracle/make_lattice_cases.py
// wrote oracle/lattice_cases.txt: integer polygons and every lattice point in them.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "KestrixCE.h"
#include "ShapeSupport.h"

using namespace kxtest;

namespace {

struct InsideCheck {
  double x, y;
  bool inside;
  bool onBoundary;
};

struct Case {
  std::vector<Part> parts;
  bool hasArea = false, clean = false;
  double area = 0, length = 0;
  std::vector<InsideCheck> points;
  std::vector<std::pair<std::string, bool>> crossings;
};

std::map<std::string, Case> ReadCases() {
  std::ifstream file(KX_TEST_SOURCE_DIR "/shapes/oracle/cases.txt");
  std::map<std::string, Case> cases;
  Case* current = nullptr;
  std::string line;
  while (std::getline(file, line)) {
    std::istringstream in(line);
    std::string word;
    in >> word;
    if (word == "case") {
      in >> word;
      current = &cases[word];
    } else if (word == "part") {
      Part part;
      double x, y;
      while (in >> x >> y) part.push_back({x, y});
      current->parts.push_back(part);
    } else if (word == "area") {
      current->hasArea = true;
      in >> word;
      current->clean = word != "invalid";
      if (current->clean) current->area = std::stod(word);
    } else if (word == "length") {
      in >> current->length;
    } else if (word == "inside") {
      InsideCheck c{};
      std::string where;
      in >> c.x >> c.y >> c.inside >> where;
      c.onBoundary = where == "on";
      current->points.push_back(c);
    } else if (word == "crosses") {
      std::string other;
      bool answer;
      in >> other >> answer;
      current->crossings.push_back({other, answer});
    }
  }
  return cases;
}

const std::map<std::string, Case>& Cases() {
  static const std::map<std::string, Case> cases = ReadCases();
  return cases;
}

TEST(ShapeOracle, AreaAndCleanPolygonsAgreeWithGeos) {
  int checked = 0;
  for (const auto& [name, c] : Cases()) {
    if (!c.hasArea) continue;
    KxShape shape = MakeShape(c.parts);
    double area = -1;
    Shape_Area(shape, &area);
    if (c.clean) {
      EXPECT_EQ(ErrorOf(shape), "0") << name;
      EXPECT_NEAR(area, c.area, 1e-9 * c.area) << name;
    } else {
      EXPECT_EQ(ErrorOf(shape), "10006 Shape is not a ploygon") << name;
      EXPECT_EQ(area, 0) << name;
    }
    EXPECT_EQ(Shape_IsCleanPolygon(shape) != 0, c.clean) << name;
    ++checked;
    Shape_Delete(shape);
  }
  EXPECT_GE(checked, 12);
}

TEST(ShapeOracle, PointsInsideAgreeWithGeosAndBoundaryPointsFollowTheRay) {
  int off = 0, on = 0;
  for (const auto& [name, c] : Cases()) {
    KxShape shape = MakeShape(c.parts);
    for (const InsideCheck& p : c.points) {
      EXPECT_EQ(Shape_IsInside(shape, &p.x, &p.y) != 0, p.inside)
          << name << " at " << p.x << "," << p.y << (p.onBoundary ? " (on the boundary)" : "");
      ++(p.onBoundary ? on : off);
    }
    Shape_Delete(shape);
  }
  EXPECT_GE(off, 20);
  EXPECT_GE(on, 12);
}

TEST(ShapeOracle, LengthInAGridIsThePlaneLength) {
  KxPosition utm = Position_New();
  Position_SetGrid(utm, 1);
  Position_SetZone(utm, 33);
  for (const auto& [name, c] : Cases()) {
    KxShape shape = MakeShape(c.parts);
    Shape_SetDatumGridTemplate(shape, utm);
    Shape_SetPartIndex(shape, 0);
    double length = -1;
    Shape_Distance(shape, 0, -1, &length);
    EXPECT_NEAR(length, c.length, 1e-12 * c.length) << name;
    Shape_Delete(shape);
  }
  Position_Delete(utm);
}

struct LatticeCase {
  std::string name;
  std::vector<Part> parts;
  double area = 0;
  int x0 = 0, y0 = 0, width = 0;
  std::string runs;  // a count (none for 1) and i inside, o outside, b on a boundary
};

std::vector<LatticeCase> ReadLatticeCases() {
  std::ifstream file(KX_TEST_SOURCE_DIR "/shapes/oracle/lattice_cases.txt");
  std::vector<LatticeCase> cases;
  std::string line;
  while (std::getline(file, line)) {
    std::istringstream in(line);
    std::string word;
    in >> word;
    if (word == "polygon") {
      cases.emplace_back();
      std::getline(in, cases.back().name);
    } else if (word == "part") {
      Part part;
      double x, y;
      while (in >> x >> y) part.push_back({x, y});
      cases.back().parts.push_back(part);
    } else if (word == "area") {
      in >> cases.back().area;
    } else if (word == "points") {
      LatticeCase& c = cases.back();
      in >> c.x0 >> c.y0 >> c.width >> c.runs;
    }
  }
  return cases;
}

// On a lattice the ray of the inside test, towards a lattice point below and left of the
// bounds, runs exactly through nodes and along edges at every turn: a rounded crossing
// point misses a node or finds it twice. Every polygon, repeated nodes and nodes in the
// middle of edges included, is clean with GEOS's area, and every point off the
// boundaries lies inside or outside as for GEOS.
TEST(ShapeOracle, IntegerPolygonsAreCleanAndRaysThroughTheirNodesCountOnce) {
  int polygons = 0, points = 0, differ = 0;
  for (const LatticeCase& c : ReadLatticeCases()) {
    KxShape shape = MakeShape(c.parts);
    double area = -1;
    EXPECT_EQ(*Shape_Area(shape, &area), c.area) << c.name << ": " << ErrorOf(shape);
    int k = 0;
    std::istringstream runs(c.runs);
    for (int count; runs >> std::ws && !runs.eof(); k += count) {
      if (!(runs >> count)) runs.clear(), count = 1;
      const char letter = char(runs.get());
      if (letter == 'b') continue;
      for (int n = k; n < k + count; ++n) {
        const double x = c.x0 + n % c.width, y = c.y0 + n / c.width;
        if ((Shape_IsInside(shape, &x, &y) != 0) != (letter == 'i') && ++differ <= 10)
          ADD_FAILURE() << c.name << " at " << x << "," << y;
        ++points;
      }
    }
    ++polygons;
    Shape_Delete(shape);
  }
  EXPECT_EQ(differ, 0) << "of " << points << " points";
  EXPECT_GE(polygons, 1000);
  EXPECT_GE(points, 150000);
}

TEST(ShapeOracle, BoundariesCrossAsGeosSaysOrAsTheRuleSays) {
  int checked = 0;
  for (const auto& [name, c] : Cases()) {
    for (const auto& [otherName, expected] : c.crossings) {
      KxShape shape = MakeShape(c.parts), other = MakeShape(Cases().at(otherName).parts);
      EXPECT_EQ(Shape_IsIntersecting(shape, other) != 0, expected) << name << " / " << otherName;
      EXPECT_EQ(Shape_IsIntersecting(other, shape) != 0, expected) << otherName << " / " << name;
      ++checked;
      Shape_Delete(shape);
      Shape_Delete(other);
    }
  }
  EXPECT_GE(checked, 10);
}

}  // namespace
