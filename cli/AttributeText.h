#pragma once

#include <string>

namespace VantorCli {

// Checks of texts of the command line that become attributes of images: each gives what is wrong with the
// text, or nothing.

// A person's name in DICOM form: up to three groups, with = between them, of up to five parts, with ^.
std::string ProblemOfPersonName(const std::string& text);

// Text of one line; identifiers and the like have less room.
std::string ProblemOfLongText(const std::string& text);
std::string ProblemOfShortText(const std::string& text);

// A whole number as DICOM has it, or nothing.
std::string ProblemOfNumber(const std::string& text);

}  // namespace VantorCli
