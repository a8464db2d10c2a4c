#include "dicom/TSRFile.h"

#include <memory>
#include <mutex>

#include "dicom/TException.h"
#include "dicom/TVRUtil.h"

namespace Vantor {

namespace {

// Where the reporting product keeps its report: an element of the block of its private creator.
constexpr uint16_t kReportGroup = 0x0021;
constexpr uint8_t kReportOffsetInBlock = 0xA6;
constexpr uint32_t kCreatorSize = 64;
constexpr char kReportCreator[kCreatorSize] = "QUANTIX";

constexpr uint32_t kModalityBufferSize = 14;
constexpr uint32_t kDateBufferSize = 256;

// Asks a question of a data set: what goes wrong on the way is a no.
template <typename Question>
bool AnswerOrFalse(Question question) {
    try {
        return question();
    } catch (TException* thrown) {
        std::unique_ptr<TException> error(thrown);
    } catch (...) {
        // Among these are the file's own failures and a lack of memory.
    }
    return false;
}

// False for the last element of a file that breaks off, also where its last bytes only are missing.
bool IsWhole(const TDicomDataSet& dataSet, int32_t offset) {
    const int32_t next = dataSet.GetNextElementOffset(offset);
    return next != 0 && next <= dataSet.GetDataSetSize();
}

}  // namespace

TSRFile::TSRFile() = default;

TSRFile::TSRFile(uintptr_t owner, const TFileSpec& fileSpec)
    : TDicomFile(owner, fileSpec, 0), fKind(kReportKind) {}

TDicomDataSet* TSRFile::GetDataSet() {
    // Held throughout, so that a file that is open is one that this thread has opened.
    const std::lock_guard<std::recursive_mutex> lock(fLock);
    if (fDataSet != nullptr) return fDataSet.get();
    const bool wasOpen = IsOpen();
    AnswerOrFalse([&] {
        OpenFile(Platform::FileAccess::kRead);
        return ReadFile();
    });
    if (!wasOpen) CloseFile();
    return fDataSet.get();
}

bool TSRFile::GetQuantixReport(void* buffer, uint32_t bufferSize) {
    uint32_t length = 0;
    return FindReport(length, buffer, bufferSize);
}

bool TSRFile::GetQuantixReportSize(uint32_t& length) { return FindReport(length, nullptr, 0); }

// Hosts take `length` bytes of the buffer as the report, so a report that breaks off with the file is none.
bool TSRFile::FindReport(uint32_t& length, void* buffer, uint32_t bufferSize) {
    return AnswerOrFalse([&] {
        const TDicomDataSet* dataSet = GetDataSet();
        int32_t offset = 0;
        return dataSet != nullptr &&
               dataSet->GetPrivateElement(kReportGroup, kReportCreator, kReportOffsetInBlock, nullptr,
                                          &length, buffer, bufferSize, &offset) &&
               IsWhole(*dataSet, offset);
    });
}

bool TSRFile::CheckForQuantixReport() {
    uint32_t length = 0;
    fHasReport = GetQuantixReportSize(length);
    fDataSet.reset();
    return fHasReport;
}

bool TSRFile::IsSRModality() {
    return AnswerOrFalse([&] {
        const TDicomDataSet* dataSet = GetDataSet();
        char modality[kModalityBufferSize] = {};
        uint32_t length = 0;
        if (dataSet == nullptr ||
            !dataSet->FindElement(Tags::kModality, nullptr, &length, modality, sizeof(modality))) {
            return false;
        }
        return length > 0 && modality[1] == 'R';
    });
}

bool TSRFile::GetContentDate(char* output, uint32_t outputSize, int32_t format) {
    return AnswerOrFalse([&] {
        const TDicomDataSet* dataSet = GetDataSet();
        char date[kDateBufferSize + 1] = {};
        if (dataSet == nullptr ||
            !dataSet->FindElement(Tags::kContentDate, nullptr, nullptr, date, kDateBufferSize)) {
            return false;
        }
        TVRUtil().DicomDateToCString(date, output, outputSize, format);
        return true;
    });
}

bool TSRFile::GetCompletionFlag(char* output, uint32_t outputSize) {
    return ReadText(Tags::kCompletionFlag, output, outputSize);
}

bool TSRFile::GetVerificationFlag(char* output, uint32_t outputSize) {
    return ReadText(Tags::kVerificationFlag, output, outputSize);
}

bool TSRFile::GetReportStatus(char* output, uint32_t outputSize) {
    return ReadText(Tags::kReportStatus, output, outputSize);
}

bool TSRFile::ReadText(Tag tag, char* output, uint32_t outputSize) {
    if (outputSize == 0) return false;
    output[0] = '\0';
    return AnswerOrFalse([&] {
        const TDicomDataSet* dataSet = GetDataSet();
        return dataSet != nullptr && dataSet->GetText(tag, output, outputSize);
    });
}

}  // namespace Vantor
