#include "platform/NeighbourName.h"

#include <algorithm>
#include <string>

#include "platform/Ascii.h"
#include "platform/PathStyle.h"

namespace Vantor::Platform {

namespace {

// Windows makes four digits out of the time, or fewer; elsewhere it is the nanoseconds, in thirteen.
constexpr size_t kMostLetters = 13;

bool IsLetterOrDigit(char each) { return (each >= 'A' && each <= 'Z') || (each >= '0' && each <= '9'); }

}  // namespace

bool IsNameOfNeighbour(std::string_view path) {
    const std::string name = UpperCased(PathStyle::OfPlatform().LastPart(path));
    const std::string end = UpperCased(kNeighbourEnd);
    const size_t fixed = kNeighbourStart.size() + end.size();
    if (name.size() <= fixed || name.size() > fixed + kMostLetters) return false;
    const std::string_view between(name.data() + kNeighbourStart.size(), name.size() - fixed);
    return name.starts_with(kNeighbourStart) && name.ends_with(end) &&
           std::all_of(between.begin(), between.end(), IsLetterOrDigit);
}

}  // namespace Vantor::Platform
