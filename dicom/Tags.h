#pragma once

#include <compare>
#include <cstdint>

namespace Vantor {

// The address of an element in a data set.
struct Tag {
    uint16_t fGroup = 0;
    uint16_t fElement = 0;

    constexpr auto operator<=>(const Tag&) const = default;
};

// The tags that the library reads or writes by name.
namespace Tags {

inline constexpr Tag kFileMetaInformationVersion{0x0002, 0x0001};
inline constexpr Tag kMediaStorageSOPClassUID{0x0002, 0x0002};
inline constexpr Tag kMediaStorageSOPInstanceUID{0x0002, 0x0003};
inline constexpr Tag kTransferSyntaxUID{0x0002, 0x0010};
inline constexpr Tag kImplementationClassUID{0x0002, 0x0012};
inline constexpr Tag kImplementationVersionName{0x0002, 0x0013};

inline constexpr Tag kFileSetID{0x0004, 0x1130};
inline constexpr Tag kFirstRootRecordOffset{0x0004, 0x1200};
inline constexpr Tag kLastRootRecordOffset{0x0004, 0x1202};
inline constexpr Tag kFileSetConsistencyFlag{0x0004, 0x1212};
inline constexpr Tag kDirectoryRecordSequence{0x0004, 0x1220};
inline constexpr Tag kNextRecordOffset{0x0004, 0x1400};
inline constexpr Tag kRecordInUseFlag{0x0004, 0x1410};
inline constexpr Tag kLowerLevelOffset{0x0004, 0x1420};
inline constexpr Tag kDirectoryRecordType{0x0004, 0x1430};
inline constexpr Tag kPrivateRecordUID{0x0004, 0x1432};
inline constexpr Tag kReferencedFileID{0x0004, 0x1500};
inline constexpr Tag kReferencedSOPClassUIDInFile{0x0004, 0x1510};
inline constexpr Tag kReferencedSOPInstanceUIDInFile{0x0004, 0x1511};
inline constexpr Tag kReferencedTransferSyntaxUIDInFile{0x0004, 0x1512};

inline constexpr Tag kSpecificCharacterSet{0x0008, 0x0005};
inline constexpr Tag kSOPClassUID{0x0008, 0x0016};
inline constexpr Tag kSOPInstanceUID{0x0008, 0x0018};
inline constexpr Tag kStudyDate{0x0008, 0x0020};
inline constexpr Tag kContentDate{0x0008, 0x0023};
inline constexpr Tag kStudyTime{0x0008, 0x0030};
inline constexpr Tag kContentTime{0x0008, 0x0033};
inline constexpr Tag kAccessionNumber{0x0008, 0x0050};
inline constexpr Tag kModality{0x0008, 0x0060};
inline constexpr Tag kReferringPhysicianName{0x0008, 0x0090};
inline constexpr Tag kCodeValue{0x0008, 0x0100};
inline constexpr Tag kCodingSchemeDesignator{0x0008, 0x0102};
inline constexpr Tag kCodingSchemeVersion{0x0008, 0x0103};
inline constexpr Tag kCodeMeaning{0x0008, 0x0104};
inline constexpr Tag kStudyDescription{0x0008, 0x1030};
inline constexpr Tag kSeriesDescription{0x0008, 0x103E};
inline constexpr Tag kReferencedSOPClassUID{0x0008, 0x1150};
inline constexpr Tag kReferencedSOPInstanceUID{0x0008, 0x1155};
inline constexpr Tag kSourceImageSequence{0x0008, 0x2112};
inline constexpr Tag kRecommendedDisplayFrameRate{0x0008, 0x2144};

inline constexpr Tag kPatientName{0x0010, 0x0010};
inline constexpr Tag kPatientID{0x0010, 0x0020};
inline constexpr Tag kPatientBirthDate{0x0010, 0x0030};

inline constexpr Tag kCineRate{0x0018, 0x0040};
inline constexpr Tag kFrameTime{0x0018, 0x1063};
inline constexpr Tag kFrameTimeVector{0x0018, 0x1065};

inline constexpr Tag kStudyInstanceUID{0x0020, 0x000D};
inline constexpr Tag kSeriesInstanceUID{0x0020, 0x000E};
inline constexpr Tag kStudyID{0x0020, 0x0010};
inline constexpr Tag kSeriesNumber{0x0020, 0x0011};
inline constexpr Tag kInstanceNumber{0x0020, 0x0013};

inline constexpr Tag kSamplesPerPixel{0x0028, 0x0002};
inline constexpr Tag kPhotometricInterpretation{0x0028, 0x0004};
inline constexpr Tag kPlanarConfiguration{0x0028, 0x0006};
inline constexpr Tag kNumberOfFrames{0x0028, 0x0008};
inline constexpr Tag kRows{0x0028, 0x0010};
inline constexpr Tag kColumns{0x0028, 0x0011};
inline constexpr Tag kBitsAllocated{0x0028, 0x0100};
inline constexpr Tag kBitsStored{0x0028, 0x0101};
inline constexpr Tag kHighBit{0x0028, 0x0102};
inline constexpr Tag kPixelRepresentation{0x0028, 0x0103};
inline constexpr Tag kSmallestImagePixelValue{0x0028, 0x0106};
inline constexpr Tag kLargestImagePixelValue{0x0028, 0x0107};
inline constexpr Tag kWindowCenter{0x0028, 0x1050};
inline constexpr Tag kWindowWidth{0x0028, 0x1051};
inline constexpr Tag kRescaleIntercept{0x0028, 0x1052};
inline constexpr Tag kRescaleSlope{0x0028, 0x1053};
inline constexpr Tag kRedPaletteDescriptor{0x0028, 0x1101};
inline constexpr Tag kGreenPaletteDescriptor{0x0028, 0x1102};
inline constexpr Tag kBluePaletteDescriptor{0x0028, 0x1103};
inline constexpr Tag kLargeRedPaletteDescriptor{0x0028, 0x1111};
inline constexpr Tag kRedPalette{0x0028, 0x1201};
inline constexpr Tag kGreenPalette{0x0028, 0x1202};
inline constexpr Tag kBluePalette{0x0028, 0x1203};
inline constexpr Tag kSegmentedRedPalette{0x0028, 0x1221};

inline constexpr Tag kMeasurementUnitsCodeSequence{0x0040, 0x08EA};
inline constexpr Tag kRelationshipType{0x0040, 0xA010};
inline constexpr Tag kObservationDateTime{0x0040, 0xA032};
inline constexpr Tag kValueType{0x0040, 0xA040};
inline constexpr Tag kConceptNameCodeSequence{0x0040, 0xA043};
inline constexpr Tag kContinuityOfContent{0x0040, 0xA050};
inline constexpr Tag kDateTime{0x0040, 0xA120};
inline constexpr Tag kDate{0x0040, 0xA121};
inline constexpr Tag kTime{0x0040, 0xA122};
inline constexpr Tag kPersonName{0x0040, 0xA123};
inline constexpr Tag kReportStatus{0x0040, 0xA125};
inline constexpr Tag kTextValue{0x0040, 0xA160};
inline constexpr Tag kConceptCodeSequence{0x0040, 0xA168};
inline constexpr Tag kMeasuredValueSequence{0x0040, 0xA300};
inline constexpr Tag kNumericValue{0x0040, 0xA30A};
inline constexpr Tag kCompletionFlag{0x0040, 0xA491};
inline constexpr Tag kVerificationFlag{0x0040, 0xA493};
inline constexpr Tag kContentSequence{0x0040, 0xA730};

// What a workstation's exam layout leaves in the study record: the creator, and the exam's folder.
inline constexpr Tag kExamCreator{0x7FDF, 0x0010};
inline constexpr Tag kExamFolder{0x7FDF, 0x10F2};

inline constexpr Tag kPixelData{0x7FE0, 0x0010};

inline constexpr Tag kItem{0xFFFE, 0xE000};
inline constexpr Tag kItemDelimitation{0xFFFE, 0xE00D};
inline constexpr Tag kSequenceDelimitation{0xFFFE, 0xE0DD};

}  // namespace Tags
}  // namespace Vantor
