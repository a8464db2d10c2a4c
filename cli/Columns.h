#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/Text.h"

namespace VantorCli {

class Console;

// A block of labelled values, printed in two columns under a headline. Values that are empty are left out.
class Columns {
  public:
    explicit Columns(const HostString& headline) : fHeadline(ToPrintable(headline)) {}

    // Text without the blanks around it, control characters made visible.
    void Add(const char* label, const HostString& text) { AddLine(label, ToPrintable(Trimmed(text))); }

    // UTF-8 that is fit to be printed.
    void AddLine(const char* label, std::string utf8);

    void Print(Console& console) const;

  private:
    std::string fHeadline;
    std::vector<std::pair<std::string, std::string>> fRows;
};

}  // namespace VantorCli
