// A COM server in place of the shell's, which burns nothing: what it answers and what it was asked for are
// values of a key of the current user's, where a test puts and finds them.

#include <initguid.h>

#include <objbase.h>
#include <shlobj.h>
#include <windows.h>

#include <atomic>
#include <iterator>

namespace {

constexpr wchar_t kKey[] = L"Software\\Vantor Tests\\Recorder";
constexpr wchar_t kClassKey[] = L"Software\\Classes\\CLSID\\{FBEB8A05-BEEE-4442-804E-409D6C4515E9}";
constexpr wchar_t kServerKey[] =
    L"Software\\Classes\\CLSID\\{FBEB8A05-BEEE-4442-804E-409D6C4515E9}\\InprocServer32";

DWORD ReadNumber(const wchar_t* name) {
    DWORD number = 0;
    DWORD size = sizeof number;
    RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_REG_DWORD, nullptr, &number, &size);
    return number;
}

void WriteNumber(const wchar_t* name, DWORD number) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name, REG_DWORD, &number, sizeof number);
}

void CountObjects(int change) {
    WriteNumber(L"Objects", ReadNumber(L"Objects") + static_cast<DWORD>(change));
}

bool IsRegistered() {
    HKEY known = nullptr;
    const bool isThere = RegOpenKeyExW(HKEY_LOCAL_MACHINE, kClassKey, 0, KEY_READ, &known) == ERROR_SUCCESS;
    if (isThere) RegCloseKey(known);
    return isThere;
}

template <typename Interface>
class Counted : public Interface {
  public:
    virtual ~Counted() = default;

    STDMETHODIMP_(ULONG) AddRef() override { return ++fCount; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG count = --fCount;
        if (count == 0) delete this;
        return count;
    }
    STDMETHODIMP QueryInterface(REFIID wanted, void** object) override {
        const bool isKnown = wanted == IID_IUnknown || wanted == __uuidof(Interface);
        *object = isKnown ? static_cast<Interface*>(this) : nullptr;
        if (!isKnown) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

  private:
    std::atomic<ULONG> fCount = 1;
};

class Burner final : public Counted<ICDBurn> {
  public:
    Burner() { CountObjects(1); }
    ~Burner() override { CountObjects(-1); }

    STDMETHODIMP GetRecorderDriveLetter(LPWSTR letter, UINT size) override {
        constexpr wchar_t kLetter[] = L"E:\\";
        if (ReadNumber(L"HasRecorder") == 0) return E_FAIL;
        if (size < std::size(kLetter)) return E_INVALIDARG;
        lstrcpyW(letter, kLetter);
        return S_OK;
    }

    STDMETHODIMP Burn(HWND window) override {
        WriteNumber(L"Window", static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(window)));
        WriteNumber(L"Burns", ReadNumber(L"Burns") + 1);
        return ReadNumber(L"HasRecorder") == 0 || ReadNumber(L"Fails") != 0 ? E_FAIL : S_OK;
    }

    STDMETHODIMP HasRecordableDrive(BOOL* hasDrive) override {
        *hasDrive = ReadNumber(L"HasRecorder") != 0;
        return ReadNumber(L"Fails") != 0 ? E_FAIL : S_OK;
    }
};

class Factory final : public Counted<IClassFactory> {
  public:
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID wanted, void** object) override {
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        auto* const burner = new Burner;
        const HRESULT result = burner->QueryInterface(wanted, object);
        burner->Release();
        return result;
    }
    STDMETHODIMP LockServer(BOOL /*locks*/) override { return S_OK; }
};

}  // namespace

STDAPI DllGetClassObject(REFCLSID wantedClass, REFIID wanted, void** object) {
    *object = nullptr;
    if (wantedClass != CLSID_CDBurn) return CLASS_E_CLASSNOTAVAILABLE;
    auto* const factory = new Factory;
    const HRESULT result = factory->QueryInterface(wanted, object);
    factory->Release();
    return result;
}

STDAPI DllCanUnloadNow() { return S_FALSE; }

// Refuses where the shell has a service of its own, which stays registered.
STDAPI DllRegisterServer() {
    if (IsRegistered()) return E_ACCESSDENIED;
    RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    HMODULE module = nullptr;
    wchar_t path[MAX_PATH] = {};
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&DllRegisterServer), &module);
    const DWORD size = (GetModuleFileNameW(module, path, MAX_PATH) + 1) * sizeof(wchar_t);
    return HRESULT_FROM_WIN32(RegSetKeyValueW(HKEY_LOCAL_MACHINE, kServerKey, nullptr, REG_SZ, path, size));
}

STDAPI DllUnregisterServer() {
    RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kClassKey);
    return IsRegistered() ? E_FAIL : S_OK;
}
