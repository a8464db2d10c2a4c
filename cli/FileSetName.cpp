#include "cli/FileSetName.h"

#include <algorithm>
#include <string_view>

#include "cli/Paths.h"

namespace VantorCli {

namespace {

constexpr size_t kLongestName = 16;
constexpr wchar_t kNameless[] = L"DICOM";

bool MayHold(wchar_t character) {
    return (character >= L'A' && character <= L'Z') || (character >= L'0' && character <= L'9') ||
           character == L' ' || character == L'_';
}

wchar_t ToUpper(wchar_t character) {
    return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - L'a' + L'A') : character;
}

}  // namespace

std::string ProblemOfFileSetName(const std::string& text) {
    const bool isBlank = text.find_first_not_of(' ') == std::string::npos;
    if (!isBlank && text.size() <= kLongestName && std::all_of(text.begin(), text.end(), MayHold)) return "";
    return "no File-set ID (up to 16 of A-Z, 0-9, blank and _): " + text;
}

HostString FileSetNameOf(const std::filesystem::path& folder) {
    HostString name = ToHostText(folder.filename()).substr(0, kLongestName);
    std::transform(name.begin(), name.end(), name.begin(), ToUpper);
    std::replace_if(
        name.begin(), name.end(), [](wchar_t character) { return !MayHold(character); }, L'_');
    name = Trimmed(name);
    return name.empty() ? kNameless : name;
}

}  // namespace VantorCli
