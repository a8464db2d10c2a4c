#include "wrappers/StoredText.h"

#include "platform/CodePage.h"
#include "records/TDicomDoc.h"

namespace VantorWrappers {

std::optional<std::string> FindStoredText(const std::string& stored, Vantor::VrCode vr,
                                          const HostString& text) {
    const std::string bytes = stored.substr(0, stored.find('\0'));
    const HostString wanted = Trimmed(text);
    if (wanted.empty()) return std::nullopt;
    const auto isSeen = [&wanted](const std::string& part) {
        return Trimmed(Vantor::Platform::ToHostText(part)) == wanted;
    };
    const size_t shown = Vantor::Platform::CutPosition(bytes, Vantor::TDicomDoc::kLongestText);
    if (isSeen(bytes) || isSeen(bytes.substr(0, shown))) return bytes;
    const std::string withoutCarets = bytes.substr(0, bytes.find_last_not_of('^') + 1);
    if (vr == Vantor::Vr::kPN && isSeen(withoutCarets)) return withoutCarets;
    return std::nullopt;
}

}  // namespace VantorWrappers
