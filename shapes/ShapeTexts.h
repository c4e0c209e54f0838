// The texts of the failures of Shape, byte for byte.
#pragma once

namespace kx::shape_text {

constexpr const char* kNoNodeMemory = "No memory is allocated to host nodes.";
constexpr const char* kNoPartActivated = "No part was activated";
constexpr const char* kPartsNotAllocated = "Memory is not allocated correctly.";
constexpr const char* kInvalidPartIndex = "invalid part index";
constexpr const char* kPartNotFound = "Part by this index was not found";
constexpr const char* kNotForFixedSize = "This feature is not supported for fixedsize shape.";
constexpr const char* kNoNodeToCopy = "No memory was allocated for this node.";
constexpr const char* kIndexValuesInvalid = "Index values are invalid";
constexpr const char* kPositionNull = "Position may not be null.";
constexpr const char* kTemplateNotSet = "DatumGridTemplate not set.";
constexpr const char* kFixedToDynamic = "Fixed shape cannot be converted to a dynamic shape.";
constexpr const char* kDynamicToFixed = "Dynamic shape cannot be converted to a fixed shape.";
constexpr const char* kPartCountTooSmall = "Part count shold be bigger than zero";
constexpr const char* kMustBeFixedSize = "Shape.FixedSize must be set to true";
constexpr const char* kInvalidPartNode = "Invalid part/node index.";
constexpr const char* kShapeEmpty = "The shape is empty.";
constexpr const char* kAreaOfDatum = "DatumGridTemplate cannot be a datum when calculating area!";
constexpr const char* kPartNotPolygon = "Part is not a ploygon";
constexpr const char* kShapeNotPolygon = "Shape is not a ploygon";
constexpr const char* kNoNodes = "No nodes in this Shape";
constexpr const char* kShapeNull = "Shape may not be NULL.";
constexpr const char* kDifferentFrames = "Shapes must have same datum or grid/zone";

}  // namespace kx::shape_text
