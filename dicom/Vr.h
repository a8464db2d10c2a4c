#pragma once

#include <cstdint>

namespace Vantor {

// A value representation as a number: its first character in the high byte, its second in the low one.
using VrCode = uint16_t;

constexpr VrCode MakeVr(char first, char second) {
    return static_cast<VrCode>((static_cast<uint8_t>(first) << 8) | static_cast<uint8_t>(second));
}

namespace Vr {

inline constexpr VrCode kAE = MakeVr('A', 'E');
inline constexpr VrCode kAS = MakeVr('A', 'S');
inline constexpr VrCode kAT = MakeVr('A', 'T');
inline constexpr VrCode kCS = MakeVr('C', 'S');
inline constexpr VrCode kDA = MakeVr('D', 'A');
inline constexpr VrCode kDS = MakeVr('D', 'S');
inline constexpr VrCode kDT = MakeVr('D', 'T');
inline constexpr VrCode kFD = MakeVr('F', 'D');
inline constexpr VrCode kFL = MakeVr('F', 'L');
inline constexpr VrCode kIS = MakeVr('I', 'S');
inline constexpr VrCode kLO = MakeVr('L', 'O');
inline constexpr VrCode kLT = MakeVr('L', 'T');
inline constexpr VrCode kOB = MakeVr('O', 'B');
inline constexpr VrCode kOW = MakeVr('O', 'W');
inline constexpr VrCode kPN = MakeVr('P', 'N');
inline constexpr VrCode kSH = MakeVr('S', 'H');
inline constexpr VrCode kSL = MakeVr('S', 'L');
inline constexpr VrCode kSQ = MakeVr('S', 'Q');
inline constexpr VrCode kSS = MakeVr('S', 'S');
inline constexpr VrCode kST = MakeVr('S', 'T');
inline constexpr VrCode kTM = MakeVr('T', 'M');
inline constexpr VrCode kUI = MakeVr('U', 'I');
inline constexpr VrCode kUL = MakeVr('U', 'L');
inline constexpr VrCode kUS = MakeVr('U', 'S');
inline constexpr VrCode kUT = MakeVr('U', 'T');
inline constexpr VrCode kUN = MakeVr('U', 'N');

// What an implicit data set without a dictionary reports for every element. It equals no real VR, and
// callers rely on that: a comparison with a real VR fails rather than guesses.
inline constexpr VrCode kNotKnown = MakeVr('N', 'U');

// True for the VRs whose explicit header has two reserved bytes and a 32-bit length. OF is not among them.
constexpr bool HasLongHeader(VrCode vr) {
    return vr == kOB || vr == kOW || vr == kSQ || vr == kUT || vr == kUN;
}

// True for the 25 VRs that a dictionary may name; UN and OF are not among them.
bool IsRecognised(VrCode vr);

}  // namespace Vr
}  // namespace Vantor
