#include "platform/Registry.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "platform/RegistryStore.h"

namespace Vantor::Platform {

namespace {

constexpr const wchar_t* kTestKeys = L"Software\\Vantor-Test";
constexpr size_t kLongestTestName = 200;  // the system takes 255 characters

// Below the current user's key, with a separator at the end; empty unless a ReplacedRegistry is alive.
std::wstring& ReplacingKey() {
    static std::wstring& key = *new std::wstring;  // never destroyed: see platform/Clock.cpp
    return key;
}

std::wstring FullPath(const std::string& path) { return ReplacingKey() + ToHostText(path); }

// An open key and its owner.
class Key {
  public:
    Key() = default;
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() {
        if (fKey != nullptr) {
            RegCloseKey(fKey);
        }
    }

    bool Open(const std::wstring& path) {
        constexpr DWORD kNoOptions = 0;
        return RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), kNoOptions, KEY_QUERY_VALUE, &fKey) ==
               ERROR_SUCCESS;
    }

    bool Create(const std::wstring& path) {
        constexpr DWORD kReserved = 0;
        return RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), kReserved, nullptr, REG_OPTION_NON_VOLATILE,
                               KEY_SET_VALUE, nullptr, &fKey, nullptr) == ERROR_SUCCESS;
    }

    HKEY Get() const { return fKey; }

  private:
    HKEY fKey = nullptr;
};

// Text need not end with a NUL there, and may go on behind one.
std::wstring TextOf(const std::vector<BYTE>& data) {
    std::wstring text(data.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), data.data(), text.size() * sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
}

template <typename Number>
std::optional<RegistryValue> IntegerOf(const std::vector<BYTE>& data) {
    Number number = 0;
    if (data.size() != sizeof(number)) {
        return std::nullopt;
    }
    std::memcpy(&number, data.data(), sizeof(number));
    return static_cast<int64_t>(number);
}

// None for the kinds that nobody here sets.
std::optional<RegistryValue> ValueOf(DWORD kind, const std::vector<BYTE>& data) {
    switch (kind) {
        case REG_SZ:
        case REG_EXPAND_SZ:
            return TextOf(data);
        case REG_DWORD:
            return IntegerOf<DWORD>(data);
        case REG_QWORD:
            return IntegerOf<ULONGLONG>(data);
        default:
            return std::nullopt;
    }
}

// Goes through the values of a key.
class ValueReader {
  public:
    explicit ValueReader(const Key& key) : fKey(key) {}

    RegistryValues ReadAll() {
        RegistryValues values;
        for (DWORD index = 0; Read(index); ++index) {
            if (const std::optional<RegistryValue> value = ValueOf(fKind, fData)) {
                values[UpperCased(FromHostText(fName))] = *value;
            }
        }
        return values;
    }

  private:
    // Including the NUL behind it.
    static constexpr DWORD kLongestName = 16'384;

    bool Read(DWORD index) {
        LSTATUS result = TryRead(index);
        while (result == ERROR_MORE_DATA) {
            fData.resize(std::max<size_t>(fSize, fData.size() + 1));
            result = TryRead(index);
        }
        fData.resize(std::min<size_t>(fSize, fData.size()));
        return result == ERROR_SUCCESS;
    }

    LSTATUS TryRead(DWORD index) {
        constexpr size_t kUsualSize = 512;
        fData.resize(std::max(fData.size(), kUsualSize));
        fSize = static_cast<DWORD>(fData.size());
        DWORD length = kLongestName;
        fName.resize(length);
        const LSTATUS result =
            RegEnumValueW(fKey.Get(), index, fName.data(), &length, nullptr, &fKind, fData.data(), &fSize);
        fName.resize(std::min(length, kLongestName));
        return result;
    }

    const Key& fKey;
    std::wstring fName;
    std::vector<BYTE> fData;
    DWORD fSize = 0;
    DWORD fKind = REG_NONE;
};

bool SetValue(const Key& key, const RegistrySetting& setting) {
    constexpr DWORD kReserved = 0;
    const auto set = [&](DWORD kind, const void* data, size_t size) {
        return RegSetValueExW(key.Get(), ToHostText(setting.fName).c_str(), kReserved, kind,
                              static_cast<const BYTE*>(data), static_cast<DWORD>(size)) == ERROR_SUCCESS;
    };
    if (const auto* const text = std::get_if<std::wstring>(&setting.fValue)) {
        return set(REG_SZ, text->c_str(), (text->size() + 1) * sizeof(wchar_t));
    }
    const auto number = static_cast<DWORD>(std::get<int64_t>(setting.fValue));
    return set(REG_DWORD, &number, sizeof(number));
}

// A name that no separator divides.
std::wstring TestKeyName(const std::string& folder) {
    std::wstring name = ToHostText(folder);
    std::replace(name.begin(), name.end(), L'\\', L'/');
    return name.substr(name.size() - std::min(name.size(), kLongestTestName));
}

}  // namespace

std::optional<RegistryValues> ReadRegistryKey(const std::string& path) {
    Key key;
    return key.Open(FullPath(path)) ? std::optional(ValueReader(key).ReadAll()) : std::nullopt;
}

bool WriteRegistryKey(const std::string& path, const std::vector<RegistrySetting>& settings) {
    Key key;
    return key.Create(FullPath(path)) &&
           std::all_of(settings.begin(), settings.end(),
                       [&](const RegistrySetting& setting) { return SetValue(key, setting); });
}

// What a test that was killed has left there goes first.
ReplacedRegistry::ReplacedRegistry(const std::string& folder) {
    const std::wstring key = std::wstring(kTestKeys) + L'\\' + TestKeyName(folder);
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
    ReplacingKey() = key + L'\\';
}

ReplacedRegistry::~ReplacedRegistry() {
    ReplacingKey().pop_back();
    RegDeleteTreeW(HKEY_CURRENT_USER, ReplacingKey().c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, kTestKeys);  // refused while another test has its key there
    ReplacingKey().clear();
}

}  // namespace Vantor::Platform
