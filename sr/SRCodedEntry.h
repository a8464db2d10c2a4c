#pragma once

#include <utility>

#include "wrappers/HostString.h"

namespace VantorWrappers {

// A code: what it is in its coding scheme, and what it means to people. Absent parts are "".
class SRCodedEntry {
  public:
    SRCodedEntry() = default;
    SRCodedEntry(HostString codeValue, HostString codingSchemeDesignator, HostString codingSchemeVersion,
                 HostString codeMeaning)
        : fCodeValue(std::move(codeValue)),
          fCodingSchemeDesignator(std::move(codingSchemeDesignator)),
          fCodingSchemeVersion(std::move(codingSchemeVersion)),
          fCodeMeaning(std::move(codeMeaning)) {}

    const HostString& GetCodeValue() const { return fCodeValue; }
    const HostString& GetCodingSchemeDesignator() const { return fCodingSchemeDesignator; }
    const HostString& GetCodingSchemeVersion() const { return fCodingSchemeVersion; }
    const HostString& GetCodeMeaning() const { return fCodeMeaning; }

  private:
    HostString fCodeValue;
    HostString fCodingSchemeDesignator;
    HostString fCodingSchemeVersion;
    HostString fCodeMeaning;
};

}  // namespace VantorWrappers
