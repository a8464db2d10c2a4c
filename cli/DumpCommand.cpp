#include "cli/DumpCommand.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "cli/Console.h"
#include "cli/Failure.h"
#include "cli/Paths.h"
#include "cli/Text.h"
#include "platform/CodePage.h"
#include "wrappers/DicomFileInfo.h"

namespace VantorCli {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kContinuationIndent = "                              ";
constexpr size_t kReadSize = 65536;
constexpr size_t kLargestDictionary = 0x4000000;  // that of the whole standard has less than 1 MiB

// A pipe is refused before it is opened, which would wait for somebody to write into it.
std::string ReadDictionary(const std::filesystem::path& path) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) throw std::runtime_error("cannot be read");
    std::ifstream file(path, std::ios::binary);
    std::string text;
    std::array<char, kReadSize> part;
    while (file.read(part.data(), part.size()), file.gcount() > 0) {
        text.append(part.data(), static_cast<size_t>(file.gcount()));
        if (text.size() > kLargestDictionary) throw std::runtime_error("too long for a dictionary");
    }
    if (!file.eof()) throw std::runtime_error("cannot be read");
    return text;
}

bool IsHexOrBlank(char character) {
    return character == ' ' || std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

// True for the lines that the library writes, about an element ("gggg  eeee  VR  length") or an item. Any
// other is the rest of a value that holds a line end itself.
bool StartsElementOrItem(std::string_view line) {
    constexpr std::string_view kItem = "======= Item ";
    constexpr size_t kColumnsBeforeVr = 12;
    const size_t start = line.find_first_not_of(' ');
    if (start == std::string_view::npos) return false;
    if (line.substr(start).starts_with(kItem)) return true;
    return line.starts_with("  ") && line.size() > kColumnsBeforeVr &&
           std::all_of(line.begin(), line.begin() + kColumnsBeforeVr, IsHexOrBlank);
}

// Controls that texts hold are line ends, tabs, page ends and the escapes that switch between alphabets.
bool HoldsBinaryData(std::string_view line) {
    constexpr std::string_view kControlsOfTexts = "\t\n\f\r\x1B";
    return std::any_of(line.begin(), line.end(), [=](char character) {
        return std::iscntrl(static_cast<unsigned char>(character)) != 0 &&
               kControlsOfTexts.find(character) == std::string_view::npos;
    });
}

void PrintLine(std::string_view line, Console& console) {
    const std::string printable = HoldsBinaryData(line) ? ToDotted(line) : ToPrintable(line);
    console.Print(StartsElementOrItem(line) ? printable : std::string(kContinuationIndent) + printable);
}

void PrintLines(std::string_view text, Console& console) {
    while (!text.empty()) {
        const size_t end = std::min(text.find(kLineEnd), text.size());
        PrintLine(text.substr(0, end), console);
        text.remove_prefix(std::min(end + kLineEnd.size(), text.size()));
    }
}

}  // namespace

CommandLine DumpCommand::AddTo(const CommandLine& program) {
    const CommandLine line = program.AddCommand("dump", "Show every element of a DICOM file");
    line.AddArgument("FILE", fFile, "A DICOM file");
    line.AddOption("--dictionary", "FILE", fDictionaryFile,
                   "A text file that names the elements, with entries such as\n"
                   "(0010,0020) VR=\"LO\" Name=\"Patient ID\"");
    line.SetFooter(
        "One line an element: group (when it changes), element, VR, length in hexadecimal, value. The "
        "file's\n"
        "meta information comes first, and the items of a sequence are indented below it. Files without VRs\n"
        "of their own (implicit VR) show them when a dictionary is given.\n"
        "\n"
        "Example:\n"
        "  vantor dump EXAM/IMAGE0001.dcm\n"
        "  vantor dump --dictionary dictionary.txt EXAM/IMAGE0001.dcm");
    return line;
}

ExitStatus DumpCommand::Run(Console& console) {
    const HostString path = Vantor::Platform::ToHostText(fFile);
    const HostString dictionaryPath = Vantor::Platform::ToHostText(fDictionaryFile);
    std::string dictionary;
    if (!fDictionaryFile.empty()) {
        const auto failure =
            FailureOf(dictionaryPath, [&] { dictionary = ReadDictionary(ToPath(dictionaryPath)); });
        if (failure) {
            console.Report(ToPrintable(dictionaryPath) + ": " + *failure);
            return ExitStatus::kFailed;
        }
    }
    std::string text;
    std::string damage;
    std::optional<std::string> failure =
        FailureOf(path, [&] { text = VantorWrappers::DicomFileInfo(path).DumpElements(dictionary, damage); });
    PrintLines(text, console);
    if (!failure && !damage.empty()) failure = ToPrintable(damage);
    if (failure) console.Report(ToPrintable(path) + ": " + *failure);
    return failure ? ExitStatus::kFailed : ExitStatus::kDone;
}

}  // namespace VantorCli
