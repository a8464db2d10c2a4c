// Looking documents up, against going through the lists one by one.

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <set>

#include "tests/directory/DirectorySupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Docs = std::vector<TDicomDoc*>;

// Of odd length, padded, empty, and longer than hosts read.
const std::string kTexts[] = {
    "", " ", "1", "1 ", "1.2", std::string("1.2\0", 4), std::string(64, '1'), std::string(70, '1')};

class IdentityIndexTest : public testing::TestWithParam<Encoding> {
  protected:
    int Any(size_t count) { return static_cast<int>(fRandom() % count); }
    TDicomDoc* AnyOf(const Docs& docs) { return docs[fRandom() % docs.size()]; }
    const char* AnyText() { return kTexts[fRandom() % std::size(kTexts)].c_str(); }

    // Documents that share some, all or nothing of what tells them, or lack it.
    Bytes Medium() {
        DirectoryBuilder media(GetParam().fTransferSyntax);
        const auto put = [&](int record, Tag tag) {
            if (Any(5) > 0)
                media.Keys(record).Value(tag, Vr::kUI, BytesOf(kTexts[fRandom() % std::size(kTexts)]));
        };
        for (int number = 0; number < 12; ++number) {
            const int patient = media.Add(DirectoryBuilder::kRoot, "PATIENT ");
            put(patient, Tags::kPatientName);
            put(patient, Tags::kPatientID);
            const int study = media.Add(patient, "STUDY ");
            put(study, Tags::kStudyInstanceUID);
            const int series = media.Add(study, "SERIES");
            put(series, Tags::kSeriesInstanceUID);
            for (const char* const type : {"IMAGE ", "SR DOCUMENT ", "RAW DATA", "IMAGE "}) {
                const int instance = media.Add(series, type);
                media.Keys(instance).Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI,
                                          number % 2 == 0 ? "1.2" : "1.3");
                put(instance, Tags::kReferencedSOPInstanceUIDInFile);
            }
        }
        return media.Build();
    }
    static std::array<Docs, 7> ListsOf(TDicomDirectory& directory) {
        const auto all = [](const auto* list) { return Docs(list->begin(), list->end()); };
        return {all(directory.GetPatientDocs()), all(directory.GetStudyDocs()),
                all(directory.GetSeriesDocs()),  all(directory.GetImageDocs()),
                all(directory.GetRawDataDocs()), {},
                all(directory.GetSRDocs())};
    }
    static Docs DocsOf(TDicomDirectory& directory) {
        Docs docs;
        for (const Docs& list : ListsOf(directory)) docs.insert(docs.end(), list.begin(), list.end());
        return docs;
    }
    // What hangs below a document that has been taken out, or is gone, does not count.
    static bool IsInTree(const std::array<Docs, 7>& lists, const TDicomDoc* doc) {
        while (doc->GetParentObj() != nullptr) doc = doc->GetParentObj();
        const Docs& list = lists[static_cast<size_t>(doc->GetDocType())];
        return std::find(list.begin(), list.end(), doc) != list.end() && !doc->HasOutlivedParent();
    }
    static TDicomDoc* Walk(TDicomDirectory& directory, TDicomDoc* wanted) {
        const std::array<Docs, 7> lists = ListsOf(directory);
        const Docs& list = lists[static_cast<size_t>(wanted->GetDocType())];
        const auto found = std::find_if(list.begin(), list.end(), [&](TDicomDoc* doc) {
            return doc->IsSameRecord(wanted) && IsInTree(lists, doc);
        });
        return found == list.end() ? nullptr : *found;
    }
    void ChangeIdentity(TDicomDoc* doc) {
        const bool isFirst = Any(2) == 0;
        if (auto* const patient = dynamic_cast<TPatientDoc*>(doc)) {
            isFirst ? patient->SetPatientName(AnyText()) : patient->SetPatientNumber(AnyText());
        } else if (auto* const study = dynamic_cast<TStudyDoc*>(doc)) {
            study->SetStudyUID(isFirst ? nullptr : AnyText());
        } else if (auto* const series = dynamic_cast<TSeriesDoc*>(doc)) {
            series->SetSeriesUID(isFirst ? nullptr : AnyText());
        } else {
            isFirst ? doc->SetSOPInstanceUID(AnyText()) : doc->SetSOPClassUID("1.2");
        }
    }

    std::mt19937 fRandom{17};
    TestFolder fFolder;
    int32_t fError = 0;
};

TEST_P(IdentityIndexTest, FindsTheFirstThatIsTheSameRecord) {
    for (int round = 0; round < 12; ++round) {
        const TestFolder otherFolder;
        const auto directory = Load(fFolder, Medium());
        const auto other = Load(otherFolder, Medium());
        Docs removed;
        for (int step = 0; step < 40; ++step) {
            const Docs docs = DocsOf(*directory), others = DocsOf(*other);
            TDicomDoc* const doc = AnyOf(docs);
            const int operation = removed.empty() ? Any(4) : Any(6);
            if (operation == 0) {
                doc->Register();
                directory->RemoveDoc(doc);
                removed.push_back(doc);
            } else if (operation == 1) {
                directory->FindOrCreateDoc(AnyOf(others), fError);
            } else if (operation == 5) {
                directory->RegisterDoc(AnyOf(removed));
            } else {
                ChangeIdentity(operation == 4 ? AnyOf(removed) : doc);
            }
            // At first before anybody has looked at them, which the walk does.
            Docs wanted = {AnyOf(others)};
            if (step % 10 == 9) {
                wanted = DocsOf(*directory);
                wanted.insert(wanted.end(), others.begin(), others.end());
            }
            for (TDicomDoc* each : wanted) {
                TDicomDoc* const found = directory->FindDoc(each);
                ASSERT_EQ(found, Walk(*directory, each)) << round << " " << step;
            }
        }
        for (TDicomDoc* doc : removed) doc->Release();
        // Patients that are in no list are the caller's.
        std::erase_if(removed,
                      [](TDicomDoc* doc) { return doc->GetParentObj() != nullptr || doc->IsInUse(); });
        for (TDicomDoc* doc : std::set<TDicomDoc*>(removed.begin(), removed.end())) delete doc;
    }
}

INSTANTIATE_TEST_SUITE_P(Encodings, IdentityIndexTest, testing::ValuesIn(kEncodings));

}  // namespace
