// What the host may do its own way.

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

#include "host/AccessGranting.h"
#include "host/DamagedDirectory.h"
#include "host/DateAndTime.h"
#include "host/LongTime.h"
#include "host/PatientName.h"
#include "host/ShortDate.h"
#include "tests/support/TestFolder.h"

namespace VantorHost {

using VantorTest::kIsWindows;

TEST(PatientName, IsShownAsPeopleReadIt) {
    const std::pair<const wchar_t*, const wchar_t*> names[] = {
        {L"Adams^John Robert Quincy^^Rev.^B.A. M.Div.", L"Adams, Rev. John Robert Quincy, B.A. M.Div."},
        {L"Morrison-Jones^Susan^^^Ph.D.", L"Morrison-Jones, Susan, Ph.D."},
        {L"Doe", L"Doe"},
        {L" Doe ^ Jane ^ M ^^ ", L"Doe, Jane M"},
        {L"^Jane", L"Jane"},
        {L"Doe^^^^Jr.", L"Doe, Jr."},
        {L"^^^^Jr.^more", L"Jr."},
        {L"Yamada^Tarou=\x5C71\x7530^\x592A\x90CE", L"Yamada, Tarou"},
        {L"^^=\x5C71\x7530^\x592A\x90CE=Yamada", L"\x5C71\x7530, \x592A\x90CE"},
        {L"==", L""},
        {L"", L""}};
    for (const auto& [dicomName, shown] : names) {
        EXPECT_EQ(PatientName(dicomName).GetDisplayablePatientName(), shown);
        EXPECT_EQ(PatientName(dicomName).GetDicomPatientName(), dicomName);
    }
    PatientName::SetFormatter([](const std::wstring& name) { return name + L"!"; });
    EXPECT_EQ(PatientName(L"A^B").GetDisplayablePatientName(), L"A^B!");
    PatientName::SetFormatter(nullptr);
    EXPECT_EQ(PatientName(L"A^B").GetDisplayablePatientName(), L"A, B");
}

TEST(ShortDate, IsTheHostsOrTheUsers) {
    const std::chrono::year_month_day date(std::chrono::year(1987), std::chrono::June, std::chrono::day(15));
    const std::wstring before = ShortDate::Format(date);
    EXPECT_NE(before.find(L"87"), std::wstring::npos);
    ShortDate::SetFormatter([](std::chrono::year_month_day shown) {
        ShortDate::SetFormatter(nullptr);  // one that replaces itself stays whole until it is done
        return std::to_wstring(static_cast<int>(shown.year()));
    });
    EXPECT_EQ(ShortDate::Format(date), L"1987");
    EXPECT_EQ(ShortDate::Format(date), before);
}

TEST(DateAndTime, IsTheHostsOrTheDateAndTheTime) {
    constexpr std::chrono::seconds kTime(49739);  // 13:48:59
    constexpr std::chrono::year_month_day kDate(std::chrono::year(1) / 1 / 1);
    const std::chrono::local_seconds moment = std::chrono::local_days(kDate) + kTime;
    const std::wstring before = DateAndTime::Format(moment);
    for (const wchar_t* part : {L"48", L"59"}) EXPECT_NE(before.find(part), std::wstring::npos);
    EXPECT_EQ(before, ShortDate::Format(kDate) + L" " + LongTime::Format(kTime));
    LongTime::SetFormatter([](std::chrono::seconds time) { return std::to_wstring(time.count()); });
    EXPECT_EQ(DateAndTime::Format(moment), ShortDate::Format(kDate) + L" 49739");
    DateAndTime::SetFormatter([&](auto shown) { return shown == moment ? L"this" : L"another"; });
    EXPECT_EQ(DateAndTime::Format(moment), L"this");
    DateAndTime::SetFormatter(nullptr);
    LongTime::SetFormatter(nullptr);
    EXPECT_EQ(DateAndTime::Format(moment), before);
}

TEST(AccessGranting, TellsFilesFromFolders) {
    std::wstring granted;
    AccessGranting::SetGranters([&](const std::wstring& path) { granted += L"file " + path; },
                                [&](const std::wstring& path) { granted += L" folder " + path; });
    AccessGranting::SetFileAccess(L"A");
    AccessGranting::SetDirectoryAccess(L"B");
    EXPECT_EQ(granted, L"file A folder B");
    AccessGranting::SetGranters(nullptr, nullptr);
    AccessGranting::SetFileAccess(L"A");
    EXPECT_EQ(granted, L"file A folder B");
}

TEST(DamagedDirectory, EndsTheProcessUnlessTheHostDoesOtherwise) {
    std::wstring message;
    DamagedDirectory::SetHandler([&](const std::wstring& text) { message = text; });
    DamagedDirectory::SetSupportContact(L"the desk");
    DamagedDirectory::Report(L"Found");
    EXPECT_EQ(message, L"Found.  Please contact the desk for help in repairing the damaged directory.");
    DamagedDirectory::SetHandler([](const std::wstring&) { throw std::runtime_error("of the host"); });
    EXPECT_THROW(DamagedDirectory::Report(L"Found"), std::runtime_error);
    DamagedDirectory::SetHandler(nullptr);
    DamagedDirectory::SetSupportContact(L"your system administrator");
    if (kIsWindows) GTEST_SKIP() << "there may be a box, and nobody to close it";
    EXPECT_EXIT(DamagedDirectory::Report(L"Found"), testing::ExitedWithCode(EXIT_SUCCESS),
                "DICOM directory: Found.  Please contact your system administrator for help");
}

}  // namespace VantorHost
