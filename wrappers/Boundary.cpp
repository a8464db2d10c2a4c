#include "wrappers/Boundary.h"

#include <exception>
#include <memory>

#include "dicom/TException.h"
#include "host/Trace.h"

namespace VantorWrappers {

namespace {

using VantorHost::Trace;
using VantorHost::TraceArea;
using VantorHost::TraceLevel;

}  // namespace

std::optional<std::string> FailureOf(const std::function<void()>& operation) {
    try {
        operation();
        return std::nullopt;
    } catch (Vantor::TException* thrown) {
        const std::unique_ptr<Vantor::TException> error(thrown);
        return error->GetErrorText();
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "unknown exception";
    }
}

void TraceError(std::string_view text) { Trace::Write(TraceArea::kDirectory, TraceLevel::kError, text); }

void TraceWarning(std::string_view text) { Trace::Write(TraceArea::kDirectory, TraceLevel::kWarning, text); }

void TraceInfo(std::string_view text) { Trace::Write(TraceArea::kDirectory, TraceLevel::kInfo, text); }

void TraceVerbose(std::string_view text) { Trace::Write(TraceArea::kDirectory, TraceLevel::kVerbose, text); }

}  // namespace VantorWrappers
