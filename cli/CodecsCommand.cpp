#include "cli/CodecsCommand.h"

#include "cli/CharacterCode.h"
#include "cli/Console.h"
#include "cli/Json.h"
#include "cli/Table.h"
#include "cli/Text.h"
#include "platform/CodePage.h"
#include "wrappers/ChooseAVICompressor.h"

namespace VantorCli {

CommandLine CodecsCommand::AddTo(const CommandLine& program) {
    const CommandLine line =
        program.AddCommand("codecs", "List the compressors that movies can be made with");
    line.AddFlag("--json", fIsJson, "One JSON object a line for each compressor");
    line.SetFooter(
        "The four characters that vantor movie --codec takes, and what the compressor calls itself. On "
        "Windows\n"
        "they are those that are installed, elsewhere those of this program. \"DIB \", without compression, "
        "is\n"
        "always there.\n"
        "\n"
        "Example:\n"
        "  vantor codecs");
    return line;
}

ExitStatus CodecsCommand::Run(Console& console) {
    Table table(0, {Table::Align::kLeft, Table::Align::kLeft});
    for (const auto& compressor : VantorWrappers::ChooseAVICompressor::GetCompressors()) {
        const std::string name = ToCodeName(compressor.fHandler);
        if (fIsJson) {
            Json object;
            object["codec"] = ToUtf8(Vantor::Platform::ToHostText(name));
            object["description"] = ToUtf8(compressor.fDescription);
            console.Print(ToLine(object));
        } else {
            table.AddRow(ToPrintable(name), ToPrintable(compressor.fDescription));
        }
    }
    table.Print(console);
    return ExitStatus::kDone;
}

}  // namespace VantorCli
