#pragma once

#include <memory>
#include <utility>

#include "wrappers/HostString.h"

namespace VantorWrappers {

// A code: what it is in its coding scheme, and what it means to people. Absent parts are "".
//
// Copies share their texts, as the same few codes name thousands of items. Those never change, so several
// threads may read them.
class SRCodedEntry {
  public:
    SRCodedEntry() = default;
    SRCodedEntry(HostString codeValue, HostString codingSchemeDesignator, HostString codingSchemeVersion,
                 HostString codeMeaning)
        : fTexts(
              std::make_shared<const Texts>(Texts{std::move(codeValue), std::move(codingSchemeDesignator),
                                                  std::move(codingSchemeVersion), std::move(codeMeaning)})) {}

    const HostString& GetCodeValue() const { return GetTexts().fCodeValue; }
    const HostString& GetCodingSchemeDesignator() const { return GetTexts().fCodingSchemeDesignator; }
    const HostString& GetCodingSchemeVersion() const { return GetTexts().fCodingSchemeVersion; }
    const HostString& GetCodeMeaning() const { return GetTexts().fCodeMeaning; }

  private:
    struct Texts {
        HostString fCodeValue;
        HostString fCodingSchemeDesignator;
        HostString fCodingSchemeVersion;
        HostString fCodeMeaning;
    };
    static inline const Texts kNoTexts;

    const Texts& GetTexts() const { return fTexts != nullptr ? *fTexts : kNoTexts; }

    std::shared_ptr<const Texts> fTexts;  // null for no code
};

}  // namespace VantorWrappers
