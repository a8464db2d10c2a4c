#include "sr/StructuredReportIOD.h"

#include <charconv>
#include <cstdio>
#include <new>

#include "dicom/TException.h"
#include "dicom/Uids.h"
#include "host/DateAndTime.h"
#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "sr/SRItemReader.h"
#include "wrappers/ValueText.h"

namespace VantorWrappers {

using Vantor::Tag;
using Vantor::TDicomDataSet;
using Vantor::TException;
using Vantor::Platform::FromHostText;
using Vantor::Platform::ToHostText;
using Vantor::Platform::UpperCased;
namespace Tags = Vantor::Tags;

namespace {

constexpr uint32_t kUidSize = 64;
constexpr uint32_t kNameSize = 64;
constexpr uint32_t kDateSize = 10;
constexpr uint32_t kTimeSize = 16;

constexpr wchar_t kRootNode[] = L"1";

// The formats of GetAttribute.
constexpr wchar_t kDateFormat[] = L"DATE";
constexpr wchar_t kNameFormat[] = L"PATIENTNAME";

// What names the templates: codes of the standard's own scheme.
constexpr char kStandardScheme[] = "DCM";
enum TemplateCode : int32_t {
    kProcedureLog = 121058,
    kObGyn = 125000,
    kVascular = 125100,
    kAdultCardiac = 125200,
    kPediatricCardiac = 125300,
};
constexpr wchar_t kCathTitle[] = L"CARDIAC CATH";

void TraceWarning(const char* line) {
    TraceReport(TraceLevel::kWarning, [&] { return line; });
}

void TraceVerbose(const char* line) {
    TraceReport(TraceLevel::kVerbose, [&] { return line; });
}

std::optional<int32_t> ParseCode(std::string_view text) {
    int32_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = result.ec == std::errc() && result.ptr == text.data() + text.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

// Reports of catheterizations come under the code of procedure logs. Hosts rely on the sense of this: those
// whose title says so are not taken for it.
bool IsTakenForCath(const HostString& title) {
    return title.size() > 1 && !VantorWrappers::UpperCased(title).starts_with(kCathTitle);
}

std::string TagText(uint16_t group, uint16_t element) {
    char text[sizeof("gggg,eeee")];
    std::snprintf(text, sizeof(text), "%04X,%04X", unsigned{group}, unsigned{element});
    return text;
}

}  // namespace

const HostDateTime StructuredReportIOD::kMinimumDate =
    std::chrono::local_days(std::chrono::year(1) / std::chrono::January / 1);

StructuredReportIOD::StructuredReportIOD(const TDicomDataSet* dataSet) : umDicomDataSet(dataSet) {
    TraceReport(TraceLevel::kInfo, [&] {
        return "New StructuredReportIOD instance being created for Patient: " +
               FromHostText(GetPatientName());
    });
    try {
        fIsValidSR = ParseSR();
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        TraceReport(TraceLevel::kError, [&] {
            return "SR parse failed with exception thrown - " + std::to_string(error->GetErrorNumber());
        });
    } catch (...) {
        TraceReport(TraceLevel::kError, [] { return "SR parse failed with unknown exception thrown"; });
    }
}

StructuredReportIOD::~StructuredReportIOD() = default;

// ---- Parsing ----

bool StructuredReportIOD::ParseSR() {
    TraceReport(TraceLevel::kInfo, [&] {
        return "Parsing of Structured Report Content Tree started for Patient: " +
               FromHostText(GetPatientName());
    });
    if (umDicomDataSet == nullptr) return false;
    ParseConceptNameCodeSequence();
    return ParseContentTree();
}

void StructuredReportIOD::ParseConceptNameCodeSequence() {
    constexpr FirstItemComplaints kComplaints = {
        {TraceLevel::kWarning, "No SR Concept Name Code Sequence found."},
        {TraceLevel::kWarning, "No items found in SR Concept Name Code Sequence."},
        {TraceLevel::kWarning, "Failed to create temporary TDicomDataSet for Concept Name Code Sequence."}};
    const auto sopClass = ViewTrimmed(*umDicomDataSet, Tags::kSOPClassUID, kUidSize);
    int32_t offset = 0;
    if (umDicomDataSet->FindElement(Tags::kConceptNameCodeSequence, nullptr, nullptr, nullptr, 0, &offset)) {
        TraceReport(TraceLevel::kVerbose, [&] {
            return "Found Concept Name Code Sequence at displacement " + std::to_string(offset);
        });
    }
    const auto items =
        FindFirstItem(*umDicomDataSet, Tags::kConceptNameCodeSequence, kComplaints, [] { return ""; });
    if (!items) return;
    const TDicomDataSet item = items->Wrap();
    const auto title = ViewTrimmed(item, Tags::kCodeMeaning, kCodeMeaningSize);
    if (title) {
        fSRDocumentTitle = ToHostText(*title);
        TraceReport(TraceLevel::kVerbose,
                    [&] { return "Found SR Document Title = " + FromHostText(fSRDocumentTitle); });
    } else {
        TraceWarning("No SR Document Title found.");
    }
    const auto code = ViewTrimmed(item, Tags::kCodeValue, kCodeStringSize);
    if (code) {
        TraceReport(TraceLevel::kVerbose, [&] { return "Found SR Template Type = " + std::string(*code); });
    } else {
        TraceWarning("No code value found for SR template type.");
    }
    const auto scheme = ViewTrimmed(item, Tags::kCodingSchemeDesignator, kCodeStringSize);
    if (!scheme) TraceWarning("No coding Scheme Designator found for SR template type.");
    SetSRTemplateType(code.value_or(""), scheme.value_or(""), sopClass.value_or(""));
}

void StructuredReportIOD::SetSRTemplateType(std::string_view code, std::string_view scheme,
                                            std::string_view sopClass) {
    if (sopClass == Vantor::Uids::kBasicTextSR) {
        fSRTemplateType = SRType::BasicTextSR;
        return;
    }
    if (sopClass != Vantor::Uids::kComprehensiveSR && sopClass != Vantor::Uids::kEnhancedSR) return;
    const auto number = ParseCode(code);
    if (UpperCased(scheme) != kStandardScheme || !number) return;
    switch (*number) {
        case kAdultCardiac:
            fSRTemplateType = SRType::USAdultCardiacSR;
            return TraceVerbose("Template type is Ultrasound Adult Cardiac");
        case kPediatricCardiac:
            fSRTemplateType = SRType::USPediatricCardiacSR;
            return TraceVerbose("Template type is Ultrasound Pediatric Cardiac");
        case kVascular:
            fSRTemplateType = SRType::USVascularSR;
            return TraceVerbose("Template type is Ultrasound Vascular");
        case kObGyn:
            fSRTemplateType = SRType::USOBGynSR;
            return TraceVerbose("Template type is Ultrasound OB/Gyn");
        case kProcedureLog:
            if (!IsTakenForCath(fSRDocumentTitle)) return;
            fSRTemplateType = SRType::CardiacCathSR;
            return TraceVerbose("Template type is Cardiac Catheterization");
        default:
            fSRTemplateType = SRType::NoTemplateSR;
            return TraceVerbose("Template type is not one of the customized templates.");
    }
}

// The root is what follows the value type: what stands in front of it describes the document.
bool StructuredReportIOD::ParseContentTree() {
    int32_t offset = 0;
    if (!umDicomDataSet->FindElement(Tags::kValueType, nullptr, nullptr, nullptr, 0, &offset)) {
        TraceWarning("No Document Content Macro found, no SR content will be parsed.");
        return false;
    }
    if (umDicomDataSet->GetNextElementOffset(offset) == 0) {
        TraceWarning("Failed to create temporary data set for Root Content Sequence.");
        return false;
    }
    const TDicomDataSet content(*umDicomDataSet, offset, umDicomDataSet->GetDataSetSize() - offset);
    fRootContentItem = std::make_unique<SRContainerContentItem>(&content, kRootNode);
    return true;
}

// ---- Content ----

int32_t StructuredReportIOD::GetContentItemCount() const {
    return fRootContentItem == nullptr ? 0 : fRootContentItem->GetContentItemCount();
}

bool StructuredReportIOD::GetContentItem(int32_t index, const SRContentItem*& item) const {
    item = nullptr;
    return fRootContentItem != nullptr && fRootContentItem->GetContentItem(index, item);
}

// ---- Header ----

HostString StructuredReportIOD::GetAttribute(uint16_t group, uint16_t element, uint32_t maxLength,
                                             const HostString& format) const {
    if (umDicomDataSet == nullptr) return {};
    try {
        const auto text = ViewTrimmed(*umDicomDataSet, {group, element}, maxLength);
        return text ? Format(*text, format) : HostString();
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
    } catch (const std::bad_alloc&) {
        TraceReport(TraceLevel::kError, [&] {
            return "Memory allocation failed for retrieval of DICOM attribute " + TagText(group, element) +
                   " for patient " + FromHostText(GetPatientName());
        });
    }
    return {};
}

HostString StructuredReportIOD::Format(std::string_view text, const HostString& format) const {
    const HostString wanted = VantorWrappers::UpperCased(format);
    if (wanted == kNameFormat) {
        return VantorHost::PatientName(ToHostText(text)).GetDisplayablePatientName();
    }
    if (wanted != kDateFormat) return ToHostText(text);
    const auto moment = ParseDateTime(text);
    return moment ? VantorHost::DateAndTime::Format(*moment) : HostString();
}

HostString StructuredReportIOD::GetPatientName() const {
    if (!fPatientName) {
        constexpr Tag kTag = Tags::kPatientName;
        fPatientName.emplace(GetAttribute(kTag.fGroup, kTag.fElement, kNameSize));
    }
    return fPatientName->GetDisplayablePatientName();
}

HostString StructuredReportIOD::GetPatientNumber() const {
    constexpr Tag kTag = Tags::kPatientID;
    return GetAttribute(kTag.fGroup, kTag.fElement, kNameSize);
}

HostDateTime StructuredReportIOD::GetSRDateTime() const {
    constexpr Tag kDateTag = Tags::kContentDate;
    constexpr Tag kTimeTag = Tags::kContentTime;
    constexpr size_t kTimeToTheSecond = 6;
    const std::string date = FromHostText(GetAttribute(kDateTag.fGroup, kDateTag.fElement, kDateSize));
    const std::string time = FromHostText(GetAttribute(kTimeTag.fGroup, kTimeTag.fElement, kTimeSize));
    const auto day = ParseDate(date);
    const auto timeOfDay = time.size() < kTimeToTheSecond ? std::nullopt : ParseTimeOfDay(time);
    if (day && timeOfDay) return *day + *timeOfDay;
    TraceReport(TraceLevel::kError, [&] {
        return "Failed to retrieve or convert Content Date or Content Time for patient " +
               FromHostText(GetPatientName()) + " Patient ID = " + FromHostText(GetPatientNumber());
    });
    return kMinimumDate;
}

}  // namespace VantorWrappers
