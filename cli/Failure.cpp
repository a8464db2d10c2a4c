#include "cli/Failure.h"

#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>

#include "cli/Console.h"
#include "cli/Text.h"
#include "dicom/TException.h"
#include "platform/CodePage.h"
#include "platform/FileException.h"

namespace VantorCli {

namespace {

bool IsFolder(const VantorWrappers::HostString& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

// File errors name the file that the work was on, or what was read of it, such as "image data".
std::string ReasonOf(const Vantor::Platform::FileException& error, const std::string& path) {
    const std::string_view text = error.what();
    const std::string prefix = path + ": ";
    return std::string(text.starts_with(prefix) ? text.substr(prefix.size()) : text);
}

}  // namespace

std::optional<std::string> FailureOf(const VantorWrappers::HostString& path,
                                     const std::function<void()>& work) {
    try {
        work();
        return std::nullopt;
    } catch (const OutputError&) {
        throw;
    } catch (Vantor::TException* thrown) {
        const std::unique_ptr<Vantor::TException> error(thrown);
        return ToPrintable(error->GetErrorText());
    } catch (const Vantor::Platform::FileException& error) {
        if (IsFolder(path)) return "this is a folder, not a file";
        return ToPrintable(ReasonOf(error, Vantor::Platform::FromHostText(path)));
    } catch (const std::bad_alloc&) {
        return "not enough memory";
    } catch (const std::exception& error) {
        return ToPrintable(error.what());
    }
}

}  // namespace VantorCli
