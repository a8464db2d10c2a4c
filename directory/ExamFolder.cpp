#include "directory/ExamFolder.h"

#include "dicom/TDicomDataSet.h"
#include "platform/PathStyle.h"
#include "records/TDicomDoc.h"

namespace Vantor::ExamFolder {

namespace {

constexpr char kCreator[] = "VANTOR EXAM LAYOUT";
constexpr uint32_t kLongestPath = 256;

}  // namespace

bool IsNamedIn(const TDicomDataSet& record) { return record.FindElement(Tags::kExamCreator); }

std::optional<std::string> ReadName(const TDicomDataSet& record) {
    char value[kLongestPath + 1];
    if (!record.GetText(Tags::kExamFolder, value, sizeof(value))) return std::nullopt;
    std::string path = value;
    if (path.size() == kLongestPath) return std::nullopt;  // there may be more of it
    path.erase(path.find_last_not_of(' ') + 1);
    const std::string name = path.substr(path.find_last_of("\\/") + 1);
    if (!IsPlainName(name) || name.size() >= TDicomDoc::kFolderNameSize) return std::nullopt;
    return name;
}

// Readers look for the two elements where they are, whoever made the creator.
void WritePath(TDicomDataSet& record, std::string_view path) {
    const auto length = static_cast<uint32_t>(path.size());
    constexpr uint32_t kCreatorLength = sizeof(kCreator) - 1;
    if (!IsNamedIn(record))
        record.PutElement(Tags::kExamCreator, Vr::kLO, kCreatorLength, kCreator, kCreatorLength);
    record.PutElement(Tags::kExamFolder, Vr::kST, length, path.data(), length);
}

bool IsPlainName(std::string_view name) { return Platform::WindowsPathStyle().IsPlainName(name); }

}  // namespace Vantor::ExamFolder
