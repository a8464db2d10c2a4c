#pragma once

namespace Vantor {

// The longest UID, in characters; fixed UID fields hold one more for the terminator.
inline constexpr int kMaximumUidLength = 64;

namespace Uids {

inline constexpr char kImplicitVRLittleEndian[] = "1.2.840.10008.1.2";
inline constexpr char kExplicitVRLittleEndian[] = "1.2.840.10008.1.2.1";
inline constexpr char kExplicitVRBigEndian[] = "1.2.840.10008.1.2.2";
inline constexpr char kJpegBaseline[] = "1.2.840.10008.1.2.4.50";
inline constexpr char kJpegExtended[] = "1.2.840.10008.1.2.4.51";
inline constexpr char kRleLossless[] = "1.2.840.10008.1.2.5";

inline constexpr char kMediaStorageDirectory[] = "1.2.840.10008.1.3.10";
inline constexpr char kRawDataStorage[] = "1.2.840.10008.5.1.4.1.1.66";

inline constexpr char kBasicTextSR[] = "1.2.840.10008.5.1.4.1.1.88.11";
inline constexpr char kEnhancedSR[] = "1.2.840.10008.5.1.4.1.1.88.22";
inline constexpr char kComprehensiveSR[] = "1.2.840.10008.5.1.4.1.1.88.33";
inline constexpr char kTrialTextSR[] = "1.2.840.10008.5.1.4.1.1.88.1";
inline constexpr char kTrialAudioSR[] = "1.2.840.10008.5.1.4.1.1.88.2";
inline constexpr char kTrialDetailSR[] = "1.2.840.10008.5.1.4.1.1.88.3";

// Names this library as the writer of a file in (0002,0012).
inline constexpr char kImplementationClass[] = "2.16.840.990017.100.98.19";

// Defines the library's private directory records: they name a file that is of no other kind.
inline constexpr char kPrivateRecord[] = "2.16.840.990017.100.98.19.1";

}  // namespace Uids
}  // namespace Vantor
