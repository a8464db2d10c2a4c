#include "dicom/DeIdentificationTable.h"

namespace Vantor {

namespace {

using enum DeIdentificationAction;

constexpr VrCode kUC = MakeVr('U', 'C');
constexpr VrCode kUR = MakeVr('U', 'R');

// clang-format off
constexpr DeIdentificationRow kTable[] = {
    {{0x0008, 0x0012}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Instance Creation Date
    {{0x0008, 0x0013}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Instance Creation Time
    {{0x0008, 0x0014}, Vr::kUI, kReplaceUids, kReplaceUids},  // Instance Creator UID
    {{0x0008, 0x0015}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Instance Coercion DateTime
    {{0x0008, 0x0016}, Vr::kUI, kStay, kStay},  // SOP Class UID
    {{0x0008, 0x0018}, Vr::kUI, kReplaceUids, kReplaceUids},  // SOP Instance UID
    {{0x0008, 0x001A}, Vr::kUI, kStay, kStay},  // Related General SOP Class UID
    {{0x0008, 0x001B}, Vr::kUI, kStay, kStay},  // Original Specialized SOP Class UID
    {{0x0008, 0x0020}, Vr::kDA, kBlank, kBlank},  // Study Date
    {{0x0008, 0x0021}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Series Date
    {{0x0008, 0x0022}, Vr::kDA, kBlank, kBlank},  // Acquisition Date
    {{0x0008, 0x0023}, Vr::kDA, kBlankOrDummy, kBlankOrDummy},  // Content Date
    {{0x0008, 0x0024}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Overlay Date
    {{0x0008, 0x0025}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Curve Date
    {{0x0008, 0x002A}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Acquisition DateTime
    {{0x0008, 0x0030}, Vr::kTM, kBlank, kBlank},  // Study Time
    {{0x0008, 0x0031}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Series Time
    {{0x0008, 0x0032}, Vr::kTM, kBlank, kBlank},  // Acquisition Time
    {{0x0008, 0x0033}, Vr::kTM, kBlankOrDummy, kBlankOrDummy},  // Content Time
    {{0x0008, 0x0034}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Overlay Time
    {{0x0008, 0x0035}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Curve Time
    {{0x0008, 0x0050}, Vr::kSH, kBlank, kBlank},  // Accession Number
    {{0x0008, 0x0051}, Vr::kSQ, kRemove, kRemove},  // Issuer of Accession Number Sequence
    {{0x0008, 0x0054}, Vr::kAE, kRemove, kRemove},  // Retrieve AE Title
    {{0x0008, 0x0055}, Vr::kAE, kRemove, kRemove},  // Station AE Title
    {{0x0008, 0x0058}, Vr::kUI, kReplaceUids, kReplaceUids},  // Failed SOP Instance UID List
    {{0x0008, 0x0062}, Vr::kUI, kStay, kStay},  // SOP Classes in Study
    {{0x0008, 0x0080}, Vr::kLO, kBlankOrDummy, kBlankOrDummy},  // Institution Name
    {{0x0008, 0x0081}, Vr::kST, kRemove, kRemove},  // Institution Address
    {{0x0008, 0x0082}, Vr::kSQ, kRemove, kRemove},  // Institution Code Sequence
    {{0x0008, 0x0090}, Vr::kPN, kStay, kBlank},  // Referring Physician's Name
    {{0x0008, 0x0092}, Vr::kST, kStay, kRemove},  // Referring Physician's Address
    {{0x0008, 0x0094}, Vr::kSH, kStay, kRemove},  // Referring Physician's Telephone Numbers
    {{0x0008, 0x0096}, Vr::kSQ, kStay, kRemove},  // Referring Physician Identification Sequence
    {{0x0008, 0x009C}, Vr::kPN, kStay, kBlank},  // Consulting Physician's Name
    {{0x0008, 0x009D}, Vr::kSQ, kStay, kRemove},  // Consulting Physician Identification Sequence
    {{0x0008, 0x0106}, Vr::kDT, kStay, kStay},  // Context Group Version
    {{0x0008, 0x0107}, Vr::kDT, kStay, kStay},  // Context Group Local Version
    {{0x0008, 0x010C}, Vr::kUI, kStay, kStay},  // Coding Scheme UID
    {{0x0008, 0x010D}, Vr::kUI, kReplaceUids, kReplaceUids},  // Context Group Extension Creator UID
    {{0x0008, 0x0117}, Vr::kUI, kStay, kStay},  // Context UID
    {{0x0008, 0x0118}, Vr::kUI, kStay, kStay},  // Mapping Resource UID
    {{0x0008, 0x0201}, Vr::kSH, kRemove, kRemove},  // Timezone Offset From UTC
    {{0x0008, 0x1010}, Vr::kSH, kBlankOrDummy, kBlankOrDummy},  // Station Name
    {{0x0008, 0x1030}, Vr::kLO, kRemove, kRemove},  // Study Description
    {{0x0008, 0x103E}, Vr::kLO, kRemove, kRemove},  // Series Description
    {{0x0008, 0x1040}, Vr::kLO, kRemove, kRemove},  // Institutional Department Name
    {{0x0008, 0x1041}, Vr::kSQ, kRemove, kRemove},  // Institutional Department Type Code Sequence
    {{0x0008, 0x1048}, Vr::kPN, kStay, kBlank},  // Physician(s) of Record
    {{0x0008, 0x1049}, Vr::kSQ, kStay, kRemove},  // Physician(s) of Record Identification Sequence
    {{0x0008, 0x1050}, Vr::kPN, kStay, kBlank},  // Performing Physician's Name
    {{0x0008, 0x1052}, Vr::kSQ, kStay, kRemove},  // Performing Physician Identification Sequence
    {{0x0008, 0x1060}, Vr::kPN, kStay, kBlank},  // Name of Physician(s) Reading Study
    {{0x0008, 0x1062}, Vr::kSQ, kStay, kRemove},  // Physician(s) Reading Study Identification Sequence
    {{0x0008, 0x1070}, Vr::kPN, kStay, kBlank},  // Operators' Name
    {{0x0008, 0x1072}, Vr::kSQ, kStay, kRemove},  // Operator Identification Sequence
    {{0x0008, 0x1080}, Vr::kLO, kRemove, kRemove},  // Admitting Diagnoses Description
    {{0x0008, 0x1084}, Vr::kSQ, kRemove, kRemove},  // Admitting Diagnoses Code Sequence
    {{0x0008, 0x1110}, Vr::kSQ, kRemoveOrBlank, kRemoveOrBlank},  // Referenced Study Sequence
    {{0x0008, 0x1111}, Vr::kSQ, kRemoveOrBlank, kRemoveOrBlank},  // Referenced Performed Procedure Step Sequence
    {{0x0008, 0x1120}, Vr::kSQ, kRemove, kRemove},  // Referenced Patient Sequence
    {{0x0008, 0x1125}, Vr::kSQ, kRemove, kRemove},  // Referenced Visit Sequence
    {{0x0008, 0x1150}, Vr::kUI, kStay, kStay},  // Referenced SOP Class UID
    {{0x0008, 0x1155}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced SOP Instance UID
    {{0x0008, 0x115A}, Vr::kUI, kStay, kStay},  // SOP Classes Supported
    {{0x0008, 0x1167}, Vr::kUI, kReplaceUids, kReplaceUids},  // Multi-frame Source SOP Instance UID
    {{0x0008, 0x1190}, kUR, kRemove, kRemove},  // Retrieve URL
    {{0x0008, 0x1195}, Vr::kUI, kReplaceUids, kReplaceUids},  // Transaction UID
    {{0x0008, 0x2111}, Vr::kST, kRemove, kRemove},  // Derivation Description
    {{0x0008, 0x3002}, Vr::kUI, kStay, kStay},  // Available Transfer Syntax UID
    {{0x0008, 0x3010}, Vr::kUI, kReplaceUids, kReplaceUids},  // Irradiation Event UID
    {{0x0008, 0x3012}, Vr::kUI, kReplaceUids, kReplaceUids},  // Radiopharmaceutical Administration Event UID
    {{0x0008, 0x4000}, Vr::kLT, kRemove, kRemove},  // Identifying Comments
    {{0x0008, 0x9123}, Vr::kUI, kReplaceUids, kReplaceUids},  // Creator-Version UID
    {{0x0010, 0x0010}, Vr::kPN, kBlank, kBlank},  // Patient's Name
    {{0x0010, 0x0011}, Vr::kSQ, kRemove, kRemove},  // Person Names to Use Sequence
    {{0x0010, 0x0012}, Vr::kLT, kRemove, kRemove},  // Name to Use
    {{0x0010, 0x0013}, Vr::kUT, kRemove, kRemove},  // Name to Use Comment
    {{0x0010, 0x0014}, Vr::kSQ, kRemove, kRemove},  // Third Person Pronouns Sequence
    {{0x0010, 0x0015}, Vr::kSQ, kRemove, kRemove},  // Pronoun Code Sequence
    {{0x0010, 0x0016}, Vr::kUT, kRemove, kRemove},  // Pronoun Comment
    {{0x0010, 0x0020}, Vr::kLO, kBlank, kBlank},  // Patient ID
    {{0x0010, 0x0021}, Vr::kLO, kRemove, kRemove},  // Issuer of Patient ID
    {{0x0010, 0x0022}, Vr::kCS, kStay, kStay},  // Type of Patient ID
    {{0x0010, 0x0024}, Vr::kSQ, kRemove, kRemove},  // Issuer of Patient ID Qualifiers Sequence
    {{0x0010, 0x0026}, Vr::kSQ, kRemove, kRemove},  // Source Patient Group Identification Sequence
    {{0x0010, 0x0027}, Vr::kSQ, kRemove, kRemove},  // Group of Patients Identification Sequence
    {{0x0010, 0x0028}, Vr::kUS, kStay, kStay},  // Subject Relative Position in Image
    {{0x0010, 0x0030}, Vr::kDA, kBlank, kBlank},  // Patient's Birth Date
    {{0x0010, 0x0032}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Patient's Birth Time
    {{0x0010, 0x0033}, Vr::kLO, kRemove, kRemove},  // Patient's Birth Date in Alternative Calendar
    {{0x0010, 0x0034}, Vr::kLO, kRemove, kRemove},  // Patient's Death Date in Alternative Calendar
    {{0x0010, 0x0035}, Vr::kCS, kRemove, kRemove},  // Patient's Alternative Calendar
    {{0x0010, 0x0040}, Vr::kCS, kBlank, kBlank},  // Patient's Sex
    {{0x0010, 0x0041}, Vr::kSQ, kRemove, kRemove},  // Gender Identity Sequence
    {{0x0010, 0x0042}, Vr::kUT, kRemove, kRemove},  // Sex Parameters for Clinical Use Category Comment
    {{0x0010, 0x0043}, Vr::kSQ, kRemove, kRemove},  // Sex Parameters for Clinical Use Category Sequence
    {{0x0010, 0x0044}, Vr::kSQ, kRemove, kRemove},  // Gender Identity Code Sequence
    {{0x0010, 0x0045}, Vr::kUT, kRemove, kRemove},  // Gender Identity Comment
    {{0x0010, 0x0046}, Vr::kSQ, kRemove, kRemove},  // Sex Parameters for Clinical Use Category Code Sequence
    {{0x0010, 0x0047}, kUR, kRemove, kRemove},  // Sex Parameters for Clinical Use Category Reference
    {{0x0010, 0x0050}, Vr::kSQ, kRemove, kRemove},  // Patient's Insurance Plan Code Sequence
    {{0x0010, 0x0101}, Vr::kSQ, kRemove, kRemove},  // Patient's Primary Language Code Sequence
    {{0x0010, 0x0102}, Vr::kSQ, kRemove, kRemove},  // Patient's Primary Language Modifier Code Sequence
    {{0x0010, 0x0200}, Vr::kCS, kStay, kStay},  // Quality Control Subject
    {{0x0010, 0x0201}, Vr::kSQ, kStay, kStay},  // Quality Control Subject Type Code Sequence
    {{0x0010, 0x0212}, kUC, kStay, kStay},  // Strain Description
    {{0x0010, 0x0213}, Vr::kLO, kStay, kStay},  // Strain Nomenclature
    {{0x0010, 0x0214}, Vr::kLO, kStay, kStay},  // Strain Stock Number
    {{0x0010, 0x0215}, Vr::kSQ, kStay, kStay},  // Strain Source Registry Code Sequence
    {{0x0010, 0x0216}, Vr::kSQ, kStay, kStay},  // Strain Stock Sequence
    {{0x0010, 0x0217}, Vr::kLO, kStay, kStay},  // Strain Source
    {{0x0010, 0x0218}, Vr::kUT, kStay, kStay},  // Strain Additional Information
    {{0x0010, 0x0219}, Vr::kSQ, kStay, kStay},  // Strain Code Sequence
    {{0x0010, 0x0221}, Vr::kSQ, kStay, kStay},  // Genetic Modifications Sequence
    {{0x0010, 0x0222}, kUC, kStay, kStay},  // Genetic Modifications Description
    {{0x0010, 0x0223}, Vr::kLO, kStay, kStay},  // Genetic Modifications Nomenclature
    {{0x0010, 0x0229}, Vr::kSQ, kStay, kStay},  // Genetic Modifications Code Sequence
    {{0x0010, 0x1000}, Vr::kLO, kRemove, kRemove},  // Other Patient IDs
    {{0x0010, 0x1001}, Vr::kPN, kRemove, kRemove},  // Other Patient Names
    {{0x0010, 0x1002}, Vr::kSQ, kRemove, kRemove},  // Other Patient IDs Sequence
    {{0x0010, 0x1005}, Vr::kPN, kRemove, kRemove},  // Patient's Birth Name
    {{0x0010, 0x1010}, Vr::kAS, kRemove, kRemove},  // Patient's Age
    {{0x0010, 0x1020}, Vr::kDS, kRemove, kRemove},  // Patient's Size
    {{0x0010, 0x1021}, Vr::kSQ, kRemove, kRemove},  // Patient's Size Code Sequence
    {{0x0010, 0x1022}, Vr::kDS, kRemove, kRemove},  // Patient's Body Mass Index
    {{0x0010, 0x1023}, Vr::kDS, kStay, kStay},  // Measured AP Dimension
    {{0x0010, 0x1024}, Vr::kDS, kStay, kStay},  // Measured Lateral Dimension
    {{0x0010, 0x1030}, Vr::kDS, kRemove, kRemove},  // Patient's Weight
    {{0x0010, 0x1040}, Vr::kLO, kRemove, kRemove},  // Patient's Address
    {{0x0010, 0x1050}, Vr::kLO, kRemove, kRemove},  // Insurance Plan Identification
    {{0x0010, 0x1060}, Vr::kPN, kRemove, kRemove},  // Patient's Mother's Birth Name
    {{0x0010, 0x1080}, Vr::kLO, kRemove, kRemove},  // Military Rank
    {{0x0010, 0x1081}, Vr::kLO, kRemove, kRemove},  // Branch of Service
    {{0x0010, 0x1090}, Vr::kLO, kRemove, kRemove},  // Medical Record Locator
    {{0x0010, 0x1100}, Vr::kSQ, kRemove, kRemove},  // Referenced Patient Photo Sequence
    {{0x0010, 0x2000}, Vr::kLO, kRemove, kRemove},  // Medical Alerts
    {{0x0010, 0x2110}, Vr::kLO, kRemove, kRemove},  // Allergies
    {{0x0010, 0x2150}, Vr::kLO, kRemove, kRemove},  // Country of Residence
    {{0x0010, 0x2152}, Vr::kLO, kRemove, kRemove},  // Region of Residence
    {{0x0010, 0x2154}, Vr::kSH, kRemove, kRemove},  // Patient's Telephone Numbers
    {{0x0010, 0x2155}, Vr::kLT, kRemove, kRemove},  // Patient's Telecom Information
    {{0x0010, 0x2160}, Vr::kSH, kRemove, kRemove},  // Ethnic Group
    {{0x0010, 0x2161}, Vr::kSQ, kRemove, kRemove},  // Ethnic Group Code Sequence
    {{0x0010, 0x2162}, kUC, kRemove, kRemove},  // Ethnic Groups
    {{0x0010, 0x2180}, Vr::kSH, kRemove, kRemove},  // Occupation
    {{0x0010, 0x21A0}, Vr::kCS, kRemove, kRemove},  // Smoking Status
    {{0x0010, 0x21B0}, Vr::kLT, kRemove, kRemove},  // Additional Patient History
    {{0x0010, 0x21C0}, Vr::kUS, kRemove, kRemove},  // Pregnancy Status
    {{0x0010, 0x21D0}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Last Menstrual Date
    {{0x0010, 0x21F0}, Vr::kLO, kRemove, kRemove},  // Patient's Religious Preference
    {{0x0010, 0x2201}, Vr::kLO, kStay, kStay},  // Patient Species Description
    {{0x0010, 0x2202}, Vr::kSQ, kStay, kStay},  // Patient Species Code Sequence
    {{0x0010, 0x2203}, Vr::kCS, kBlank, kBlank},  // Patient's Sex Neutered
    {{0x0010, 0x2210}, Vr::kCS, kStay, kStay},  // Anatomical Orientation Type
    {{0x0010, 0x2292}, Vr::kLO, kStay, kStay},  // Patient Breed Description
    {{0x0010, 0x2293}, Vr::kSQ, kStay, kStay},  // Patient Breed Code Sequence
    {{0x0010, 0x2294}, Vr::kSQ, kBlank, kBlank},  // Breed Registration Sequence
    {{0x0010, 0x2295}, Vr::kLO, kRemove, kRemove},  // Breed Registration Number
    {{0x0010, 0x2296}, Vr::kSQ, kStay, kStay},  // Breed Registry Code Sequence
    {{0x0010, 0x2297}, Vr::kPN, kBlank, kBlank},  // Responsible Person
    {{0x0010, 0x2298}, Vr::kCS, kStay, kStay},  // Responsible Person Role
    {{0x0010, 0x2299}, Vr::kLO, kBlank, kBlank},  // Responsible Organization
    {{0x0010, 0x4000}, Vr::kLT, kRemove, kRemove},  // Patient Comments
    {{0x0010, 0x9431}, Vr::kFL, kStay, kStay},  // Examined Body Thickness
    {{0x0012, 0x0010}, Vr::kLO, kDummy, kDummy},  // Clinical Trial Sponsor Name
    {{0x0012, 0x0020}, Vr::kLO, kDummy, kDummy},  // Clinical Trial Protocol ID
    {{0x0012, 0x0021}, Vr::kLO, kBlank, kBlank},  // Clinical Trial Protocol Name
    {{0x0012, 0x0022}, Vr::kLO, kRemove, kRemove},  // Issuer of Clinical Trial Protocol ID
    {{0x0012, 0x0023}, Vr::kSQ, kRemove, kRemove},  // Other Clinical Trial Protocol IDs Sequence
    {{0x0012, 0x0030}, Vr::kLO, kBlank, kBlank},  // Clinical Trial Site ID
    {{0x0012, 0x0031}, Vr::kLO, kBlank, kBlank},  // Clinical Trial Site Name
    {{0x0012, 0x0032}, Vr::kLO, kRemove, kRemove},  // Issuer of Clinical Trial Site ID
    {{0x0012, 0x0040}, Vr::kLO, kDummy, kDummy},  // Clinical Trial Subject ID
    {{0x0012, 0x0041}, Vr::kLO, kRemove, kRemove},  // Issuer of Clinical Trial Subject ID
    {{0x0012, 0x0042}, Vr::kLO, kDummy, kDummy},  // Clinical Trial Subject Reading ID
    {{0x0012, 0x0043}, Vr::kLO, kRemove, kRemove},  // Issuer of Clinical Trial Subject Reading ID
    {{0x0012, 0x0050}, Vr::kLO, kBlank, kBlank},  // Clinical Trial Time Point ID
    {{0x0012, 0x0051}, Vr::kST, kRemove, kRemove},  // Clinical Trial Time Point Description
    {{0x0012, 0x0055}, Vr::kLO, kRemove, kRemove},  // Issuer of Clinical Trial Time Point ID
    {{0x0012, 0x0060}, Vr::kLO, kRemove, kRemove},  // Clinical Trial Coordinating Center Name
    {{0x0012, 0x0071}, Vr::kLO, kRemove, kRemove},  // Clinical Trial Series ID
    {{0x0012, 0x0072}, Vr::kLO, kRemove, kRemove},  // Clinical Trial Series Description
    {{0x0012, 0x0073}, Vr::kLO, kRemove, kRemove},  // Issuer of Clinical Trial Series ID
    {{0x0012, 0x0081}, Vr::kLO, kDummy, kDummy},  // Clinical Trial Protocol Ethics Committee Name
    {{0x0012, 0x0082}, Vr::kLO, kRemove, kRemove},  // Clinical Trial Protocol Ethics Committee Approval Number
    {{0x0012, 0x0083}, Vr::kSQ, kRemove, kRemove},  // Consent for Clinical Trial Use Sequence
    {{0x0012, 0x0086}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Ethics Committee Approval Effectiveness Start Date
    {{0x0012, 0x0087}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Ethics Committee Approval Effectiveness End Date
    {{0x0014, 0x0102}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Secondary Review Date
    {{0x0014, 0x0103}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Secondary Review Time
    {{0x0014, 0x0104}, Vr::kPN, kStay, kRemove},  // Secondary Reviewer Name
    {{0x0014, 0x1020}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Expiry Date
    {{0x0014, 0x2006}, Vr::kPN, kStay, kRemove},  // Evaluator Name
    {{0x0014, 0x3076}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Date of Gain Calibration
    {{0x0014, 0x3077}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Time of Gain Calibration
    {{0x0014, 0x4076}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Procedure Creation Date
    {{0x0014, 0x4078}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Procedure Expiration Date
    {{0x0014, 0x407A}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Procedure Last Modified Date
    {{0x0014, 0x407C}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Calibration Time
    {{0x0014, 0x407E}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Calibration Date
    {{0x0016, 0x002B}, Vr::kOB, kRemove, kRemove},  // Maker Note
    {{0x0016, 0x004B}, Vr::kOB, kRemove, kRemove},  // Device Setting Description
    {{0x0016, 0x004D}, Vr::kUT, kRemove, kRemove},  // Camera Owner Name
    {{0x0016, 0x0051}, Vr::kUT, kRemove, kRemove},  // Lens Serial Number
    {{0x0016, 0x0070}, Vr::kOB, kRemove, kRemove},  // GPS Version ID
    {{0x0016, 0x0071}, Vr::kCS, kRemove, kRemove},  // GPS Latitude Ref
    {{0x0016, 0x0072}, Vr::kDS, kRemove, kRemove},  // GPS Latitude
    {{0x0016, 0x0073}, Vr::kCS, kRemove, kRemove},  // GPS Longitude Ref
    {{0x0016, 0x0074}, Vr::kDS, kRemove, kRemove},  // GPS Longitude
    {{0x0016, 0x0075}, Vr::kUS, kRemove, kRemove},  // GPS Altitude Ref
    {{0x0016, 0x0076}, Vr::kDS, kRemove, kRemove},  // GPS Altitude
    {{0x0016, 0x0077}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // GPS Time Stamp
    {{0x0016, 0x0078}, Vr::kUT, kRemove, kRemove},  // GPS Satellites
    {{0x0016, 0x0079}, Vr::kCS, kRemove, kRemove},  // GPS Status
    {{0x0016, 0x007A}, Vr::kCS, kRemove, kRemove},  // GPS Measure Mode
    {{0x0016, 0x007B}, Vr::kDS, kRemove, kRemove},  // GPS DOP
    {{0x0016, 0x007C}, Vr::kCS, kRemove, kRemove},  // GPS Speed Ref
    {{0x0016, 0x007D}, Vr::kDS, kRemove, kRemove},  // GPS Speed
    {{0x0016, 0x007E}, Vr::kCS, kRemove, kRemove},  // GPS Track Ref
    {{0x0016, 0x007F}, Vr::kDS, kRemove, kRemove},  // GPS Track
    {{0x0016, 0x0080}, Vr::kCS, kRemove, kRemove},  // GPS Img Direction Ref
    {{0x0016, 0x0081}, Vr::kDS, kRemove, kRemove},  // GPS Img Direction
    {{0x0016, 0x0082}, Vr::kUT, kRemove, kRemove},  // GPS Map Datum
    {{0x0016, 0x0083}, Vr::kCS, kRemove, kRemove},  // GPS Dest Latitude Ref
    {{0x0016, 0x0084}, Vr::kDS, kRemove, kRemove},  // GPS Dest Latitude
    {{0x0016, 0x0085}, Vr::kCS, kRemove, kRemove},  // GPS Dest Longitude Ref
    {{0x0016, 0x0086}, Vr::kDS, kRemove, kRemove},  // GPS Dest Longitude
    {{0x0016, 0x0087}, Vr::kCS, kRemove, kRemove},  // GPS Dest Bearing Ref
    {{0x0016, 0x0088}, Vr::kDS, kRemove, kRemove},  // GPS Dest Bearing
    {{0x0016, 0x0089}, Vr::kCS, kRemove, kRemove},  // GPS Dest Distance Ref
    {{0x0016, 0x008A}, Vr::kDS, kRemove, kRemove},  // GPS Dest Distance
    {{0x0016, 0x008B}, Vr::kOB, kRemove, kRemove},  // GPS Processing Method
    {{0x0016, 0x008C}, Vr::kOB, kRemove, kRemove},  // GPS Area Information
    {{0x0016, 0x008D}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // GPS Date Stamp
    {{0x0016, 0x008E}, Vr::kIS, kRemove, kRemove},  // GPS Differential
    {{0x0018, 0x0010}, Vr::kLO, kBlank, kBlank},  // Contrast/Bolus Agent
    {{0x0018, 0x0027}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Intervention Drug Stop Time
    {{0x0018, 0x0035}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Intervention Drug Start Time
    {{0x0018, 0x1000}, Vr::kLO, kBlankOrDummy, kBlankOrDummy},  // Device Serial Number
    {{0x0018, 0x1002}, Vr::kUI, kReplaceUids, kReplaceUids},  // Device UID
    {{0x0018, 0x1003}, Vr::kLO, kRemove, kRemove},  // Device ID
    {{0x0018, 0x1004}, Vr::kLO, kRemove, kRemove},  // Plate ID
    {{0x0018, 0x1005}, Vr::kLO, kRemove, kRemove},  // Generator ID
    {{0x0018, 0x1007}, Vr::kLO, kRemove, kRemove},  // Cassette ID
    {{0x0018, 0x1008}, Vr::kLO, kRemove, kRemove},  // Gantry ID
    {{0x0018, 0x1009}, Vr::kUT, kRemove, kRemove},  // Unique Device Identifier
    {{0x0018, 0x100A}, Vr::kSQ, kRemove, kRemove},  // UDI Sequence
    {{0x0018, 0x100B}, Vr::kUI, kStay, kStay},  // Manufacturer's Device Class UID
    {{0x0018, 0x1012}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Date of Secondary Capture
    {{0x0018, 0x1014}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Time of Secondary Capture
    {{0x0018, 0x1030}, Vr::kLO, kRemoveOrDummy, kRemoveOrDummy},  // Protocol Name
    {{0x0018, 0x1042}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Contrast/Bolus Start Time
    {{0x0018, 0x1043}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Contrast/Bolus Stop Time
    {{0x0018, 0x1072}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Radiopharmaceutical Start Time
    {{0x0018, 0x1073}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Radiopharmaceutical Stop Time
    {{0x0018, 0x1078}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Radiopharmaceutical Start DateTime
    {{0x0018, 0x1079}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Radiopharmaceutical Stop DateTime
    {{0x0018, 0x11BB}, Vr::kLO, kRemove, kRemove},  // Acquisition Field of View Label
    {{0x0018, 0x1200}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Date of Last Calibration
    {{0x0018, 0x1201}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Time of Last Calibration
    {{0x0018, 0x1202}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // DateTime of Last Calibration
    {{0x0018, 0x1203}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Calibration DateTime
    {{0x0018, 0x1400}, Vr::kLO, kRemoveOrDummy, kRemoveOrDummy},  // Acquisition Device Processing Description
    {{0x0018, 0x2042}, Vr::kUI, kReplaceUids, kReplaceUids},  // Target UID
    {{0x0018, 0x4000}, Vr::kLT, kRemove, kRemove},  // Acquisition Comments
    {{0x0018, 0x700A}, Vr::kSH, kBlankOrDummy, kBlankOrDummy},  // Detector ID
    {{0x0018, 0x700C}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Date of Last Detector Calibration
    {{0x0018, 0x700E}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Time of Last Detector Calibration
    {{0x0018, 0x702A}, Vr::kLO, kRemove, kRemove},  // Detector Manufacturer Name
    {{0x0018, 0x9074}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Frame Acquisition DateTime
    {{0x0018, 0x9151}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Frame Reference DateTime
    {{0x0018, 0x9367}, kUC, kDummy, kDummy},  // X-Ray Source ID
    {{0x0018, 0x9369}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Source Start DateTime
    {{0x0018, 0x936A}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Source End DateTime
    {{0x0018, 0x9371}, kUC, kDummy, kDummy},  // X-Ray Detector ID
    {{0x0018, 0x9373}, Vr::kST, kDummy, kDummy},  // X-Ray Detector Label
    {{0x0018, 0x937B}, Vr::kUT, kRemove, kRemove},  // Multi-energy Acquisition Description
    {{0x0018, 0x937F}, Vr::kUT, kRemove, kRemove},  // Decomposition Description
    {{0x0018, 0x9424}, Vr::kLT, kRemove, kRemove},  // Acquisition Protocol Description
    {{0x0018, 0x9516}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Start Acquisition DateTime
    {{0x0018, 0x9517}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // End Acquisition DateTime
    {{0x0018, 0x9623}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Functional Sync Pulse
    {{0x0018, 0x9701}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Decay Correction DateTime
    {{0x0018, 0x9804}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Exclusion Start DateTime
    {{0x0018, 0x9919}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Instruction Performed DateTime
    {{0x0018, 0x991E}, Vr::kUI, kReplaceUids, kReplaceUids},  // Target Frame of Reference UID
    {{0x0018, 0xA001}, Vr::kSQ, kRemove, kRemove},  // Contributing Equipment Sequence
    {{0x0018, 0xA002}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Contribution DateTime
    {{0x0018, 0xA003}, Vr::kST, kRemove, kRemove},  // Contribution Description
    {{0x0020, 0x000D}, Vr::kUI, kReplaceUids, kReplaceUids},  // Study Instance UID
    {{0x0020, 0x000E}, Vr::kUI, kReplaceUids, kReplaceUids},  // Series Instance UID
    {{0x0020, 0x0010}, Vr::kSH, kBlank, kBlank},  // Study ID
    {{0x0020, 0x0052}, Vr::kUI, kReplaceUids, kReplaceUids},  // Frame of Reference UID
    {{0x0020, 0x0200}, Vr::kUI, kReplaceUids, kReplaceUids},  // Synchronization Frame of Reference UID
    {{0x0020, 0x0242}, Vr::kUI, kReplaceUids, kReplaceUids},  // SOP Instance UID of Concatenation Source
    {{0x0020, 0x3401}, Vr::kCS, kRemove, kRemove},  // Modifying Device ID
    {{0x0020, 0x3403}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Modified Image Date
    {{0x0020, 0x3404}, Vr::kLO, kRemove, kRemove},  // Modifying Device Manufacturer
    {{0x0020, 0x3405}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Modified Image Time
    {{0x0020, 0x3406}, Vr::kLO, kRemove, kRemove},  // Modified Image Description
    {{0x0020, 0x4000}, Vr::kLT, kRemove, kRemove},  // Image Comments
    {{0x0020, 0x9158}, Vr::kLT, kRemove, kRemove},  // Frame Comments
    {{0x0020, 0x9161}, Vr::kUI, kReplaceUids, kReplaceUids},  // Concatenation UID
    {{0x0020, 0x9164}, Vr::kUI, kReplaceUids, kReplaceUids},  // Dimension Organization UID
    {{0x0020, 0x9312}, Vr::kUI, kReplaceUids, kReplaceUids},  // Volume Frame of Reference UID
    {{0x0020, 0x9313}, Vr::kUI, kReplaceUids, kReplaceUids},  // Table Frame of Reference UID
    {{0x0028, 0x0063}, Vr::kSH, kRemove, kRemove},  // Compression Description
    {{0x0028, 0x0304}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Color Palette Instance UID
    {{0x0028, 0x1199}, Vr::kUI, kReplaceUids, kReplaceUids},  // Palette Color Lookup Table UID
    {{0x0028, 0x1214}, Vr::kUI, kReplaceUids, kReplaceUids},  // Large Palette Color Lookup Table UID
    {{0x0028, 0x4000}, Vr::kLT, kRemove, kRemove},  // Image Presentation Comments
    {{0x0032, 0x000A}, Vr::kCS, kRemove, kRemove},  // Study Status ID
    {{0x0032, 0x0012}, Vr::kLO, kRemove, kRemove},  // Study ID Issuer
    {{0x0032, 0x0032}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Study Verified Date
    {{0x0032, 0x0033}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Study Verified Time
    {{0x0032, 0x0034}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Study Read Date
    {{0x0032, 0x0035}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Study Read Time
    {{0x0032, 0x1000}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Study Start Date
    {{0x0032, 0x1001}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Study Start Time
    {{0x0032, 0x1010}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Study Stop Date
    {{0x0032, 0x1011}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Study Stop Time
    {{0x0032, 0x1020}, Vr::kLO, kRemove, kRemove},  // Scheduled Study Location
    {{0x0032, 0x1021}, Vr::kAE, kRemove, kRemove},  // Scheduled Study Location AE Title
    {{0x0032, 0x1030}, Vr::kLO, kRemove, kRemove},  // Reason for Study
    {{0x0032, 0x1031}, Vr::kSQ, kStay, kRemove},  // Requesting Physician Identification Sequence
    {{0x0032, 0x1032}, Vr::kPN, kStay, kRemove},  // Requesting Physician
    {{0x0032, 0x1033}, Vr::kLO, kStay, kRemove},  // Requesting Service
    {{0x0032, 0x1034}, Vr::kSQ, kRemove, kRemove},  // Requesting Service Code Sequence
    {{0x0032, 0x1040}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Study Arrival Date
    {{0x0032, 0x1041}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Study Arrival Time
    {{0x0032, 0x1050}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Study Completion Date
    {{0x0032, 0x1051}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Study Completion Time
    {{0x0032, 0x1060}, Vr::kLO, kRemoveOrBlank, kRemoveOrBlank},  // Requested Procedure Description
    {{0x0032, 0x1066}, Vr::kUT, kRemove, kRemove},  // Reason for Visit
    {{0x0032, 0x1067}, Vr::kSQ, kRemove, kRemove},  // Reason for Visit Code Sequence
    {{0x0032, 0x1070}, Vr::kLO, kRemove, kRemove},  // Requested Contrast Agent
    {{0x0032, 0x4000}, Vr::kLT, kRemove, kRemove},  // Study Comments
    {{0x0034, 0x0001}, Vr::kSQ, kRemove, kRemove},  // Flow Identifier Sequence
    {{0x0034, 0x0002}, Vr::kOB, kRemove, kRemove},  // Flow Identifier
    {{0x0034, 0x0003}, Vr::kUI, kStay, kStay},  // Flow Transfer Syntax UID
    {{0x0034, 0x0005}, Vr::kOB, kRemove, kRemove},  // Source Identifier
    {{0x0034, 0x0007}, Vr::kOB, kRemove, kRemove},  // Frame Origin Timestamp
    {{0x0038, 0x0004}, Vr::kSQ, kRemove, kRemove},  // Referenced Patient Alias Sequence
    {{0x0038, 0x0008}, Vr::kCS, kRemove, kRemove},  // Visit Status ID
    {{0x0038, 0x0010}, Vr::kLO, kRemove, kRemove},  // Admission ID
    {{0x0038, 0x0011}, Vr::kLO, kRemove, kRemove},  // Issuer of Admission ID
    {{0x0038, 0x0014}, Vr::kSQ, kRemove, kRemove},  // Issuer of Admission ID Sequence
    {{0x0038, 0x0016}, Vr::kLO, kRemove, kRemove},  // Route of Admissions
    {{0x0038, 0x001A}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Admission Date
    {{0x0038, 0x001B}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Admission Time
    {{0x0038, 0x001C}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Discharge Date
    {{0x0038, 0x001D}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Discharge Time
    {{0x0038, 0x001E}, Vr::kLO, kRemove, kRemove},  // Scheduled Patient Institution Residence
    {{0x0038, 0x0020}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Admitting Date
    {{0x0038, 0x0021}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Admitting Time
    {{0x0038, 0x0030}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Discharge Date
    {{0x0038, 0x0032}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Discharge Time
    {{0x0038, 0x0040}, Vr::kLO, kRemove, kRemove},  // Discharge Diagnosis Description
    {{0x0038, 0x0050}, Vr::kLO, kRemove, kRemove},  // Special Needs
    {{0x0038, 0x0060}, Vr::kLO, kRemove, kRemove},  // Service Episode ID
    {{0x0038, 0x0061}, Vr::kLO, kRemove, kRemove},  // Issuer of Service Episode ID
    {{0x0038, 0x0062}, Vr::kLO, kRemove, kRemove},  // Service Episode Description
    {{0x0038, 0x0064}, Vr::kSQ, kRemove, kRemove},  // Issuer of Service Episode ID Sequence
    {{0x0038, 0x0100}, Vr::kSQ, kRemove, kRemove},  // Pertinent Documents Sequence
    {{0x0038, 0x0101}, Vr::kSQ, kRemove, kRemove},  // Pertinent Resources Sequence
    {{0x0038, 0x0300}, Vr::kLO, kRemove, kRemove},  // Current Patient Location
    {{0x0038, 0x0400}, Vr::kLO, kRemove, kRemove},  // Patient's Institution Residence
    {{0x0038, 0x0500}, Vr::kLO, kRemove, kRemove},  // Patient State
    {{0x0038, 0x0502}, Vr::kSQ, kRemove, kRemove},  // Patient Clinical Trial Participation Sequence
    {{0x0038, 0x4000}, Vr::kLT, kRemove, kRemove},  // Visit Comments
    {{0x003A, 0x020C}, Vr::kLO, kRemove, kRemove},  // Channel Derivation Description
    {{0x003A, 0x0310}, Vr::kUI, kReplaceUids, kReplaceUids},  // Multiplex Group UID
    {{0x003A, 0x0314}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Impedance Measurement DateTime
    {{0x003A, 0x0329}, Vr::kLO, kRemove, kRemove},  // Waveform Filter Description
    {{0x003A, 0x032B}, Vr::kLO, kRemove, kRemove},  // Filter Lookup Table Description
    {{0x0040, 0x0001}, Vr::kAE, kRemove, kRemove},  // Scheduled Station AE Title
    {{0x0040, 0x0002}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Procedure Step Start Date
    {{0x0040, 0x0003}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Procedure Step Start Time
    {{0x0040, 0x0004}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Procedure Step End Date
    {{0x0040, 0x0005}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Procedure Step End Time
    {{0x0040, 0x0006}, Vr::kPN, kStay, kRemove},  // Scheduled Performing Physician's Name
    {{0x0040, 0x0007}, Vr::kLO, kRemove, kRemove},  // Scheduled Procedure Step Description
    {{0x0040, 0x0009}, Vr::kSH, kRemove, kRemove},  // Scheduled Procedure Step ID
    {{0x0040, 0x000B}, Vr::kSQ, kStay, kRemove},  // Scheduled Performing Physician Identification Sequence
    {{0x0040, 0x0010}, Vr::kSH, kRemove, kRemove},  // Scheduled Station Name
    {{0x0040, 0x0011}, Vr::kSH, kRemove, kRemove},  // Scheduled Procedure Step Location
    {{0x0040, 0x0012}, Vr::kLO, kRemove, kRemove},  // Pre-Medication
    {{0x0040, 0x0241}, Vr::kAE, kRemove, kRemove},  // Performed Station AE Title
    {{0x0040, 0x0242}, Vr::kSH, kRemove, kRemove},  // Performed Station Name
    {{0x0040, 0x0243}, Vr::kSH, kRemove, kRemove},  // Performed Location
    {{0x0040, 0x0244}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Performed Procedure Step Start Date
    {{0x0040, 0x0245}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Performed Procedure Step Start Time
    {{0x0040, 0x0250}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Performed Procedure Step End Date
    {{0x0040, 0x0251}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Performed Procedure Step End Time
    {{0x0040, 0x0253}, Vr::kSH, kRemove, kRemove},  // Performed Procedure Step ID
    {{0x0040, 0x0254}, Vr::kLO, kRemove, kRemove},  // Performed Procedure Step Description
    {{0x0040, 0x0275}, Vr::kSQ, kRemove, kRemove},  // Request Attributes Sequence
    {{0x0040, 0x0280}, Vr::kST, kRemove, kRemove},  // Comments on the Performed Procedure Step
    {{0x0040, 0x0310}, Vr::kST, kRemove, kRemove},  // Comments on Radiation Dose
    {{0x0040, 0x0400}, Vr::kLT, kRemove, kRemove},  // Comments on the Scheduled Procedure Step
    {{0x0040, 0x050A}, Vr::kLO, kRemove, kRemove},  // Specimen Accession Number
    {{0x0040, 0x0512}, Vr::kLO, kDummy, kDummy},  // Container Identifier
    {{0x0040, 0x0513}, Vr::kSQ, kBlank, kBlank},  // Issuer of the Container Identifier Sequence
    {{0x0040, 0x051A}, Vr::kLO, kRemove, kRemove},  // Container Description
    {{0x0040, 0x0551}, Vr::kLO, kDummy, kDummy},  // Specimen Identifier
    {{0x0040, 0x0554}, Vr::kUI, kReplaceUids, kReplaceUids},  // Specimen UID
    {{0x0040, 0x0555}, Vr::kSQ, kBlank, kBlank},  // Acquisition Context Sequence
    {{0x0040, 0x0562}, Vr::kSQ, kBlank, kBlank},  // Issuer of the Specimen Identifier Sequence
    {{0x0040, 0x0600}, Vr::kLO, kRemove, kRemove},  // Specimen Short Description
    {{0x0040, 0x0602}, Vr::kUT, kRemove, kRemove},  // Specimen Detailed Description
    {{0x0040, 0x0610}, Vr::kSQ, kBlank, kBlank},  // Specimen Preparation Sequence
    {{0x0040, 0x06FA}, Vr::kLO, kRemove, kRemove},  // Slide Identifier
    {{0x0040, 0x1001}, Vr::kSH, kRemoveOrBlank, kRemoveOrBlank},  // Requested Procedure ID
    {{0x0040, 0x1002}, Vr::kLO, kRemove, kRemove},  // Reason for the Requested Procedure
    {{0x0040, 0x1004}, Vr::kLO, kRemove, kRemove},  // Patient Transport Arrangements
    {{0x0040, 0x1005}, Vr::kLO, kRemove, kRemove},  // Requested Procedure Location
    {{0x0040, 0x1008}, Vr::kLO, kRemove, kRemove},  // Confidentiality Code
    {{0x0040, 0x100A}, Vr::kSQ, kRemove, kRemove},  // Reason for Requested Procedure Code Sequence
    {{0x0040, 0x1010}, Vr::kPN, kStay, kRemove},  // Names of Intended Recipients of Results
    {{0x0040, 0x1011}, Vr::kSQ, kStay, kRemove},  // Intended Recipients of Results Identification Sequence
    {{0x0040, 0x1101}, Vr::kSQ, kStay, kRemove},  // Person Identification Code Sequence
    {{0x0040, 0x1102}, Vr::kST, kStay, kRemove},  // Person's Address
    {{0x0040, 0x1103}, Vr::kLO, kStay, kRemove},  // Person's Telephone Numbers
    {{0x0040, 0x1104}, Vr::kLT, kStay, kRemove},  // Person's Telecom Information
    {{0x0040, 0x1400}, Vr::kLT, kRemove, kRemove},  // Requested Procedure Comments
    {{0x0040, 0x2001}, Vr::kLO, kRemove, kRemove},  // Reason for the Imaging Service Request
    {{0x0040, 0x2004}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Issue Date of Imaging Service Request
    {{0x0040, 0x2005}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Issue Time of Imaging Service Request
    {{0x0040, 0x2008}, Vr::kPN, kStay, kRemove},  // Order Entered By
    {{0x0040, 0x2009}, Vr::kSH, kStay, kRemove},  // Order Enterer's Location
    {{0x0040, 0x2010}, Vr::kSH, kStay, kRemove},  // Order Callback Phone Number
    {{0x0040, 0x2011}, Vr::kLT, kStay, kRemove},  // Order Callback Telecom Information
    {{0x0040, 0x2016}, Vr::kLO, kBlank, kBlank},  // Placer Order Number / Imaging Service Request
    {{0x0040, 0x2017}, Vr::kLO, kBlank, kBlank},  // Filler Order Number / Imaging Service Request
    {{0x0040, 0x2400}, Vr::kLT, kRemove, kRemove},  // Imaging Service Request Comments
    {{0x0040, 0x3001}, Vr::kLO, kRemove, kRemove},  // Confidentiality Constraint on Patient Data Description
    {{0x0040, 0x4005}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Procedure Step Start DateTime
    {{0x0040, 0x4008}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Procedure Step Expiration DateTime
    {{0x0040, 0x4009}, Vr::kSQ, kStay, kRemove},  // Human Performer Code Sequence
    {{0x0040, 0x4010}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Scheduled Procedure Step Modification DateTime
    {{0x0040, 0x4011}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Expected Completion DateTime
    {{0x0040, 0x4023}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced General Purpose Scheduled Procedure Step Transaction UID
    {{0x0040, 0x4025}, Vr::kSQ, kRemove, kRemove},  // Scheduled Station Name Code Sequence
    {{0x0040, 0x4027}, Vr::kSQ, kRemove, kRemove},  // Scheduled Station Geographic Location Code Sequence
    {{0x0040, 0x4028}, Vr::kSQ, kRemove, kRemove},  // Performed Station Name Code Sequence
    {{0x0040, 0x4030}, Vr::kSQ, kRemove, kRemove},  // Performed Station Geographic Location Code Sequence
    {{0x0040, 0x4034}, Vr::kSQ, kStay, kRemove},  // Scheduled Human Performers Sequence
    {{0x0040, 0x4035}, Vr::kSQ, kStay, kRemove},  // Actual Human Performers Sequence
    {{0x0040, 0x4036}, Vr::kLO, kStay, kRemove},  // Human Performer's Organization
    {{0x0040, 0x4037}, Vr::kPN, kStay, kRemove},  // Human Performer's Name
    {{0x0040, 0x4050}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Performed Procedure Step Start DateTime
    {{0x0040, 0x4051}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Performed Procedure Step End DateTime
    {{0x0040, 0x4052}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Procedure Step Cancellation DateTime
    {{0x0040, 0xA021}, Vr::kUI, kReplaceUids, kReplaceUids},  // Findings Group UID (Trial)
    {{0x0040, 0xA022}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Findings Group UID (Trial)
    {{0x0040, 0xA023}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Findings Group Recording Date (Trial)
    {{0x0040, 0xA024}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Findings Group Recording Time (Trial)
    {{0x0040, 0xA027}, Vr::kLO, kStay, kDummy},  // Verifying Organization
    {{0x0040, 0xA030}, Vr::kDT, kDummy, kDummy},  // Verification DateTime
    {{0x0040, 0xA032}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Observation DateTime
    {{0x0040, 0xA033}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Observation Start DateTime
    {{0x0040, 0xA067}, Vr::kPN, kStay, kRemove},  // Document Author (Trial)
    {{0x0040, 0xA068}, Vr::kSQ, kStay, kRemove},  // Document Author Identifier Code Sequence (Trial)
    {{0x0040, 0xA075}, Vr::kPN, kStay, kDummy},  // Verifying Observer Name
    {{0x0040, 0xA078}, Vr::kSQ, kStay, kRemove},  // Author Observer Sequence
    {{0x0040, 0xA07A}, Vr::kSQ, kStay, kRemove},  // Participant Sequence
    {{0x0040, 0xA07C}, Vr::kSQ, kRemove, kRemove},  // Custodial Organization Sequence
    {{0x0040, 0xA082}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Participation DateTime
    {{0x0040, 0xA088}, Vr::kSQ, kStay, kBlank},  // Verifying Observer Identification Code Sequence
    {{0x0040, 0xA110}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Date of Document or Verbal Transaction (Trial)
    {{0x0040, 0xA112}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Time of Document Creation or Verbal Transaction (Trial)
    {{0x0040, 0xA120}, Vr::kDT, kDummy, kDummy},  // DateTime
    {{0x0040, 0xA121}, Vr::kDA, kDummy, kDummy},  // Date
    {{0x0040, 0xA122}, Vr::kTM, kDummy, kDummy},  // Time
    {{0x0040, 0xA123}, Vr::kPN, kDummy, kDummy},  // Person Name
    {{0x0040, 0xA124}, Vr::kUI, kReplaceUids, kReplaceUids},  // UID
    {{0x0040, 0xA13A}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Referenced DateTime
    {{0x0040, 0xA160}, Vr::kUT, kDummy, kDummy},  // Text Value
    {{0x0040, 0xA171}, Vr::kUI, kReplaceUids, kReplaceUids},  // Observation UID
    {{0x0040, 0xA172}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Observation UID (Trial)
    {{0x0040, 0xA192}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Observation Date (Trial)
    {{0x0040, 0xA193}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Observation Time (Trial)
    {{0x0040, 0xA307}, Vr::kPN, kStay, kRemove},  // Current Observer (Trial)
    {{0x0040, 0xA313}, Vr::kSQ, kRemove, kRemove},  // Referenced Accession Sequence (Trial)
    {{0x0040, 0xA352}, Vr::kPN, kRemove, kRemove},  // Verbal Source (Trial)
    {{0x0040, 0xA353}, Vr::kST, kRemove, kRemove},  // Address (Trial)
    {{0x0040, 0xA354}, Vr::kLO, kRemove, kRemove},  // Telephone Number (Trial)
    {{0x0040, 0xA358}, Vr::kSQ, kRemove, kRemove},  // Verbal Source Identifier Code Sequence (Trial)
    {{0x0040, 0xA390}, Vr::kSQ, kRemove, kRemove},  // HL7 Structured Document Reference Sequence
    {{0x0040, 0xA402}, Vr::kUI, kReplaceUids, kReplaceUids},  // Observation Subject UID (Trial)
    {{0x0040, 0xA730}, Vr::kSQ, kRemove, kRemove},  // Content Sequence
    {{0x0040, 0xDB06}, Vr::kDT, kStay, kStay},  // Template Version
    {{0x0040, 0xDB07}, Vr::kDT, kStay, kStay},  // Template Local Version
    {{0x0040, 0xDB0C}, Vr::kUI, kReplaceUids, kReplaceUids},  // Template Extension Organization UID
    {{0x0040, 0xDB0D}, Vr::kUI, kReplaceUids, kReplaceUids},  // Template Extension Creator UID
    {{0x0040, 0xE001}, Vr::kST, kRemove, kRemove},  // HL7 Instance Identifier
    {{0x0040, 0xE004}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // HL7 Document Effective Time
    {{0x0040, 0xE010}, kUR, kRemove, kRemove},  // Retrieve URI
    {{0x0040, 0xE011}, Vr::kUI, kReplaceUids, kReplaceUids},  // Retrieve Location UID
    {{0x0040, 0xE030}, Vr::kUI, kReplaceUids, kReplaceUids},  // Repository Unique ID
    {{0x0040, 0xE031}, Vr::kUI, kReplaceUids, kReplaceUids},  // Home Community ID
    {{0x0044, 0x0004}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Approval Status DateTime
    {{0x0044, 0x000B}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Product Expiration DateTime
    {{0x0044, 0x0010}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Substance Administration DateTime
    {{0x0044, 0x0102}, Vr::kUI, kReplaceUids, kReplaceUids},  // Assertion UID
    {{0x0044, 0x0104}, Vr::kDT, kDummy, kDummy},  // Assertion DateTime
    {{0x0044, 0x0105}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Assertion Expiration DateTime
    {{0x0044, 0x0108}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Assertion UID
    {{0x0050, 0x001B}, Vr::kLO, kRemove, kRemove},  // Container Component ID
    {{0x0050, 0x0020}, Vr::kLO, kRemove, kRemove},  // Device Description
    {{0x0050, 0x0021}, Vr::kST, kRemove, kRemove},  // Long Device Description
    {{0x0062, 0x0021}, Vr::kUI, kReplaceUids, kReplaceUids},  // Tracking UID
    {{0x0064, 0x0003}, Vr::kUI, kReplaceUids, kReplaceUids},  // Source Frame of Reference UID
    {{0x0068, 0x6226}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Effective DateTime
    {{0x0068, 0x6270}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Information Issue DateTime
    {{0x0068, 0x7004}, Vr::kUI, kReplaceUids, kReplaceUids},  // Model Group UID
    {{0x006A, 0x0003}, Vr::kUI, kReplaceUids, kReplaceUids},  // Annotation Group UID
    {{0x0070, 0x0006}, Vr::kST, kDummy, kDummy},  // Unformatted Text Value
    {{0x0070, 0x0082}, Vr::kDA, kDummy, kDummy},  // Presentation Creation Date
    {{0x0070, 0x0083}, Vr::kTM, kDummy, kDummy},  // Presentation Creation Time
    {{0x0070, 0x0084}, Vr::kPN, kStay, kBlank},  // Content Creator's Name
    {{0x0070, 0x0086}, Vr::kSQ, kStay, kRemove},  // Content Creator's Identification Code Sequence
    {{0x0070, 0x031A}, Vr::kUI, kReplaceUids, kReplaceUids},  // Fiducial UID
    {{0x0070, 0x031B}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Fiducial UID
    {{0x0070, 0x1101}, Vr::kUI, kReplaceUids, kReplaceUids},  // Presentation Display Collection UID
    {{0x0070, 0x1102}, Vr::kUI, kReplaceUids, kReplaceUids},  // Presentation Sequence Collection UID
    {{0x0070, 0x1209}, Vr::kUI, kReplaceUids, kReplaceUids},  // Volumetric Presentation Input Set UID
    {{0x0070, 0x1904}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Content Item
    {{0x0072, 0x000A}, Vr::kDT, kDummy, kDummy},  // Hanging Protocol Creation DateTime
    {{0x0072, 0x005E}, Vr::kAE, kRemove, kRemove},  // Selector AE Value
    {{0x0072, 0x005F}, Vr::kAS, kRemove, kRemove},  // Selector AS Value
    {{0x0072, 0x0061}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Selector DA Value
    {{0x0072, 0x0063}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Selector DT Value
    {{0x0072, 0x0065}, Vr::kOB, kRemove, kRemove},  // Selector OB Value
    {{0x0072, 0x0066}, Vr::kLO, kRemove, kRemove},  // Selector LO Value
    {{0x0072, 0x0068}, Vr::kLT, kRemove, kRemove},  // Selector LT Value
    {{0x0072, 0x006A}, Vr::kPN, kRemove, kRemove},  // Selector PN Value
    {{0x0072, 0x006B}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Selector TM Value
    {{0x0072, 0x006C}, Vr::kSH, kRemove, kRemove},  // Selector SH Value
    {{0x0072, 0x006D}, Vr::kUN, kRemove, kRemove},  // Selector UN Value
    {{0x0072, 0x006E}, Vr::kST, kRemove, kRemove},  // Selector ST Value
    {{0x0072, 0x0070}, Vr::kUT, kRemove, kRemove},  // Selector UT Value
    {{0x0072, 0x0071}, kUR, kRemove, kRemove},  // Selector UR Value
    {{0x0072, 0x007F}, Vr::kUI, kReplaceUids, kReplaceUids},  // Selector UI Value
    {{0x0088, 0x0130}, Vr::kSH, kRemove, kRemove},  // Storage Media File-set ID
    {{0x0088, 0x0140}, Vr::kUI, kReplaceUids, kReplaceUids},  // Storage Media File-set UID
    {{0x0088, 0x0200}, Vr::kSQ, kRemove, kRemove},  // Icon Image Sequence
    {{0x0088, 0x0904}, Vr::kLO, kRemove, kRemove},  // Topic Title
    {{0x0088, 0x0906}, Vr::kST, kRemove, kRemove},  // Topic Subject
    {{0x0088, 0x0910}, Vr::kLO, kStay, kRemove},  // Topic Author
    {{0x0088, 0x0912}, Vr::kLO, kRemove, kRemove},  // Topic Keywords
    {{0x0100, 0x0420}, Vr::kDT, kDummy, kDummy},  // SOP Authorization DateTime
    {{0x0400, 0x0010}, Vr::kUI, kStay, kStay},  // MAC Calculation Transfer Syntax UID
    {{0x0400, 0x0100}, Vr::kUI, kRemove, kRemove},  // Digital Signature UID
    {{0x0400, 0x0105}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Digital Signature DateTime
    {{0x0400, 0x0115}, Vr::kOB, kRemove, kRemove},  // Certificate of Signer
    {{0x0400, 0x0120}, Vr::kOB, kRemove, kRemove},  // Signature
    {{0x0400, 0x0310}, Vr::kOB, kRemove, kRemove},  // Certified Timestamp
    {{0x0400, 0x0402}, Vr::kSQ, kRemove, kRemove},  // Referenced Digital Signature Sequence
    {{0x0400, 0x0403}, Vr::kSQ, kRemove, kRemove},  // Referenced SOP Instance MAC Sequence
    {{0x0400, 0x0404}, Vr::kOB, kRemove, kRemove},  // MAC
    {{0x0400, 0x0500}, Vr::kSQ, kRemove, kRemove},  // Encrypted Attributes Sequence
    {{0x0400, 0x0510}, Vr::kUI, kStay, kStay},  // Encrypted Content Transfer Syntax UID
    {{0x0400, 0x0550}, Vr::kSQ, kRemove, kRemove},  // Modified Attributes Sequence
    {{0x0400, 0x0551}, Vr::kSQ, kRemove, kRemove},  // Nonconforming Modified Attributes Sequence
    {{0x0400, 0x0552}, Vr::kOB, kRemove, kRemove},  // Nonconforming Data Element Value
    {{0x0400, 0x0561}, Vr::kSQ, kRemove, kRemove},  // Original Attributes Sequence
    {{0x0400, 0x0562}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Attribute Modification DateTime
    {{0x0400, 0x0563}, Vr::kLO, kRemove, kRemove},  // Modifying System
    {{0x0400, 0x0564}, Vr::kLO, kRemove, kRemove},  // Source of Previous Values
    {{0x0400, 0x0600}, Vr::kCS, kRemove, kRemove},  // Instance Origin Status
    {{0x2030, 0x0020}, Vr::kLO, kRemove, kRemove},  // Text String
    {{0x2100, 0x0040}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Creation Date
    {{0x2100, 0x0050}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Creation Time
    {{0x2200, 0x0002}, Vr::kUT, kRemove, kRemove},  // Label Text
    {{0x2200, 0x0005}, Vr::kLT, kRemove, kRemove},  // Barcode Value
    {{0x3006, 0x0002}, Vr::kSH, kDummy, kDummy},  // Structure Set Label
    {{0x3006, 0x0004}, Vr::kLO, kRemove, kRemove},  // Structure Set Name
    {{0x3006, 0x0006}, Vr::kST, kRemove, kRemove},  // Structure Set Description
    {{0x3006, 0x0008}, Vr::kDA, kBlank, kBlank},  // Structure Set Date
    {{0x3006, 0x0009}, Vr::kTM, kBlank, kBlank},  // Structure Set Time
    {{0x3006, 0x0024}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Frame of Reference UID
    {{0x3006, 0x0026}, Vr::kLO, kBlank, kBlank},  // ROI Name
    {{0x3006, 0x0028}, Vr::kST, kRemove, kRemove},  // ROI Description
    {{0x3006, 0x0038}, Vr::kLO, kRemove, kRemove},  // ROI Generation Description
    {{0x3006, 0x0085}, Vr::kSH, kRemove, kRemove},  // ROI Observation Label
    {{0x3006, 0x0088}, Vr::kST, kRemove, kRemove},  // ROI Observation Description
    {{0x3006, 0x00A6}, Vr::kPN, kStay, kBlank},  // ROI Interpreter
    {{0x3006, 0x00C2}, Vr::kUI, kReplaceUids, kReplaceUids},  // Related Frame of Reference UID
    {{0x3008, 0x0024}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Treatment Control Point Date
    {{0x3008, 0x0025}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Treatment Control Point Time
    {{0x3008, 0x0054}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // First Treatment Date
    {{0x3008, 0x0056}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Most Recent Treatment Date
    {{0x3008, 0x0105}, Vr::kLO, kRemove, kRemove},  // Source Serial Number
    {{0x3008, 0x0162}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Safe Position Exit Date
    {{0x3008, 0x0164}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Safe Position Exit Time
    {{0x3008, 0x0166}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Safe Position Return Date
    {{0x3008, 0x0168}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Safe Position Return Time
    {{0x3008, 0x0250}, Vr::kDA, kBlank, kBlank},  // Treatment Date
    {{0x3008, 0x0251}, Vr::kTM, kBlank, kBlank},  // Treatment Time
    {{0x300A, 0x0002}, Vr::kSH, kDummy, kDummy},  // RT Plan Label
    {{0x300A, 0x0003}, Vr::kLO, kRemove, kRemove},  // RT Plan Name
    {{0x300A, 0x0004}, Vr::kST, kRemove, kRemove},  // RT Plan Description
    {{0x300A, 0x0006}, Vr::kDA, kBlank, kBlank},  // RT Plan Date
    {{0x300A, 0x0007}, Vr::kTM, kBlank, kBlank},  // RT Plan Time
    {{0x300A, 0x000E}, Vr::kST, kRemove, kRemove},  // Prescription Description
    {{0x300A, 0x0013}, Vr::kUI, kReplaceUids, kReplaceUids},  // Dose Reference UID
    {{0x300A, 0x0016}, Vr::kLO, kRemove, kRemove},  // Dose Reference Description
    {{0x300A, 0x0072}, Vr::kLO, kRemove, kRemove},  // Fraction Group Description
    {{0x300A, 0x0083}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Dose Reference UID
    {{0x300A, 0x00B2}, Vr::kSH, kBlank, kBlank},  // Treatment Machine Name
    {{0x300A, 0x00C3}, Vr::kST, kRemove, kRemove},  // Beam Description
    {{0x300A, 0x00DD}, Vr::kST, kRemove, kRemove},  // Bolus Description
    {{0x300A, 0x01A6}, Vr::kST, kRemove, kRemove},  // Shielding Device Description
    {{0x300A, 0x01B2}, Vr::kST, kRemove, kRemove},  // Setup Technique Description
    {{0x300A, 0x0216}, Vr::kLO, kRemove, kRemove},  // Source Manufacturer
    {{0x300A, 0x022C}, Vr::kDA, kDummy, kDummy},  // Source Strength Reference Date
    {{0x300A, 0x022E}, Vr::kTM, kDummy, kDummy},  // Source Strength Reference Time
    {{0x300A, 0x0608}, Vr::kLO, kRemove, kRemove},  // Treatment Position Group Label
    {{0x300A, 0x0609}, Vr::kUI, kReplaceUids, kReplaceUids},  // Treatment Position Group UID
    {{0x300A, 0x0619}, Vr::kLO, kRemove, kRemove},  // Radiation Dose Identification Label
    {{0x300A, 0x0623}, Vr::kLO, kRemove, kRemove},  // Radiation Dose In-Vivo Measurement Label
    {{0x300A, 0x062A}, Vr::kLO, kRemove, kRemove},  // RT Tolerance Set Label
    {{0x300A, 0x0650}, Vr::kUI, kReplaceUids, kReplaceUids},  // Patient Setup UID
    {{0x300A, 0x0675}, Vr::kUI, kReplaceUids, kReplaceUids},  // Equipment Frame of Reference UID
    {{0x300A, 0x0676}, Vr::kST, kRemove, kRemove},  // Equipment Frame of Reference Description
    {{0x300A, 0x067C}, Vr::kSH, kRemove, kRemove},  // Radiation GenerationMode Label
    {{0x300A, 0x067D}, Vr::kST, kRemove, kRemove},  // Radiation GenerationMode Description
    {{0x300A, 0x0700}, Vr::kUI, kReplaceUids, kReplaceUids},  // Treatment Session UID
    {{0x300A, 0x0734}, Vr::kST, kRemove, kRemove},  // Treatment Tolerance Violation Description
    {{0x300A, 0x0736}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Treatment Tolerance Violation DateTime
    {{0x300A, 0x073A}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Recorded RT Control Point DateTime
    {{0x300A, 0x0741}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Interlock DateTime
    {{0x300A, 0x0742}, Vr::kST, kRemove, kRemove},  // Interlock Description
    {{0x300A, 0x0760}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Override DateTime
    {{0x300A, 0x0783}, Vr::kST, kRemove, kRemove},  // Interlock Origin Description
    {{0x300A, 0x0785}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Treatment Position Group UID
    {{0x300A, 0x078E}, Vr::kLT, kRemove, kRemove},  // Patient Treatment Preparation Procedure Parameter Description
    {{0x300A, 0x0792}, Vr::kLT, kRemove, kRemove},  // Patient Treatment Preparation Method Description
    {{0x300A, 0x0794}, Vr::kLT, kRemove, kRemove},  // Patient Setup Photo Description
    {{0x300C, 0x0113}, Vr::kLO, kRemove, kRemove},  // Reason for Omission Description
    {{0x300C, 0x0127}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Beam Hold Transition DateTime
    {{0x300E, 0x0004}, Vr::kDA, kBlank, kBlank},  // Review Date
    {{0x300E, 0x0005}, Vr::kTM, kBlank, kBlank},  // Review Time
    {{0x300E, 0x0008}, Vr::kPN, kStay, kBlank},  // Reviewer Name
    {{0x3010, 0x0006}, Vr::kUI, kReplaceUids, kReplaceUids},  // Conceptual Volume UID
    {{0x3010, 0x000B}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Conceptual Volume UID
    {{0x3010, 0x000F}, Vr::kST, kRemove, kRemove},  // Conceptual Volume Combination Description
    {{0x3010, 0x0013}, Vr::kUI, kReplaceUids, kReplaceUids},  // Constituent Conceptual Volume UID
    {{0x3010, 0x0015}, Vr::kUI, kReplaceUids, kReplaceUids},  // Source Conceptual Volume UID
    {{0x3010, 0x0017}, Vr::kST, kRemove, kRemove},  // Conceptual Volume Description
    {{0x3010, 0x001B}, kUC, kRemove, kRemove},  // Device Alternate Identifier
    {{0x3010, 0x001F}, Vr::kUI, kReplaceUids, kReplaceUids},  // Segmentation Template UID
    {{0x3010, 0x002D}, Vr::kLO, kDummy, kDummy},  // Device Label
    {{0x3010, 0x0031}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Fiducials UID
    {{0x3010, 0x0033}, Vr::kSH, kDummy, kDummy},  // User Content Label
    {{0x3010, 0x0034}, Vr::kLO, kRemove, kRemove},  // User Content Long Label
    {{0x3010, 0x0037}, Vr::kST, kRemove, kRemove},  // Entity Description
    {{0x3010, 0x003B}, Vr::kUI, kReplaceUids, kReplaceUids},  // RT Treatment Phase UID
    {{0x3010, 0x0043}, Vr::kST, kRemove, kRemove},  // Manufacturer's Device Identifier
    {{0x3010, 0x004C}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Intended Phase Start Date
    {{0x3010, 0x004D}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Intended Phase End Date
    {{0x3010, 0x0052}, Vr::kUI, kStay, kStay},  // Pertinent SOP Classes in Study
    {{0x3010, 0x0053}, Vr::kUI, kStay, kStay},  // Pertinent SOP Classes in Series
    {{0x3010, 0x005A}, Vr::kUT, kRemove, kRemove},  // RT Physician Intent Narrative
    {{0x3010, 0x005C}, Vr::kST, kRemove, kRemove},  // Reason for Superseding
    {{0x3010, 0x0061}, Vr::kUT, kRemove, kRemove},  // Prior Treatment Dose Description
    {{0x3010, 0x006E}, Vr::kUI, kReplaceUids, kReplaceUids},  // Dosimetric Objective UID
    {{0x3010, 0x006F}, Vr::kUI, kReplaceUids, kReplaceUids},  // Referenced Dosimetric Objective UID
    {{0x3010, 0x0077}, Vr::kLO, kRemove, kRemove},  // Treatment Site
    {{0x3010, 0x007A}, Vr::kUT, kRemove, kRemove},  // Treatment Technique Notes
    {{0x3010, 0x007B}, Vr::kUT, kRemove, kRemove},  // Prescription Notes
    {{0x3010, 0x0081}, Vr::kSQ, kRemove, kRemove},  // Prescription Notes Sequence
    {{0x3010, 0x0085}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Intended Fraction Start Time
    {{0x4000, 0x0010}, Vr::kLT, kRemove, kRemove},  // Arbitrary
    {{0x4000, 0x4000}, Vr::kLT, kRemove, kRemove},  // Text Comments
    {{0x4008, 0x0040}, Vr::kSH, kRemove, kRemove},  // Results ID
    {{0x4008, 0x0042}, Vr::kLO, kRemove, kRemove},  // Results ID Issuer
    {{0x4008, 0x0100}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Interpretation Recorded Date
    {{0x4008, 0x0101}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Interpretation Recorded Time
    {{0x4008, 0x0102}, Vr::kPN, kStay, kRemove},  // Interpretation Recorder
    {{0x4008, 0x0108}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Interpretation Transcription Date
    {{0x4008, 0x0109}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Interpretation Transcription Time
    {{0x4008, 0x010A}, Vr::kPN, kStay, kRemove},  // Interpretation Transcriber
    {{0x4008, 0x010B}, Vr::kST, kRemove, kRemove},  // Interpretation Text
    {{0x4008, 0x010C}, Vr::kPN, kStay, kRemove},  // Interpretation Author
    {{0x4008, 0x0111}, Vr::kSQ, kStay, kRemove},  // Interpretation Approver Sequence
    {{0x4008, 0x0112}, Vr::kDA, kRemoveOrDummy, kRemoveOrDummy},  // Interpretation Approval Date
    {{0x4008, 0x0113}, Vr::kTM, kRemoveOrDummy, kRemoveOrDummy},  // Interpretation Approval Time
    {{0x4008, 0x0114}, Vr::kPN, kStay, kRemove},  // Physician Approving Interpretation
    {{0x4008, 0x0115}, Vr::kLT, kRemove, kRemove},  // Interpretation Diagnosis Description
    {{0x4008, 0x0118}, Vr::kSQ, kRemove, kRemove},  // Results Distribution List Sequence
    {{0x4008, 0x0119}, Vr::kPN, kRemove, kRemove},  // Distribution Name
    {{0x4008, 0x011A}, Vr::kLO, kRemove, kRemove},  // Distribution Address
    {{0x4008, 0x0200}, Vr::kSH, kRemove, kRemove},  // Interpretation ID
    {{0x4008, 0x0202}, Vr::kLO, kRemove, kRemove},  // Interpretation ID Issuer
    {{0x4008, 0x0300}, Vr::kST, kRemove, kRemove},  // Impressions
    {{0x4008, 0x4000}, Vr::kST, kRemove, kRemove},  // Results Comments
    {{0x4010, 0x1025}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Route Segment Start Time
    {{0x4010, 0x1026}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Route Segment End Time
    {{0x4010, 0x102B}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // Alarm Decision Time
    {{0x4010, 0x1041}, Vr::kDT, kRemoveOrDummy, kRemoveOrDummy},  // OOI Owner Creation Time
    {{0x4FFE, 0x0001}, Vr::kSQ, kRemove, kRemove},  // MAC Parameters Sequence
    {{0xFFFA, 0xFFFA}, Vr::kSQ, kRemove, kRemove},  // Digital Signatures Sequence
};
// clang-format on

}  // namespace

std::span<const DeIdentificationRow> GetDeIdentificationTable() { return kTable; }

}  // namespace Vantor
