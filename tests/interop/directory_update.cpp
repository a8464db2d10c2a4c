// Writes DICOMDIRs with the library, for the interop checks and benchmarks to look at.
//
//   directory_update create FOLDER NAME     a new DICOMDIR over every DICOM file below the folder
//   directory_update rewrite DICOMDIR       reads and writes it again
//   directory_update add DICOMDIR FILE...   enters files
//   directory_update import DICOMDIR SOURCE copies everything of another directory into it
//   directory_update scan FOLDER            shows what a folder holds without its DICOMDIR

#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "dicom/TException.h"
#include "directory/FolderFiles.h"
#include "directory/TFolderDirectory.h"
#include "platform/FileException.h"

namespace {

using namespace Vantor;
using Arguments = std::vector<std::string>;

class Failure : public std::exception {
  public:
    explicit Failure(std::string text) : fText(std::move(text)) {}
    const char* what() const noexcept override { return fText.c_str(); }

  private:
    std::string fText;
};

void Require(bool isDone, const char* what) {
    if (!isDone) throw Failure(what);
}

void Enter(TDicomDirectory& directory, const std::string& path) {
    try {
        if (directory.AddFile(path) == nullptr) std::fprintf(stderr, "%s: not entered\n", path.c_str());
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        std::fprintf(stderr, "%s: %s\n", path.c_str(), error->GetErrorText());
    }
}

void Create(const Arguments& arguments) {
    const std::string path = arguments.at(0) + "/DICOMDIR";
    TDicomDirectory directory(TFileSpec(path), arguments.at(1).c_str(), TDicomDirectory::kStandardLayout,
                              Uids::kMediaStorageDirectory, "1.2.3", Uids::kExplicitVRLittleEndian,
                              Uids::kImplementationClass, false);
    directory.CreateEmptyDICOMDIR();
    Require(directory.OpenForUpdating(), "not opened");
    for (const std::string& file : FolderFiles::ListBelow(arguments.at(0))) {
        if (file != path) Enter(directory, file);
    }
    directory.WriteDICOMDIR();
}

void Rewrite(const Arguments& arguments) {
    TDicomDirectory directory(TFileSpec(arguments.at(0)), 0);
    Require(directory.OpenForUpdating(), "not opened");
    directory.WriteDICOMDIR();
}

void Add(const Arguments& arguments) {
    TDicomDirectory directory(TFileSpec(arguments.at(0)), 0);
    Require(directory.OpenForUpdating(), "not opened");
    for (size_t index = 1; index < arguments.size(); ++index) Enter(directory, arguments[index]);
    directory.WriteDICOMDIR();
}

void Import(const Arguments& arguments) {
    TDicomDirectory directory(TFileSpec(arguments.at(0)), 0);
    TFolderDirectory source(arguments.at(1), "", TFolderDirectory::kFolder);
    TListOf<TDicomDoc> docs;
    for (TDicomDoc* series : *source.GetSeriesDocs()) docs.InsertItemAt(docs.kAtEnd, series);
    directory.SetImportDocs(docs);
    int32_t index = 0, count = 0, done = 0, total = 0;
    char message[TDicomDirectory::kMessageSize] = {};
    while (docs.GetCount() > 0 && !directory.ImportDocs(100, index, count, done, total, message)) {
        Require(message[0] == '\0', message);
    }
    directory.WriteDICOMDIR();
}

void Show(TDicomDoc& doc, int depth) {
    char text[65] = {};
    const Tag keys[] = {Tags::kPatientID, Tags::kStudyInstanceUID, Tags::kSeriesNumber};
    const auto type = static_cast<size_t>(doc.GetDocType());
    doc.GetDataSet()->GetText(type < 3 ? keys[type] : Tags::kReferencedFileID, text, sizeof(text));
    std::printf("%*s%s\n", depth * 2, "", text);
    TListOf<TDicomDoc> children;
    doc.GetChildDocs(children, true);
    for (TDicomDoc* child : children) Show(*child, depth + 1);
}

void Scan(const Arguments& arguments) {
    TFolderDirectory directory(arguments.at(0), "", TFolderDirectory::kFolder);
    for (TDicomDoc* patient : *directory.GetPatientDocs()) Show(*patient, 0);
}

}  // namespace

int main(int count, char** values) {
    const std::map<std::string, void (*)(const Arguments&)> commands = {
        {"create", Create}, {"rewrite", Rewrite}, {"add", Add}, {"import", Import}, {"scan", Scan}};
    try {
        const Arguments arguments(values + 1, values + count);
        commands.at(arguments.at(0))(Arguments(arguments.begin() + 1, arguments.end()));
        return 0;
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        std::fprintf(stderr, "%d %s\n", error->GetErrorNumber(), error->GetErrorText());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    return 1;
}
