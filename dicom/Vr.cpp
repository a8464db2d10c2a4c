#include "dicom/Vr.h"

#include <algorithm>
#include <array>

namespace Vantor::Vr {

bool IsRecognised(VrCode vr) {
    static constexpr std::array<VrCode, 25> kRecognised = {kAE, kAS, kAT, kCS, kDA, kDS, kDT, kFD, kFL,
                                                           kIS, kLO, kLT, kOB, kOW, kPN, kSH, kSL, kSQ,
                                                           kSS, kST, kTM, kUI, kUL, kUS, kUT};
    return std::find(kRecognised.begin(), kRecognised.end(), vr) != kRecognised.end();
}

}  // namespace Vantor::Vr
