#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace VantorTest {

// What a run of random steps keeps of a medium: nothing but what must be found there.

// An image. The mark stands in its pixels, and goes wherever they go.
struct SoakImage {
    std::string fPatient;
    std::string fStudy;
    std::string fSeries;
    int fMark = 0;

    bool operator==(const SoakImage&) const = default;
};

inline std::string TextOf(const SoakImage& image) {
    return image.fPatient + '/' + image.fStudy + '/' + image.fSeries + '#' + std::to_string(image.fMark);
}

using SoakImages = std::map<std::string, SoakImage>;  // by SOP instance UID

struct SoakMedium {
    std::string fName;  // the File-set ID
    SoakImages fImages;

    SoakImages ImagesOf(const std::string& series) const {
        SoakImages images;
        for (const auto& image : fImages) {
            if (image.second.fSeries == series) images.insert(image);
        }
        return images;
    }
};

// What a step is to change.
struct SoakChange {
    std::optional<std::string> fName;
    std::set<std::string> fGoing;  // UIDs of images
    SoakImages fComing;
    std::vector<SoakImage> fComingAnew;  // with UIDs that the library makes; a text that is empty may be any
};

// Where the contents are not what the change makes of the ones before: a line for each fault. A change that
// was disturbed may have been made in parts, and pending ones before it too, but of nothing else may anything
// have become different.
class SoakJudge {
  public:
    SoakJudge(const SoakMedium& before, const SoakChange& change, const std::vector<SoakChange>& pending,
              bool isDisturbed)
        : fBefore(before), fChange(change), fPending(pending), fIsDisturbed(isDisturbed) {}

    std::vector<std::string> FaultsOf(const SoakMedium& found) {
        fFaults.clear();
        JudgeName(found.fName);
        for (const auto& [uid, image] : fBefore.fImages) {
            if (fChange.fGoing.count(uid) == 0) {
                Expect(HasSame(found, uid, image), "lost or changed: ", uid, TextOf(image));
            } else {
                const bool isLeft = fIsDisturbed && HasSame(found, uid, image);
                Expect(isLeft || found.fImages.count(uid) == 0, "still there: ", uid, TextOf(image));
            }
        }
        for (const auto& [uid, image] : fChange.fComing) {
            const bool isMissing = fIsDisturbed && found.fImages.count(uid) == 0;
            Expect(isMissing || HasSame(found, uid, image), "missing or wrong: ", uid, TextOf(image));
        }
        JudgeNewOnes(found);
        return fFaults;
    }

  private:
    void JudgeName(const std::string& found) {
        bool isRight =
            found == fChange.fName.value_or(fBefore.fName) || (fIsDisturbed && found == fBefore.fName);
        for (const SoakChange& change : fPending) isRight = isRight || found == change.fName;
        Expect(isRight, "name: ", found);
    }

    void JudgeNewOnes(const SoakMedium& found) {
        std::vector<SoakImage> expected = fChange.fComingAnew;
        for (const auto& [uid, image] : found.fImages) {
            if (fBefore.fImages.count(uid) > 0 || fChange.fComing.count(uid) > 0) continue;
            const bool isRight = Take(expected, image) || IsPending(uid, image);
            Expect(isRight, "nobody put it there: ", uid, TextOf(image));
        }
        for (const SoakImage& image : expected) {
            Expect(fIsDisturbed, "missing, with a UID of its own: ", TextOf(image));
        }
    }

    static bool Take(std::vector<SoakImage>& forms, const SoakImage& image) {
        const auto match = std::find_if(forms.begin(), forms.end(),
                                        [&](const SoakImage& form) { return HasForm(image, form); });
        if (match == forms.end()) return false;
        forms.erase(match);
        return true;
    }

    bool IsPending(const std::string& uid, const SoakImage& image) const {
        return std::any_of(fPending.begin(), fPending.end(), [&](const SoakChange& change) {
            const auto coming = change.fComing.find(uid);
            if (coming != change.fComing.end()) return coming->second == image;
            std::vector<SoakImage> forms = change.fComingAnew;
            return Take(forms, image);
        });
    }

    static bool HasSame(const SoakMedium& medium, const std::string& uid, const SoakImage& image) {
        const auto found = medium.fImages.find(uid);
        return found != medium.fImages.end() && found->second == image;
    }
    static bool HasForm(const SoakImage& image, const SoakImage& form) {
        const auto fits = [](const std::string& text, const std::string& wanted) {
            return wanted.empty() || text == wanted;
        };
        return fits(image.fPatient, form.fPatient) && fits(image.fStudy, form.fStudy) &&
               fits(image.fSeries, form.fSeries) && image.fMark == form.fMark;
    }
    void Expect(bool holds, const char* fault, const std::string& what, const std::string& image = "") {
        if (!holds) fFaults.push_back(fault + what + ' ' + image);
    }

    const SoakMedium& fBefore;
    const SoakChange& fChange;
    const std::vector<SoakChange>& fPending;
    bool fIsDisturbed;
    std::vector<std::string> fFaults;
};

}  // namespace VantorTest
