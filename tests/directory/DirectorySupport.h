#pragma once

#include <memory>
#include <optional>
#include <string>

#include "directory/TDicomDirectory.h"
#include "platform/Clock.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/DirectoryBuilder.h"
#include "tests/support/TestFolder.h"

namespace VantorTest {

// The date and time stand still while it is alive; who waits for others has soon waited long enough.
class TestClock final : public Vantor::Platform::Clock {
  public:
    explicit TestClock(std::optional<Vantor::Platform::LocalTime> time) : fTime(time), fReplaced(*this) {}
    std::chrono::steady_clock::time_point Now() override { return fNow += std::chrono::seconds(30); }
    std::optional<Vantor::Platform::LocalTime> GetLocalTime() override { return fTime; }
    void Sleep(std::chrono::milliseconds) override {}

  private:
    std::optional<Vantor::Platform::LocalTime> fTime;
    std::chrono::steady_clock::time_point fNow;
    Vantor::Platform::ReplacedClock fReplaced;
};

inline std::unique_ptr<Vantor::TDicomDirectory> Load(const TestFolder& folder, const Bytes& content) {
    const Vantor::TFileSpec spec(folder.WriteFile("DICOMDIR", content));
    return std::make_unique<Vantor::TDicomDirectory>(spec, 0);
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
