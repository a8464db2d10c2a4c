// Prints what a DICOMDIR holds: directory_tree [--quiet] DICOMDIR
//
// A line for each document of the tree, each in front of those below it: level, type, where its file is, seen
// from the DICOMDIR's folder, and texts of its record; with tabs between them, and a dash for what is absent.
// Then a line for each list: its name, its count, and for each member the number of its line in the tree, 0
// when it is not there. With --quiet only the names and the counts.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "dicom/TException.h"
#include "directory/TDicomDirectory.h"

namespace {

using namespace Vantor;

constexpr uint32_t kLongestText = 256;
// By the document type's number.
constexpr const char* kTypeNames[] = {"PATIENT", "STUDY", "SERIES", "IMAGE", "RAW", "PRIVATE", "SR"};
constexpr Tag kTexts[] = {
    Tags::kPatientID,        Tags::kPatientName,   Tags::kStudyInstanceUID,
    Tags::kStudyDate,        Tags::kStudyID,       Tags::kSeriesInstanceUID,
    Tags::kSeriesNumber,     Tags::kModality,      Tags::kReferencedSOPInstanceUIDInFile,
    Tags::kReferencedFileID, Tags::kInstanceNumber};

class Printer {
  public:
    explicit Printer(const std::filesystem::path& path) : fFolder(path.parent_path()) {}

    void PrintTree(TDicomDoc& doc, int level) {
        fLineNumbers.emplace(&doc, fLineNumbers.size() + 1);
        std::printf("%d\t%s\t%s", level, kTypeNames[doc.GetDocType()], PathOf(doc.GetDicomFile()).c_str());
        for (const Tag tag : kTexts) {
            char text[kLongestText + 1];
            std::printf("\t%s", doc.GetDataSet()->GetText(tag, text, sizeof(text)) ? text : "-");
        }
        std::printf("\n");
        TListOf<TDicomDoc> children;
        doc.GetChildDocs(children, true);
        for (TDicomDoc* child : children) PrintTree(*child, level + 1);
    }

    template <typename T>
    void PrintList(const TListOf<T>& list, bool isQuiet) {
        std::printf("%s\t%d", kTypeNames[T::kDocType], list.GetCount());
        for (T* doc : list) {
            if (!isQuiet) std::printf("\t%zu", fLineNumbers[doc]);
        }
        std::printf("\n");
    }

  private:
    std::string PathOf(const TDicomFile* file) const {
        if (file == nullptr) return "-";
        return std::filesystem::path(file->GetFileSpec()->fPath).lexically_relative(fFolder).generic_string();
    }

    std::filesystem::path fFolder;
    std::map<const TDicomDoc*, size_t> fLineNumbers;
};

void Print(const char* path, bool isQuiet) {
    TDicomDirectory directory(TFileSpec(path), 0);
    Printer printer(path);
    for (TPatientDoc* patient : *directory.GetPatientDocs()) {
        if (!isQuiet) printer.PrintTree(*patient, 0);
    }
    const auto printLists = [&](auto*... lists) { (printer.PrintList(*lists, isQuiet), ...); };
    printLists(directory.GetPatientDocs(), directory.GetStudyDocs(), directory.GetSeriesDocs(),
               directory.GetImageDocs(), directory.GetRawDataDocs(), directory.GetSRDocs());
}

}  // namespace

int main(int argc, char** argv) {
    const bool isQuiet = argc == 3 && std::string_view(argv[1]) == "--quiet";
    if (argc != 2 && !isQuiet) return 2;
    try {
        Print(argv[argc - 1], isQuiet);
        return 0;
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        std::fprintf(stderr, "%s\n", error->GetErrorText());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    return 1;
}
