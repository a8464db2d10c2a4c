// Arbitrary bytes as the text of a value: converted for hosts and back, split, cut, and read as a name, a
// number, a date, a UID and a path.

#include <string>

#include "dicom/CharacterSet.h"
#include "dicom/TTextUtil.h"
#include "dicom/TVRUtil.h"
#include "dicom/ValueText.h"
#include "fuzz/FuzzInput.h"
#include "host/PatientName.h"
#include "platform/CodePage.h"
#include "platform/PathStyle.h"
#include "wrappers/StoredText.h"
#include "wrappers/ValueText.h"

namespace {

using namespace Vantor;
using VantorFuzz::Require;

bool IsUtf8(std::string_view bytes) { return Platform::AsHostsSee(bytes) == bytes; }

void Convert(std::string_view bytes, size_t limit) {
    const std::wstring text = Platform::ToHostText(bytes);
    const std::string seen = Platform::FromHostText(text);
    Require(Platform::AsHostsSee(bytes) == seen && IsUtf8(seen));
    Require(Platform::ToHostText(seen) == text);

    const size_t cut = Platform::CutPosition(bytes, limit);
    Require(cut <= limit || cut == bytes.size());
    if (IsUtf8(bytes)) Require(IsUtf8(bytes.substr(0, cut)));

    for (const char* const set : {CharacterSet::kAscii, CharacterSet::kLatin1, CharacterSet::kUtf8}) {
        const auto encoded = CharacterSet::Encode(text, set);
        if (encoded && set == CharacterSet::kUtf8) Require(*encoded == seen);
    }
    CharacterSet::OfUnnamed(bytes);
    CharacterSet::OfNativeText(bytes);
}

void Split(std::string_view bytes) {
    for (const Characters characters : {Characters::kOfIso2022, Characters::kOfGb18030}) {
        std::string joined;
        for (const std::string_view part : SplitValue(bytes, '\\', characters)) {
            TrimValue(part);
            joined.append(part) += '\\';
        }
        Require(joined == std::string(bytes) + '\\');
    }
    HasControlCharacters(bytes);
    const auto replaced =
        ReplaceUids(bytes, [](std::string_view uid) { return std::optional("9" + std::string(uid)); });
    if (replaced) Require(replaced->size() % 2 == 0 && replaced->find('9') != std::string::npos);
}

void ReadAsValues(const std::string& text) {
    using namespace VantorWrappers;
    ParseInteger(text);
    const auto date = ParseDate(text);
    const auto moment = ParseDateTime(text);
    if (moment) Require(date && *moment >= *date && *moment - *date < std::chrono::hours(24));
    const auto time = ParseTimeOfDay(text);
    if (time) Require(time->count() >= 0 && *time < std::chrono::hours(24));
    FindStoredText(text, Vr::kPN, Platform::ToHostText(text));

    const VantorHost::PatientName name(Platform::ToHostText(text));
    Require(name.GetDisplayablePatientName().find_first_of(L"^=") == std::wstring::npos);

    char output[TVRUtil::kDateOutputSize];
    const std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
    if (text.find('\0') == std::string::npos) TTextUtil().ReadInteger(exact.data());
    for (const int32_t format : {TVRUtil::kMonthFirst, TVRUtil::kDayFirst, TVRUtil::kEightDigits}) {
        TVRUtil().DicomDateToCString(exact.data(), output, sizeof(output), format);
    }
    constexpr size_t kShortestTime = 4;
    if (text.size() >= kShortestTime) TVRUtil().DicomTimeToCString(exact.data(), output, sizeof(output));
}

void ReadAsPath(const Platform::PathStyle& style, std::string_view path) {
    Require(std::string(style.FolderPart(path)).append(style.LastPart(path)) == path);
    const std::string plain = style.WithoutLastSeparators(path);
    Require(path.starts_with(plain) && style.WithoutLastSeparators(plain) == plain);
    const auto driveEnd = style.DriveEnd(path);
    Require(!driveEnd || *driveEnd <= path.size());
    const std::string root = style.VolumeRoot(path);
    Require(!root.empty() && style.IsSeparator(root.back()));
    const std::string below = style.Join(std::string(path), "NAME");
    Require(style.LastPart(below) == "NAME" || style.EndsFolder(path));
    Require(style.ToFileID(style.FromFileID(path)) == style.ToFileID(path));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const std::vector<uint8_t> bytes = VantorFuzz::ExactCopy(data + 1, size - 1);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    Convert(text, data[0]);
    Split(text);
    ReadAsValues(std::string(text));
    ReadAsPath(Platform::WindowsPathStyle(), text);
    ReadAsPath(Platform::PosixPathStyle(), text);
    return 0;
}
