#pragma once

#include <cstddef>
#include <vector>

#include "cli/ReportHeader.h"

namespace VantorWrappers {
class SRCodedEntry;
class SRContentItem;
}  // namespace VantorWrappers

namespace VantorCli {

class Console;

// Prints a report for people to read: what it is and whose, then its content, item by item below each other.
class ReportText {
  public:
    // Lines get no longer than `width` characters where there is a way to break them; `isWithCodes` shows
    // node numbers and the codes behind names and values as well.
    ReportText(const ReportHeader& header, const VantorWrappers::SRContentItem& root, size_t width,
               bool isWithCodes, Console& console);

    void Print();

  private:
    using Item = VantorWrappers::SRContentItem;

    // The items below an item, from whose texts their layout follows.
    struct Level {
        size_t fIndent = 0;
        size_t fValueColumn = 0;  // where their values start
        HostString fObserved;     // when they were observed unless they say so themselves
        bool fIsFirst = true;
        bool fIsBehindSection = false;
    };

    void PrintHeader();
    void PrintIdentifiers();
    Level LevelBelow(const Item& item) const;
    void PrintItem(const Item& item);
    void PrintEntry(const HostString& label, const HostString& value, const HostString& remark,
                    const Level& level);
    void PrintLines(std::string_view lead, const HostString& text, size_t column);

    HostString LabelOf(const Item& item) const;
    HostString ValueOf(const Item& item) const;
    static HostString ObservationOf(const Item& item, const Level& level);
    HostString CodeOf(const VantorWrappers::SRCodedEntry& code) const;

    const ReportHeader& fHeader;
    const Item& fRoot;
    size_t fWidth;
    bool fIsWithCodes;
    Console& fConsole;
    std::vector<Level> fLevels;  // on the way down to the item that is printed
};

}  // namespace VantorCli
