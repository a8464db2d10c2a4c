#include "wrappers/NativeText.h"

#include <chrono>

#include "dicom/TVRUtil.h"
#include "host/ShortDate.h"
#include "wrappers/ValueText.h"

namespace VantorWrappers {

HostString ReadFilePath(Vantor::TDicomDoc& doc) { return ReadBytes(doc.GetFilePath()); }

HostString ReadStoredDate(const Vantor::TStudyDoc& study) {
    constexpr uint32_t kDateSize = 27;
    char buffer[kDateSize] = {};
    study.GetStudyDate(buffer, kDateSize, Vantor::TVRUtil::kEightDigits);
    return Trimmed(Vantor::Platform::ToHostText(buffer));
}

HostString ReadStudyTime(const Vantor::TStudyDoc& study) {
    constexpr uint32_t kTimeSize = 17;
    return ReadUntrimmed(study, &Vantor::TStudyDoc::GetStudyTime, kTimeSize);
}

HostString ShortDateOf(const HostString& storedDate) {
    constexpr size_t kDigits = 8;
    constexpr std::chrono::year_month_day kMinimum{std::chrono::year(1), std::chrono::January,
                                                   std::chrono::day(1)};
    const auto date =
        storedDate.size() == kDigits ? ParseDate(Vantor::Platform::FromHostText(storedDate)) : std::nullopt;
    if (!date) return VantorHost::ShortDate::Format(kMinimum);
    return VantorHost::ShortDate::Format(
        std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(*date)));
}

}  // namespace VantorWrappers
