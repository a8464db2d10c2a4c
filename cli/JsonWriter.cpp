#include "cli/JsonWriter.h"

#include <algorithm>

#include "cli/Console.h"
#include "cli/Json.h"

namespace VantorCli {

namespace {

// Stands for itself in JSON.
bool IsPlain(wchar_t character) {
    return character >= L' ' && character < L'\x7F' && character != L'"' && character != L'\\';
}

}  // namespace

void JsonWriter::Add(const char* key, const HostString& text) {
    AddKey(key);
    if (!std::all_of(text.begin(), text.end(), IsPlain)) {
        fLine += ToLine(Json(ToUtf8(text)));
        return;
    }
    const size_t start = fLine.size();
    fLine.resize(start + text.size() + 2, '"');
    std::transform(text.begin(), text.end(), fLine.begin() + static_cast<std::ptrdiff_t>(start) + 1,
                   [](wchar_t character) { return static_cast<char>(character); });
}

void JsonWriter::Add(const char* key, const char* plainText) {
    AddKey(key);
    fLine += '"';
    fLine += plainText;
    fLine += '"';
}

void JsonWriter::Add(const char* key, int32_t number) {
    AddKey(key);
    fLine += std::to_string(number);
}

void JsonWriter::AddFlag(const char* key, bool isTrue) {
    AddKey(key);
    fLine += isTrue ? "true" : "false";
}

void JsonWriter::AddNull(const char* key) {
    AddKey(key);
    fLine += "null";
}

void JsonWriter::BeginObject(const char* key) {
    AddKey(key);
    fLine += '{';
}

void JsonWriter::BeginList(const char* key) {
    AddKey(key);
    fLine += '[';
}

void JsonWriter::AddKey(const char* key) {
    AddComma();
    fLine += '"';
    fLine += key;
    fLine += "\":";
}

void JsonWriter::Begin(char bracket) {
    AddComma();
    fLine += bracket;
}

void JsonWriter::End(char bracket) {
    fLine += bracket;
    PrintLongLine();
}

void JsonWriter::PrintLongLine() {
    constexpr size_t kLong = 32768;
    if (fLine.size() < kLong) return;
    fConsole.PrintPart(std::string_view(fLine).substr(0, fLine.size() - 1));
    fLine.erase(0, fLine.size() - 1);
}

void JsonWriter::EndLine() {
    fConsole.Print(fLine);
    fLine.clear();
}

// Between two values, and not behind a bracket that opens.
void JsonWriter::AddComma() {
    if (!fLine.empty() && fLine.back() != '{' && fLine.back() != '[') fLine += ',';
}

}  // namespace VantorCli
