// Shows the content of a structured report: read_report FILE

#include <filesystem>
#include <iostream>
#include <string>

#include "platform/CodePage.h"
#include "sr/StructuredReport.h"

using namespace VantorWrappers;
using Vantor::Platform::FromHostText;
using Vantor::Platform::ToHostText;

namespace {

// An item and what stands below it. Items belong to their report.
void Show(const SRContentItem& item, size_t depth) {
    std::cout << std::string(2 * depth, ' ') << FromHostText(item.GetConceptName());
    if (!item.GetValue().empty()) std::cout << ": " << FromHostText(item.GetValue());
    std::cout << "\n";
    const SRContentItem* child = nullptr;
    for (int32_t index = 0; item.GetContentItem(index, child); ++index) Show(*child, depth + 1);
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: read_report FILE\n";
        return 2;
    }
    const StructuredReport report(ToHostText(std::filesystem::absolute(arguments[1]).string()));
    if (report.IsEmpty()) {
        std::cerr << arguments[1] << ": no structured report\n";
        return 1;
    }
    std::cout << FromHostText(report.GetSRDocumentTitle()) << ", " << FromHostText(report.GetCompletionFlag())
              << "\n";
    Show(*report.GetIOD()->GetRootContentItem(), 0);
    return 0;
}
