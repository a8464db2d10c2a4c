#pragma once

#include <cstdint>
#include <string>

#include "cli/Text.h"

namespace VantorCli {

class Console;

// Prints one JSON object on one line from front to end, for objects that are too large to be made in memory
// first. Texts are as ToLine has them.
class JsonWriter {
  public:
    explicit JsonWriter(Console& console) : fConsole(console) {}

    void BeginObject() { Begin('{'); }
    void EndObject() { End('}'); }
    void EndList() { End(']'); }

    // The value of a key, or the beginning of one. Keys are plain ASCII.
    void Add(const char* key, const HostString& text);
    void Add(const char* key, const char* plainText);
    void Add(const char* key, int32_t number);
    void AddFlag(const char* key, bool isTrue);
    void AddNull(const char* key);
    void BeginObject(const char* key);
    void BeginList(const char* key);

    // Ends the line. Throws OutputError, as all that adds to it.
    void EndLine();

  private:
    void Begin(char bracket);
    void End(char bracket);
    void AddKey(const char* key);
    void AddComma();
    void PrintLongLine();

    Console& fConsole;
    std::string fLine;  // what is not printed yet, and at least the last character
};

}  // namespace VantorCli
