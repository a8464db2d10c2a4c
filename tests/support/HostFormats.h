#pragma once

#include <string>

#include "host/LongTime.h"
#include "host/ShortDate.h"

namespace VantorTest {

// While it is alive, the host shows dates as 2024-3-15 and times as seconds since midnight, 36901s.
class HostFormats {
  public:
    HostFormats() {
        VantorHost::ShortDate::SetFormatter([](std::chrono::year_month_day date) {
            return std::to_wstring(int(date.year())) + L'-' + std::to_wstring(unsigned(date.month())) + L'-' +
                   std::to_wstring(unsigned(date.day()));
        });
        VantorHost::LongTime::SetFormatter([](auto time) { return std::to_wstring(time.count()) + L's'; });
    }
    ~HostFormats() {
        VantorHost::ShortDate::SetFormatter(nullptr);
        VantorHost::LongTime::SetFormatter(nullptr);
    }
    HostFormats(const HostFormats&) = delete;
    HostFormats& operator=(const HostFormats&) = delete;
};

}  // namespace VantorTest
