#include "platform/FileException.h"

#include <gtest/gtest.h>

namespace Vantor::Platform {

using Cause = FileException::Cause;

TEST(FileException, SaysWhichFileAndWhatHappened) {
    const FileException failure(Cause::kSharingViolation, 32, "D:\\DICOMDIR");
    EXPECT_EQ(failure.GetCause(), Cause::kSharingViolation);
    EXPECT_EQ(failure.GetOsError(), 32);
    EXPECT_EQ(failure.GetFileName(), "D:\\DICOMDIR");
    EXPECT_STREQ(failure.what(), "D:\\DICOMDIR: in use by another program");
}

// Where the words do not say what happened, the number must.
TEST(FileException, GenericFailureShowsTheNumber) {
    EXPECT_STREQ(FileException(Cause::kGeneric, 87, "x").what(),
                 "x: file operation failed (system error 87)");
    EXPECT_STREQ(FileException(Cause::kGeneric, 0, "x").what(), "x: file operation failed");
}

TEST(FileException, GetsAnotherName) {
    const FileException failure = FileException(Cause::kDiskFull, 112, "C:\\x").WithFileName("image file");
    EXPECT_EQ(failure.GetCause(), Cause::kDiskFull);
    EXPECT_EQ(failure.GetOsError(), 112);
    EXPECT_STREQ(failure.what(), "image file: disk is full");
}

}  // namespace Vantor::Platform
