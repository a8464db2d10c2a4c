#pragma once

#include <string_view>

namespace Vantor::Platform {

// A file that is going to take the place of another one in its folder is called VNT, letters and digits that
// nobody else uses, .tmp: the same on all systems, because media wander from one to the other.
inline constexpr std::string_view kNeighbourStart = "VNT";
inline constexpr std::string_view kNeighbourEnd = ".tmp";

// Of a path: whether its last part is such a name, in letters of either case.
bool IsNameOfNeighbour(std::string_view path);

}  // namespace Vantor::Platform
