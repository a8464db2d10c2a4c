// Who counts whom, and who goes when: the sanitizers tell what is left behind or goes twice.

#include "records/TDicomDirRec.h"
#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"
#include "tests/records/FakeDirectory.h"

namespace VantorTest {

// The types of all that is below, each with the file that its record names. Also looks whether counts are
// what lists and children make them, and every document knows its parent and directory.
std::string ShapeOf(TDicomDoc& doc) {
    TListOf<TDicomDoc> below, children;
    doc.GetChildDocs(children, true);
    doc.GetChildDocs(below, false);
    const bool isBelow = doc.GetParentObj() != nullptr;
    const int lists = isBelow + static_cast<FakeDirectory*>(doc.GetDirectory())->Has(&doc);
    EXPECT_EQ(static_cast<int>(doc.GetRefCount()), children.GetCount() + lists) << doc.GetDocType();
    EXPECT_EQ(doc.IsInUse(), lists > 0);
    for (TDicomDoc* child : children) {
        ShapeOf(*child);
        EXPECT_EQ(child->GetParentObj(), &doc);
    }
    std::string shape;
    for (TDicomDoc* each : below) {
        shape += std::to_string(each->GetDocType());
        if (each->GetDicomFile() != nullptr) shape += TextOf(*each->GetDataSet(), Tags::kReferencedFileID);
    }
    return shape;
}

class DocTreeTest : public testing::Test {
  protected:
    template <typename T>
    T* AddFile(const std::string& name, size_t size) {
        fDirectory.fStorage.SetContent(name, Bytes(size));
        return AddDoc<T>(*fSeries, {{Tags::kReferencedFileID, name},
                                    {Tags::kReferencedSOPClassUIDInFile, "1.2"},
                                    {Tags::kReferencedSOPInstanceUIDInFile, "1." + name}});
    }
    FakeDirectory fDirectory, fOther;
    std::unique_ptr<TPatientDoc> fPatient{NewDoc<TPatientDoc>(&fDirectory)};
    TStudyDoc* fStudy = AddDoc<TStudyDoc>(*fPatient);
    TSeriesDoc* fSeries = AddDoc<TSeriesDoc>(*fStudy);
    TPrivateDoc* fPrivate = AddFile<TPrivateDoc>("-P", 1023);
    TRawDataDoc* fRawData = AddFile<TRawDataDoc>("-R", 1022);
    TSR_Doc* fReport = AddFile<TSR_Doc>("-S", 2047);
    TImageDoc* fImage = AddFile<TImageDoc>("-I", 5000);
    TPrivateDoc* fBelowImage = AddDoc<TPrivateDoc>(*fImage);
    int32_t fError = 7;
};

TEST_F(DocTreeTest, AChildIsEnteredOnceAndInFrontOfOneOfItsType) {
    auto* const first = NewDoc<TImageDoc>(&fDirectory);
    EXPECT_TRUE(fSeries->AddChild(first, fImage, true, fError));
    EXPECT_TRUE(fSeries->AddChild(fImage, first, true, fError)) << "it stays at its place";
    EXPECT_FALSE(fSeries->AddChild(nullptr, nullptr, true, fError) || fError != 0);
    auto* const other = AddDoc<TSeriesDoc>(*AddDoc<TStudyDoc>(*fPatient));
    EXPECT_EQ(ShapeOf(*fPatient), "11233-I6-S4-R5-P52") << "a level, then what is below each";
    EXPECT_TRUE(other->AddChild(fImage, nullptr, true, fError)) << "one has one parent";
    EXPECT_EQ(ShapeOf(*fPatient), "11236-S4-R5-P23-I5");
}

TEST_F(DocTreeTest, WithoutKeepSourceTheGivenChildGoes) {
    fDirectory.RegisterDoc(fImage);
    EXPECT_TRUE(fSeries->AddChild(fImage, nullptr, false, fError)) << "though it was there already";
    EXPECT_FALSE(fStudy->AddChild(fReport, nullptr, false, fError)) << "refused, and gone all the same";
    EXPECT_EQ(ShapeOf(*fPatient), "124-R5-P");
    const std::unique_ptr<TPatientDoc> patient(NewDoc<TPatientDoc>(&fOther));
    EXPECT_FALSE(patient->AddChild(NewDoc<TSeriesDoc>(nullptr), nullptr, false, fError));
    EXPECT_TRUE(fOther.fDocs.empty() && fDirectory.fDocs.empty()) << "no copy of what is refused stays";
    EXPECT_TRUE(patient->AddChild(fStudy, nullptr, false, fError));
    EXPECT_EQ(ShapeOf(*fPatient) + ShapeOf(*patient), "124NOT_COPIED5-P");
}

TEST_F(DocTreeTest, CopiesNameTheFilesThatTheirDirectoryHas) {
    for (const char* uids : {"1.2 1.-I", "1.2 1.-S"}) {
        fOther.fRegistered[uids] = std::make_unique<TDicomFile>(0, TFileSpec("NEW"), 0);
    }
    TDicomDoc* const copy = fPatient->CopyToDirectory(&fOther, nullptr, true, fError);
    EXPECT_EQ(ShapeOf(*copy), "123HERE\\NEW6HERE\\NEW4NOT_COPIED5-P5");
    EXPECT_EQ(static_cast<TImageDoc*>(fOther.fDocs.at(3))->GetImageSetting(), 42U);
    EXPECT_EQ(ShapeOf(*fPatient), "123-I6-S4-R5-P5") << "the source is as it was";
    TDicomDoc* const report = fReport->CopyToDirectory(&fOther, nullptr, false, fError);
    EXPECT_EQ(TextOf(*report->GetDataSet(), Tags::kReferencedFileID), "-S") << "what it named";
}

TEST_F(DocTreeTest, HeldDocumentsOutliveTreeAndDirectory) {
    auto gone = std::make_unique<FakeDirectory>();
    std::unique_ptr<TPatientDoc> patient(NewDoc<TPatientDoc>(gone.get()));
    auto* const study = AddDoc<TStudyDoc>(*patient);
    AddDoc<TImageDoc>(*AddDoc<TSeriesDoc>(*study), {{Tags::kReferencedFileID, "I2"}});
    study->SetCompanionDoc(AddDoc<TPrivateDoc>(*patient));
    study->Register();
    patient.reset();
    gone.reset();
    EXPECT_TRUE(study->GetDirectory() == nullptr && study->GetParentObj() == nullptr);
    EXPECT_EQ(study->GetCompanionDoc(), nullptr) << "it went with the tree";
    study->Release();
    EXPECT_TRUE(fPatient->AddChild(study, nullptr, false, fError)) << "as a copy";
    EXPECT_EQ(ShapeOf(*fPatient), "1123-I6-S4-R5-P523NOT_COPIED");
}

TEST_F(DocTreeTest, TypesAndSpaceSayWhatMayBeAdded) {
    TDicomDoc* const docs[] = {fPatient.get(), fStudy, fSeries, fImage, fRawData, fPrivate, fReport};
    std::string accepted;
    for (TDicomDoc* parent : docs) {
        for (TDicomDoc* child : docs) {
            if (parent->CanAddChild(child, 0, fError)) accepted += std::to_string(child->GetDocType());
        }
        accepted += parent->CanAddChild(nullptr, 0, fError) ? "?" : ";";
    }
    EXPECT_EQ(accepted, "15;25;3456;5;;;5;");
    EXPECT_FALSE(fRawData->AddChild(fBelowImage, nullptr, true, fError) || fError != 0);
    // 1,022 bytes count as nothing, 1,023 as one unit: hosts compare with figures made so.
    EXPECT_EQ(fRawData->GetDiskSpace() * 100 + fPrivate->GetDiskSpace() * 10 + fStudy->GetDiskSpace(), 17);
    EXPECT_TRUE(fPatient->CanAddChild(fStudy, 0, fError) && TPatientDoc().CanAddChild(fStudy, 0, fError));
    fDirectory.fFreeSpace = 6.9;
    EXPECT_FALSE(fPatient->CanAddChild(fStudy, 0, fError));
    fDirectory.fStorage.SetContent("OTHER", Bytes(5000));
    for (TDicomDoc* doc : {docs[3], docs[1]}) doc->DeleteFilesFromDisk();
    EXPECT_TRUE(fDirectory.fStorage.ListStreams().size() == 1 && fStudy->GetDiskSpace() == 0);
}

TEST_F(DocTreeTest, ListsCountFromOne) {
    TListOf<TIODSource> list;
    TIODSource* item = nullptr;
    for (int position = 0; position < 40; ++position) list.InsertItemAt(position, fImage);  // long: indexed
    EXPECT_TRUE(list.FetchItemAt(0, item) && item == nullptr && !list.HasItem(fReport));
    EXPECT_THROW(list.FetchItemAt(40, item), std::out_of_range);
    list.InsertItemAt(1, fReport);
    EXPECT_TRUE(list.FindItem(fReport) == 1 && list.HasItem(fReport));
    list.RemoveItem(fReport);
    EXPECT_FALSE(list.HasItem(fReport));
}

TEST_F(DocTreeTest, RecordsCountTheirSourcesAndCollectThoseOfAChain) {
    TListOf<TIODSource> sources;
    {
        TDicomDirRec first(fImage), second(fReport), third(nullptr), fourth(fRawData);
        EXPECT_EQ(fReport->GetRefCount(), 2U);
        first.SetNext(&second);
        second.SetNext(&third);
        third.SetNext(&fourth);
        first.CollectSources(sources);
        EXPECT_EQ(sources.GetCount(), 2) << "up to the one without source";
        second.SetNext(&first);
        first.CollectSources(sources);
        EXPECT_EQ(sources.GetCount(), 4) << "a ring ends where it began";
    }
    EXPECT_TRUE(*sources.begin() == fImage && *sources.rbegin() == fReport);
    EXPECT_EQ(fReport->GetRefCount(), 1U);
}

TEST_F(DocTreeTest, AStudysCompanionGoesWithItInTheExamLayout) {
    auto* const companion = AddDoc<TPrivateDoc>(*fPatient);
    fStudy->SetCompanionDoc(companion);
    for (const auto& [type, left] : {std::pair(0, "5"), std::pair(2, "5"), std::pair(1, "")}) {
        fDirectory.fType = type;
        fPatient->RemoveChild(fStudy);
        EXPECT_EQ(ShapeOf(*fPatient), left);
        EXPECT_TRUE(fPatient->AddChild(fStudy, nullptr, true, fError));
    }
    EXPECT_EQ(fDirectory.fKept, std::vector<TDicomDoc*>{companion});
}

}  // namespace VantorTest
