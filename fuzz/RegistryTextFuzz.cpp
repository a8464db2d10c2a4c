// Arbitrary bytes as the text that settings are kept in: what is set there is read again, and everything else
// stays what it was. The first bytes choose a key, a name and a value.

#include <map>

#include "fuzz/FuzzInput.h"
#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "platform/RegistryText.h"

namespace {

using namespace Vantor::Platform;
using VantorFuzz::Require;

constexpr char kUsualKey[] = "Software\\Vendor\\Product";
constexpr uint8_t kUsual = 0x80;

std::string TakeText(VantorFuzz::Choices& input) {
    const std::vector<uint8_t> bytes = input.Take(input.Byte() % kUsual);
    return {bytes.begin(), bytes.end()};
}

RegistryValue TakeValue(VantorFuzz::Choices& input) {
    if (input.Byte() < kUsual) return int64_t{input.Number()};
    return ToHostText(TakeText(input));
}

void RequireSame(const RegistryText& one, const RegistryText& other, const std::string& path) {
    Require(one.ReadKey(path) == other.ReadKey(path));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    VantorFuzz::Choices input(data, size);
    const bool isUsual = input.Byte() >= kUsual;
    const std::string path = isUsual ? kUsualKey : TakeText(input);
    const RegistrySetting setting{TakeText(input), TakeValue(input)};
    const std::vector<uint8_t> bytes = input.TakeRest();
    const RegistryText before(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    RegistryText text(before.GetText());
    Require(text.GetText() == before.GetText());
    for (const char* const other : {kUsualKey, "A", ""}) RequireSame(text, before, other);

    RegistryValues expected = text.ReadKey(path).value_or(RegistryValues());
    if (!text.AddKey(path)) {
        Require(text.GetText() == before.GetText());
        return 0;
    }
    text.Set(path, setting);
    expected[UpperCased(setting.fName)] = setting.fValue;
    const RegistryText again(text.GetText());
    Require(again.ReadKey(path) == expected);
    if (UpperCased(path) != UpperCased(kUsualKey) && before.ReadKey(kUsualKey)) {
        RequireSame(again, before, kUsualKey);
    }
    return 0;
}
