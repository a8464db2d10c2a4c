#include "records/TDicomUtils.h"

#include <algorithm>
#include <cstdio>

#include "dicom/TTextUtil.h"
#include "dicom/Uids.h"
#include "platform/Clock.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"

namespace Vantor {

namespace {

constexpr std::string_view kOrganisation = "990017";
constexpr std::string_view kRoot = "1.2.840.990017.";
constexpr char kDot = '.';

// Of a seed, components up to the first that is longer than this are taken, and so much of what follows it.
constexpr size_t kShortComponent = 5;
constexpr size_t kSeedRest = 6;
constexpr size_t kShortestPrefix = 10;

// What is kept of each end of a UID that is too long.
constexpr size_t kKeptEnd = 30;

// The components of a seed that identify who made it.
std::string PrefixOf(std::string_view seed) {
    std::string prefix;
    std::string_view rest = seed;
    while (prefix.size() < seed.size()) {
        const size_t dot = rest.find(kDot);
        // Without a component in front of a dot there is nothing to go on with.
        if (dot == std::string_view::npos || dot == 0) break;
        prefix += rest.substr(0, dot + 1);
        rest.remove_prefix(dot + 1);
        if (dot <= kShortComponent) continue;
        if (rest.size() > kSeedRest) prefix += rest.substr(0, kSeedRest);
        if (prefix.back() != kDot) prefix += kDot;
        break;
    }
    return prefix.size() < kShortestPrefix ? std::string(kRoot) : prefix;
}

// The local date without the year, and the time; zeros when the system cannot tell.
std::string DateAndTimeComponents() {
    const auto now = Platform::Clock::Current().GetLocalTime().value_or(Platform::LocalTime());
    char text[32];
    std::snprintf(text, sizeof(text), "%02d%02d.%02d%02d%02d", now.fMonth, now.fDay, now.fHour, now.fMinute,
                  now.fSecond);
    return text;
}

std::string WithComponent(const char* uid, int64_t component) {
    std::string extended = uid + (kDot + std::to_string(component));
    if (extended.size() > kMaximumUidLength) {
        extended = extended.substr(0, kKeptEnd) + extended.substr(extended.size() - kKeptEnd);
    }
    return extended;
}

}  // namespace

std::string TDicomUtils::GetRootUID(bool longForm) const {
    return std::string(longForm ? kRoot : kOrganisation);
}

std::string TDicomUtils::CreateNewStudyUID(std::string_view seed) const {
    const std::string prefix = seed.empty() ? std::string(kRoot) : PrefixOf(seed);
    return FixLeadingZeros(prefix + std::string(kOrganisation) + kDot + DateAndTimeComponents());
}

std::string TDicomUtils::CreateNewSeriesUID(TStudyDoc& study) const {
    TUidText studyUID;
    study.GetStudyUID(studyUID.fText, sizeof(studyUID.fText));
    int32_t last = 0;
    for (TSeriesDoc* series : *study.GetSeriesDocs()) {
        TUidText uid;
        series->GetSeriesUID(uid.fText, sizeof(uid.fText));
        last = std::max(last, GetLastComponent(uid.fText));
    }
    return FixLeadingZeros(WithComponent(studyUID.fText, int64_t{last} + 1));
}

std::string TDicomUtils::CreateNewImageUID(TSeriesDoc& series) const {
    return CreateImageUIDAfter(GetLastImageComponent(series), series);
}

std::string TDicomUtils::CreateImageUIDAfter(int32_t last, const TSeriesDoc& series) const {
    TUidText seriesUID;
    series.GetSeriesUID(seriesUID.fText, sizeof(seriesUID.fText));
    return FixLeadingZeros(WithComponent(seriesUID.fText, int64_t{last} + 1));
}

int32_t TDicomUtils::GetLastImageComponent(TSeriesDoc& series) const {
    int32_t last = 0;
    for (TImageDoc* image : *series.GetImageDocs()) {
        TUidText uid;
        if (image->GetSOPInstanceUID(uid.fText)) last = std::max(last, GetLastComponent(uid.fText));
    }
    return last;
}

int32_t TDicomUtils::GetLastComponent(std::string_view uid) const {
    const size_t dot = uid.rfind(kDot);
    if (dot == std::string_view::npos || dot == 0) return 0;
    return TTextUtil().ReadInteger(std::string(uid.substr(dot + 1)).c_str()).value_or(0);
}

std::string TDicomUtils::FixLeadingZeros(std::string_view uid) const {
    constexpr std::string_view kLeadingZero = ".0";
    std::string fixed(uid);
    for (size_t start = uid.find(kLeadingZero); start != std::string_view::npos;
         start = uid.find(kLeadingZero, start + 1)) {
        if (start + kLeadingZero.size() >= uid.size()) break;
        if (uid[start + kLeadingZero.size()] != kDot) fixed[start + 1] = '1';
    }
    return fixed;
}

}  // namespace Vantor
