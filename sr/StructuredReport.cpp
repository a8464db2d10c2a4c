#include "sr/StructuredReport.h"

#include "dicom/TException.h"
#include "dicom/TFileSpec.h"
#include "dicom/TSRFile.h"
#include "directory/TDicomDirectory.h"
#include "platform/CodePage.h"
#include "sr/SRTrace.h"
#include "wrappers/Boundary.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/StructReportDirRec.h"

namespace VantorWrappers {

using Vantor::TFileSpec;
using Vantor::TSRFile;
using Vantor::Platform::FromHostText;
namespace Tags = Vantor::Tags;

namespace {

constexpr uint32_t kFlagSize = 32;
constexpr uint32_t kUidSize = 65;

// A report's file. Throws Vantor::TException* when the path is longer than the library can hold.
std::unique_ptr<TSRFile> MakeFile(Vantor::TDicomDirectory* directory, const HostString& path) {
    return std::make_unique<TSRFile>(reinterpret_cast<uintptr_t>(directory), TFileSpec(FromHostText(path)));
}

}  // namespace

StructuredReport::StructuredReport(const StructReportDirRec& record) : f_strPath(record.GetSRPath()) {
    TraceReport(TraceLevel::kInfo, [] { return ";;"; });
    TraceReport(TraceLevel::kInfo, [&] {
        return "New StructuredReport instance being created from SR file: " + FromHostText(f_strPath);
    });
    const DicomDirectory* const directory = record.GetDicomDirectory();
    f_umSrcDir = directory == nullptr ? nullptr : directory->GetUmDirectory();
    if (f_umSrcDir == nullptr) {
        TraceReport(TraceLevel::kError, [] { return "Not able to get DICOM Directory object."; });
        return;
    }
    Open();
}

StructuredReport::StructuredReport(const HostString& path) : f_strPath(path) { Open(); }

StructuredReport::~StructuredReport() { Dispose(); }

void StructuredReport::Open() {
    const auto failure = FailureOf([&] {
        f_umSrFile = MakeFile(f_umSrcDir, f_strPath);
        f_umSrIod = f_umSrFile->GetDataSet();
        if (f_umSrIod == nullptr) {
            TraceReport(TraceLevel::kError,
                        [&] { return "Not able to read SR file: " + FromHostText(f_strPath); });
        }
        fSrIod = std::make_unique<StructuredReportIOD>(f_umSrIod);
    });
    if (failure) {
        TraceReport(TraceLevel::kError, [&] { return FromHostText(f_strPath) + ": " + *failure; });
    }
}

// ---- Header ----

SRType StructuredReport::GetSRType() const { return IsValid() ? fSrIod->GetSRType() : SRType::Unknown; }

HostString StructuredReport::GetSRDocumentTitle() const {
    return IsValid() ? fSrIod->GetSRDocumentTitle() : HostString();
}

HostDateTime StructuredReport::GetSRDateTime() const {
    return IsValid() ? fSrIod->GetSRDateTime() : StructuredReportIOD::kMinimumDate;
}

HostString StructuredReport::GetCompletionFlag() const {
    return GetHeaderText(Tags::kCompletionFlag, kFlagSize);
}

HostString StructuredReport::GetVerificationFlag() const {
    return GetHeaderText(Tags::kVerificationFlag, kFlagSize);
}

HostString StructuredReport::GetSRInstanceNumber() const {
    return GetHeaderText(Tags::kInstanceNumber, kFlagSize);
}

HostString StructuredReport::GetStudyUID() const { return GetHeaderText(Tags::kStudyInstanceUID, kUidSize); }

HostString StructuredReport::GetSeriesUID() const {
    return GetHeaderText(Tags::kSeriesInstanceUID, kUidSize);
}

HostString StructuredReport::GetSRUID() const {
    constexpr Vantor::Tag kTag = Tags::kSOPInstanceUID;
    return fSrIod == nullptr ? HostString() : fSrIod->GetAttribute(kTag.fGroup, kTag.fElement, kUidSize);
}

HostString StructuredReport::GetHeaderText(Vantor::Tag tag, uint32_t maxLength) const {
    return IsValid() ? fSrIod->GetAttribute(tag.fGroup, tag.fElement, maxLength) : HostString();
}

// ---- The reporting product's document ----

bool StructuredReport::GetQuantixReport(const uint8_t*& buffer, uint32_t& length) {
    Dispose();
    FailureOf([&] {
        const std::unique_ptr<TSRFile> file = MakeFile(f_umSrcDir, f_strPath);
        uint32_t size = 0;
        if (!file->GetQuantixReportSize(size)) return;
        auto document = std::make_unique<uint8_t[]>(size);
        if (!file->GetQuantixReport(document.get(), size)) return;
        fPdfBuffer = std::move(document);
        fPdfBufLen = size;
        TraceReport(TraceLevel::kInfo,
                    [&] { return "Quantix report detected in SR file: " + FromHostText(f_strPath); });
    });
    buffer = fPdfBuffer.get();
    length = fPdfBufLen;
    return fPdfBuffer != nullptr;
}

bool StructuredReport::GetPdfQuantixReport(const uint8_t*& buffer) {
    if (f_strPath.empty()) {
        buffer = nullptr;
        return false;
    }
    return GetQuantixReport(buffer, fPdfReportSize);
}

void StructuredReport::Dispose() {
    fPdfBuffer.reset();
    fPdfBufLen = 0;
}

}  // namespace VantorWrappers
