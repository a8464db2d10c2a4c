#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <tuple>

#include "directory/TDicomDirectory.h"
#include "platform/PathStyle.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/DirectoryBuilder.h"
#include "tests/support/TestClock.h"
#include "tests/support/TestFolder.h"

namespace VantorTest {

inline const std::string kSeparator(1, Vantor::Platform::PathStyle::OfPlatform().GetSeparator());

// As the library spells the names that it makes.
inline std::string Spelled(const std::string& name) {
    return Vantor::Platform::PathStyle::OfPlatform().NameToMake(name);
}

inline std::unique_ptr<Vantor::TDicomDirectory> Load(const TestFolder& folder, const Bytes& content) {
    const Vantor::TFileSpec spec(folder.WriteFile("DICOMDIR", content));
    return std::make_unique<Vantor::TDicomDirectory>(spec, 0);
}

inline constexpr char kReportClass[] = "1.2.840.10008.5.1.4.1.1.88.22";

// A file's keys, as DirectoryBuilder numbers them, and a few more values. Empty texts are left out.
struct FileKeys {
    int fInstance = 4;
    int fSeries = 3;
    const char* fSeriesNumber = "";
    const char* fPatientID = "ID1";
    const char* fClass = FileBuilder::kSecondaryCapture;
    bool fIsSparse = false;  // without what records need not have
    const char* fSyntax = Vantor::Uids::kExplicitVRLittleEndian;
    int fStudy = 2;
};

inline FileBuilder FileOf(const FileKeys& keys) {
    using namespace Vantor;
    const std::string uid = "1.2.3.3." + std::to_string(keys.fInstance);
    const bool isReport = std::string_view(keys.fClass) == kReportClass;
    FileBuilder file(keys.fSyntax, keys.fClass, uid);
    const std::tuple<Tag, VrCode, std::string, bool> elements[] = {
        {Tags::kSpecificCharacterSet, Vr::kCS, "ISO_IR 100", false},
        {Tags::kSOPClassUID, Vr::kUI, keys.fClass, false},
        {Tags::kSOPInstanceUID, Vr::kUI, uid, false},
        {Tags::kStudyDate, Vr::kDA, "20240315", false},
        {Tags::kContentDate, Vr::kDA, "20240316", false},
        {Tags::kStudyTime, Vr::kTM, "101500", false},
        {Tags::kContentTime, Vr::kTM, "1016", false},
        {Tags::kAccessionNumber, Vr::kSH, "A7", false},
        {Tags::kModality, Vr::kCS, isReport ? "SR" : "US", false},
        {Tags::kReferringPhysicianName, Vr::kPN, "Ref^A", false},
        {Tags::kStudyDescription, Vr::kLO, "Heart", false},
        {Tags::kSeriesDescription, Vr::kLO, "4CH", false},
        {Tags::kPatientName, Vr::kPN, "M\xFCller^A", false},
        {Tags::kPatientID, Vr::kLO, keys.fPatientID, true},
        {Tags::kStudyInstanceUID, Vr::kUI, "1.2.3.1." + std::to_string(keys.fStudy), false},
        {Tags::kSeriesInstanceUID, Vr::kUI, "1.2.3.2." + std::to_string(keys.fSeries), true},
        {Tags::kStudyID, Vr::kSH, std::to_string(keys.fStudy), false},
        {Tags::kSeriesNumber, Vr::kIS, keys.fSeriesNumber, false},
        {Tags::kInstanceNumber, Vr::kIS, std::to_string(keys.fInstance), false}};
    for (const auto& [tag, vr, value, isNeeded] : elements) {
        if (!value.empty() && (isNeeded || !keys.fIsSparse)) file.Data().Text(tag, vr, value);
    }
    const bool isImage = std::string_view(keys.fClass) == FileBuilder::kSecondaryCapture;
    if (isImage) file.Data().Numbers16(Tags::kPixelData, Vr::kOW, {1, 2});
    return file;
}

// What tells a document from others of its type, and the documents below in parentheses: P1(S1(s1(i1 i2))),
// with r for raw data, d for reports and x for private records.
inline std::string TreeOf(Vantor::TDicomDoc& doc) {
    using namespace Vantor;
    constexpr Tag kKeys[] = {Tags::kPatientID,      Tags::kStudyID,        Tags::kSeriesNumber,
                             Tags::kInstanceNumber, Tags::kInstanceNumber, Tags::kInstanceNumber,
                             Tags::kInstanceNumber};
    const auto type = static_cast<size_t>(doc.GetDocType());
    std::string text = TextOf(*doc.GetDataSet(), kKeys[type]);
    text.erase(text.find_last_not_of(' ') + 1);
    if (type == Vantor::TDicomDoc::kPatient) {
        text.replace(0, 2, 1, 'P');  // for "ID"
    } else {
        text.insert(0, 1, "PSsirxd"[type]);
    }
    TListOf<TDicomDoc> children;
    doc.GetChildDocs(children, true);
    char before = '(';
    for (TDicomDoc* child : children) {
        text += before;
        text += TreeOf(*child);
        before = ' ';
    }
    if (children.GetCount() > 0) text += ')';
    return text;
}

template <typename T>
std::string TreesOf(const Vantor::TListOf<T>& docs) {
    std::string text;
    for (T* doc : docs) {
        if (!text.empty()) text += ' ';
        text += TreeOf(*doc);
    }
    return text;
}

inline std::string TreesOf(Vantor::TDicomDirectory& directory) {
    return TreesOf(*directory.GetPatientDocs());
}

}  // namespace VantorTest
