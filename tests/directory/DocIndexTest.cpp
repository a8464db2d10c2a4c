// Looking documents up, against going through the lists one by one.

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "tests/directory/DirectorySupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
constexpr uint32_t kTextSize = 65;
using Docs = std::vector<TDicomDoc*>;

// Of odd length, padded, empty, and longer than hosts read.
const std::string kTexts[] = {
    "", " ", "1", "1 ", "1.2", std::string("1.2\0", 4), std::string(64, '1'), std::string(70, '1')};

class DocIndexTest : public testing::Test {
  protected:
    int Any(size_t count) { return static_cast<int>(fRandom() % count); }
    TDicomDoc* AnyOf(const Docs& docs) { return docs[fRandom() % docs.size()]; }
    const std::string& AnyText() { return kTexts[fRandom() % std::size(kTexts)]; }

    // Documents that share some, all or nothing of what tells them, or lack it.
    Bytes Medium(const Encoding& encoding) {
        DirectoryBuilder media(encoding.fTransferSyntax);
        const auto add = [&](int parent, const char* type, std::initializer_list<Tag> tags) {
            const int record = media.Add(parent, type);
            for (const Tag tag : tags) {
                if (Any(5) > 0) media.Keys(record).Value(tag, Vr::kUI, BytesOf(AnyText()));
            }
            return record;
        };
        for (int number = 0; number < 12; ++number) {
            const int patient =
                add(DirectoryBuilder::kRoot, "PATIENT ", {Tags::kPatientName, Tags::kPatientID});
            const int study = add(patient, "STUDY ", {Tags::kStudyInstanceUID});
            const int series = add(study, "SERIES", {Tags::kSeriesInstanceUID});
            for (const char* const type : {"IMAGE ", "SR DOCUMENT ", "RAW DATA", "IMAGE "}) {
                const Tag classUID = Tags::kReferencedSOPClassUIDInFile;
                add(series, type,
                    {Tags::kReferencedFileID, classUID, Tags::kReferencedSOPInstanceUIDInFile,
                     Tags::kInstanceNumber});
            }
        }
        return media.Build();
    }
    static Docs DocsOf(TDicomDirectory& directory) {
        Docs docs;
        const auto append = [&docs](const auto* list) {
            docs.insert(docs.end(), list->begin(), list->end());
        };
        append(directory.GetPatientDocs());
        append(directory.GetStudyDocs());
        append(directory.GetSeriesDocs());
        append(directory.GetImageDocs());
        append(directory.GetRawDataDocs());
        append(directory.GetSRDocs());
        return docs;
    }
    // What hangs below a document that has been taken out, or is gone, does not count.
    static bool Counts(const Docs& docs, const TDicomDoc* doc) {
        while (doc->GetParentObj() != nullptr) doc = doc->GetParentObj();
        return std::find(docs.begin(), docs.end(), doc) != docs.end() && !doc->HasOutlivedParent();
    }
    static TDicomDoc* Walk(const Docs& docs, TDicomDoc* wanted) {
        const auto found = std::find_if(docs.begin(), docs.end(), [&](TDicomDoc* doc) {
            return doc->GetDocType() == wanted->GetDocType() && doc->IsSameRecord(wanted) &&
                   Counts(docs, doc);
        });
        return found == docs.end() ? nullptr : *found;
    }
    // The first of the list with the text that hosts see, as they would find it by looking at each.
    static TDicomDoc* WalkByUid(const Docs& docs, int32_t docType, const std::string& uid) {
        const auto found = std::find_if(docs.begin(), docs.end(), [&](TDicomDoc* doc) {
            char text[kTextSize] = {};
            if (doc->GetDocType() != docType) return false;
            if (auto* const series = dynamic_cast<TSeriesDoc*>(doc)) series->GetSeriesUID(text, kTextSize);
            if (dynamic_cast<TImageDoc*>(doc) != nullptr) doc->GetSOPInstanceUID(text);
            if (dynamic_cast<TRawDataDoc*>(doc) != nullptr) doc->GetSOPInstanceUID(text);
            return uid == text && Counts(docs, doc);
        });
        return found == docs.end() ? nullptr : *found;
    }
    static std::string Relative(const std::string& path, const TestFolder& folder) {
        return path.starts_with(folder.GetPath()) ? path.substr(folder.GetPath().size()) : path;
    }
    void ChangeIdentity(TDicomDoc* doc) {
        const bool isFirst = Any(2) == 0;
        const char* const text = AnyText().c_str();
        if (auto* const patient = dynamic_cast<TPatientDoc*>(doc)) {
            isFirst ? patient->SetPatientName(text) : patient->SetPatientNumber(text);
        } else if (auto* const study = dynamic_cast<TStudyDoc*>(doc)) {
            study->SetStudyUID(isFirst ? nullptr : text);
        } else if (auto* const series = dynamic_cast<TSeriesDoc*>(doc)) {
            series->SetSeriesUID(isFirst ? nullptr : text);
        } else {
            isFirst ? doc->SetSOPInstanceUID(text) : doc->SetSOPClassUID("1.2");
        }
    }

    std::mt19937 fRandom{17};
    const TestFolder fFolder, fOtherFolder;
    int32_t fError = 0;
};

TEST_F(DocIndexTest, FindsTheFirstThatIsTheSameRecord) {
    for (int round = 0; round < 30; ++round) {
        const Bytes media[] = {Medium(kEncodings[round % 3]), Medium(kEncodings[round % 3])};
        const auto directory = Load(fFolder, media[0]), other = Load(fOtherFolder, media[1]);
        const Docs others = DocsOf(*other);
        Docs removed;
        for (int step = 0; step < 40; ++step) {
            const Docs docs = DocsOf(*directory);
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
            const Docs present = DocsOf(*directory);
            for (TDicomDoc* each : {AnyOf(others), AnyOf(others), AnyOf(present)}) {
                // At first before anybody has looked at them, which the walk does.
                TDicomDoc* const found = directory->FindDoc(each);
                ASSERT_EQ(found, Walk(present, each)) << round << " " << step;
            }
            const std::string uid = AnyText().c_str();
            ASSERT_EQ(directory->FindSeries(uid), WalkByUid(present, TDicomDoc::kSeries, uid)) << uid;
            ASSERT_EQ(directory->FindImage(uid), WalkByUid(present, TDicomDoc::kImage, uid)) << uid;
            ASSERT_EQ(directory->FindRawData(uid), WalkByUid(present, TDicomDoc::kRawData, uid)) << uid;
        }
        for (TDicomDoc* doc : removed) doc->Release();
        // Patients that are in no list are the caller's.
        std::erase_if(removed,
                      [](TDicomDoc* doc) { return doc->GetParentObj() != nullptr || doc->IsInUse(); });
        for (TDicomDoc* doc : std::set<TDicomDoc*>(removed.begin(), removed.end())) delete doc;
    }
}

// Lists of images take a short cut as long as nobody has asked for the record itself.
TEST_F(DocIndexTest, OutlinesOfImagesAreWhatTheirGettersGive) {
    for (const Encoding& encoding : kEncodings) {
        const Bytes media = Medium(encoding);
        const auto asleep = Load(fFolder, media), awake = Load(fOtherFolder, media);
        for (int32_t place = 1; place <= awake->GetImageDocs()->GetCount(); ++place) {
            TImageDoc *image = nullptr, *same = nullptr;
            awake->GetImageDocs()->FetchItemAt(place, image);
            asleep->GetImageDocs()->FetchItemAt(place, same);
            ASSERT_NE(image->GetDataSet(), nullptr);
            TUidText uids[2];
            image->GetSOPClassUID(uids[0].fText);
            image->GetSOPInstanceUID(uids[1].fText);
            const TImageOutline outline = same->GetOutline();
            EXPECT_EQ(outline.fSOPClassUID, uids[0].fText);
            EXPECT_EQ(outline.fSOPInstanceUID, uids[1].fText);
            EXPECT_EQ(outline.fImageNumber, image->GetImageNumber());
            const TDicomFile* const file = image->GetDicomFile();
            const std::string path = file == nullptr ? "" : file->GetFileSpec()->fPath;
            EXPECT_EQ(Relative(outline.fFilePath, fFolder), Relative(path, fOtherFolder));
        }
    }
}

}  // namespace
