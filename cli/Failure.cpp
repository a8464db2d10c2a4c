#include "cli/Failure.h"

#include <exception>
#include <memory>
#include <new>
#include <string_view>

#include "cli/Console.h"
#include "cli/Paths.h"
#include "cli/Text.h"
#include "dicom/TException.h"
#include "platform/CodePage.h"
#include "platform/FileException.h"

namespace VantorCli {

namespace {

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
        if (IsFolder(ToPath(path))) return "this is a folder, not a file";
        return ToPrintable(ReasonOf(error, Vantor::Platform::FromHostText(path)));
    } catch (const std::bad_alloc&) {
        return "not enough memory";
    } catch (const std::exception& error) {
        return ToPrintable(error.what());
    }
}

const char* ReasonOf(const VantorWrappers::LuminaError& error) {
    using VantorWrappers::ErrorNumber;
    switch (error.GetErrorNumber()) {
        case ErrorNumber::CopySeriesFailure:
            return "the source or one of its records is at fault";
        case ErrorNumber::CopySeriesVolumeFull:
            return "a new file cannot be written; the volume is full or cannot be written";
        case ErrorNumber::CopySeriesFAT32:
            return "a new file cannot be written; the volume is full, or the file too large for FAT32";
        case ErrorNumber::CopySeriesDestMissing:
            return "the folder for the new files is not there";
        case ErrorNumber::CopySeriesDirUpdateFailure:
            return "the files are copied, but the DICOMDIR cannot be written";
        case ErrorNumber::DirectoryReadOnly:
            return "the DICOMDIR cannot be opened for writing";
        case ErrorNumber::DirectoryWriteError:
            return "the DICOMDIR cannot be written";
        case ErrorNumber::DeleteFailed:
            return "its files or the DICOMDIR cannot be changed";
        case ErrorNumber::SaveGeneralFailure:
            return "not all of it can be saved; --trace error tells more";
        case ErrorNumber::SaveOpenForUpdateFailure:
            return "there is no DICOMDIR, or it cannot be opened for writing";
        case ErrorNumber::FileNamesAllUsed:
            return "there is no name left for a new file, or its path is too long";
        default:
            return NameOf(error.GetErrorNumber());
    }
}

const char* ResultName(const VantorWrappers::LuminaError& error) {
    return error.IsSuccess() ? "success" : NameOf(error.GetErrorNumber());
}

}  // namespace VantorCli
