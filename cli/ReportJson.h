#pragma once

#include "cli/ReportHeader.h"

namespace VantorWrappers {
class SRContentItem;
}

namespace VantorCli {

class Console;

// Prints a report with all its items as one JSON object on one line; for a file that is none, with a null
// root. The dates in it are as the host shows them, so the host has to show them as JSON has them.
void PrintReportAsJson(const HostString& path, const ReportHeader& header,
                       const VantorWrappers::SRContentItem* root, Console& console);

}  // namespace VantorCli
