#include "host/PatientName.h"

#include <string_view>
#include <vector>

#include "host/Hook.h"

namespace VantorHost {

namespace {

constexpr wchar_t kGroupEnd = L'=';
constexpr wchar_t kComponentEnd = L'^';
constexpr std::wstring_view kBlanks = L" \t\r\n";
constexpr std::wstring_view kOnlySigns = L" \t\r\n^";

// The places of the components in a group.
enum Component { kFamily, kGiven, kMiddle, kPrefix, kSuffix, kComponentCount };

std::wstring_view Trimmed(std::wstring_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::wstring_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// The text up to a sign; it and the sign are taken away from `rest`.
std::wstring_view TakeUpTo(wchar_t sign, std::wstring_view& rest) {
    const size_t end = rest.find(sign);
    const std::wstring_view taken = rest.substr(0, end);
    rest = end == std::wstring_view::npos ? std::wstring_view() : rest.substr(end + 1);
    return taken;
}

std::wstring_view FirstGroup(std::wstring_view name) {
    while (!name.empty()) {
        const std::wstring_view group = TakeUpTo(kGroupEnd, name);
        if (group.find_first_not_of(kOnlySigns) != std::wstring_view::npos) return group;
    }
    return {};
}

std::wstring Joined(std::wstring first, std::wstring_view between, std::wstring_view second) {
    if (!first.empty() && !second.empty()) first += between;
    return first.append(second);
}

std::wstring FormatName(const std::wstring& dicomName) {
    std::wstring_view rest = FirstGroup(dicomName);
    std::wstring_view components[kComponentCount];
    for (std::wstring_view& component : components) component = Trimmed(TakeUpTo(kComponentEnd, rest));
    std::wstring given;
    for (const Component component : {kPrefix, kGiven, kMiddle}) {
        given = Joined(given, L" ", components[component]);
    }
    const std::wstring name = Joined(std::wstring(components[kFamily]), L", ", given);
    return Joined(name, L", ", components[kSuffix]);
}

Hook<std::wstring(const std::wstring&)>& NameHook() {
    static Hook<std::wstring(const std::wstring&)>& hook =
        *new Hook<std::wstring(const std::wstring&)>(FormatName);
    return hook;
}

}  // namespace

std::wstring PatientName::GetDisplayablePatientName() const { return NameHook()(fDicomName); }

void PatientName::SetFormatter(Formatter formatter) { NameHook().Replace(std::move(formatter)); }

}  // namespace VantorHost
