#pragma once

#include <memory>
#include <string>

#include "platform/DiscService.h"

namespace VantorTest {

// While it is alive, the computer burns discs as a test wants it: nothing is burned.
class FakeDiscService final : public Vantor::Platform::DiscService {
  public:
    // `area` is an existing folder.
    explicit FakeDiscService(std::string area) : fArea(std::move(area)) {}

    std::unique_ptr<Vantor::Platform::DiscBurner> Connect() override {
        return fIsThere ? std::make_unique<Burner>(*this) : nullptr;
    }
    std::string GetStagingFolder() override { return fArea; }

    std::string fArea;
    bool fIsThere = true;
    bool fHasRecorder = true;
    bool fFails = false;
    int fConnections = 0;  // that are open
    int fBurns = 0;
    Vantor::Platform::WindowHandle fWindow = nullptr;  // of the last burn, like its name
    std::string fVolumeName;

  private:
    class Burner final : public Vantor::Platform::DiscBurner {
      public:
        explicit Burner(FakeDiscService& service) : fService(service) { ++fService.fConnections; }
        ~Burner() override { --fService.fConnections; }

        bool HasRecorder() override { return fService.fHasRecorder; }
        std::string GetRecorderName() override { return fService.fHasRecorder ? "E:\\" : ""; }
        bool Burn(const Vantor::Platform::DiscJob& job) override {
            ++fService.fBurns;
            fService.fWindow = job.fWindow;
            fService.fVolumeName = job.fVolumeName;
            if (fService.fFails && job.fTellProblem) job.fTellProblem("the disc is full");
            if (job.fTellProgress) job.fTellProgress(100);
            return !fService.fFails;
        }

      private:
        FakeDiscService& fService;
    };

    Vantor::Platform::ReplacedDiscService fReplaced{*this};
};

}  // namespace VantorTest
