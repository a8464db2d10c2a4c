#include "cli/MovieCommand.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

#include "cli/CharacterCode.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Failure.h"
#include "cli/FileImage.h"
#include "cli/Interruption.h"
#include "cli/Json.h"
#include "cli/Paths.h"
#include "cli/Progress.h"
#include "cli/UnfinishedFile.h"
#include "platform/CodePage.h"
#include "wrappers/ChooseAVICompressor.h"
#include "wrappers/StressAviMaker.h"

namespace VantorCli {

namespace {

namespace fs = std::filesystem;
using VantorWrappers::AVICompressor;

constexpr size_t kMostFiles = 6;
constexpr char kUncompressed[] = "DIB ";

// Sizes in movie files are of 32 bits, which programs take for signed ones. Beside its pixels a frame takes
// its header and its place in the index, and the file as a whole some headers.
constexpr int64_t kLargestMovie = 0x7FFFFFFF;
constexpr int64_t kFrameOverhead = 128;
constexpr int64_t kFileOverhead = int64_t{128} * 1024;

HostString ToText(const std::string& bytes) { return Vantor::Platform::ToHostText(bytes); }

std::string ProblemOfCodec(const std::string& name) {
    return name.empty() || name.size() > kCodeLength ? "a codec has up to four characters" : "";
}

std::string ProblemOfQuality(const std::string& text) {
    constexpr int kBest = 100;
    int quality = -1;
    const char* end = text.data() + text.size();
    const bool isNumber = std::from_chars(text.data(), end, quality).ptr == end;
    return isNumber && quality >= 0 && quality <= kBest ? "" : "the quality is 0 to 100";
}

std::string UpperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

// Columns and rows of the grid that so many images are shown in.
struct Grid {
    explicit Grid(size_t images)
        : fColumns(images <= 1   ? 1
                   : images <= 4 ? 2
                                 : 3),
          fRows(images <= 2 ? 1 : 2) {}

    int64_t fColumns;
    int64_t fRows;
};

// The bytes that an uncompressed frame has.
int64_t FrameSizeOf(int64_t width, int64_t height) {
    constexpr int64_t kPixelSize = 3;
    constexpr int64_t kRowUnit = 4;
    return (width * kPixelSize + kRowUnit - 1) / kRowUnit * kRowUnit * height;
}

int32_t CountFrames(const std::vector<std::unique_ptr<FileImage>>& images) {
    int32_t frames = 0;
    for (const auto& image : images) frames = std::max(frames, image->GetNumberOfFrames());
    return frames;
}

}  // namespace

CommandLine MovieCommand::AddTo(const CommandLine& program) {
    const CommandLine line =
        program.AddCommand("movie", "Record up to six loops side by side into an AVI movie");
    line.AddArgument("OUT", fPath, "The movie to be made");
    line.AddArgument("FILE", fFiles, "One to six DICOM images");
    line.AddOption("--codec", "FOURCC", fCodec,
                   "The compressor, of those that vantor codecs lists;\nwithout, none")
        .Check(ProblemOfCodec);
    line.AddOption("--quality", "NUMBER", fQuality, "Of what is compressed, 0 to 100; without, 85")
        .Check(ProblemOfQuality);
    line.AddFlag("--force", fIsForced, "Replace a file that is there");
    line.AddFlag("--json", fIsJson, "One JSON object");
    line.Check([this] { return fFiles.size() > kMostFiles ? "FILE: a movie shows up to six images" : ""; });
    line.SetFooter(
        "The images stand in a grid: two side by side, three and four in two rows, more in three columns. "
        "Each\n"
        "frame of the movie shows all loops at the same point of their cycle, and the movie is as fast as "
        "the\n"
        "longest one. An image that cannot be shown, because its compression is not known or a frame is\n"
        "damaged, is black there. The movie appears when it is complete; uncompressed ones end at 2 GB.\n"
        "\n"
        "Example:\n"
        "  vantor movie stress.avi EXAM/REST.dcm EXAM/PEAK.dcm\n"
        "  vantor movie loop.avi EXAM/LOOP.dcm --codec MJPG --quality 90");
    return line;
}

ExitStatus MovieCommand::Run(Console& console) {
    const uint32_t codec = FindCodec();
    Images images;
    if (!OpenImages(images, console)) return ExitStatus::kFailed;
    const fs::path path = RequirePlace();
    RequireSize(images, codec);
    const Movie movie = MakeAt(path, images, codec, console);
    Show(movie, codec, console);
    for (const auto& image : images) {
        const std::string problem = image->GetPictureProblem();
        if (problem.empty()) continue;
        console.Report("warning: " + ToPrintable(image->GetPathName()) + ": " + problem +
                       "; it is black there");
    }
    return ExitStatus::kDone;
}

// As it is spelled; else in any case.
uint32_t MovieCommand::FindCodec() const {
    const uint32_t codec = ToCharacterCode(fCodec.empty() ? kUncompressed : fCodec);
    const auto known = VantorWrappers::ChooseAVICompressor::GetCompressors();
    const auto find = [&known](const auto& isIt) -> std::optional<uint32_t> {
        const auto found = std::find_if(known.begin(), known.end(), isIt);
        if (found == known.end()) return std::nullopt;
        return found->fHandler;
    };
    if (const auto found = find([codec](const AVICompressor& each) { return each.fHandler == codec; }))
        return *found;
    const std::string name = UpperCase(ToCodeName(codec));
    const auto isAlike = [&name](const AVICompressor& each) {
        return UpperCase(ToCodeName(each.fHandler)) == name;
    };
    if (const auto found = find(isAlike)) return *found;
    throw CommandError(ToPrintable(ToText(fCodec)) +
                       ": no such compressor; vantor codecs lists those that there are");
}

// False, and each failure is reported, when one of them is none.
bool MovieCommand::OpenImages(Images& images, Console& console) const {
    const auto savedImages = std::make_shared<VantorWrappers::SavedImages>();
    bool areImages = true;
    for (const std::string& file : fFiles) {
        const HostString path = ToText(file);
        images.push_back(std::make_unique<FileImage>(path, savedImages));
        const auto failure = FailureOf(path, [&] { images.back()->OpenPicture(); });
        if (!failure) continue;
        console.Report(ToPrintable(path) + ": " + *failure);
        areImages = false;
    }
    return areImages;
}

// Where the movie is to be: where a link leads to, if OUT is one.
fs::path MovieCommand::RequirePlace() const {
    const std::string name = ToPrintable(ToText(fPath));
    std::error_code error;
    fs::path path = ToAbsolutePath(fPath);
    if (fs::is_symlink(path, error)) path = fs::canonical(path, error);
    if (error && path.empty()) throw CommandError(name + ": this is a link that leads nowhere");
    if (IsFolder(path)) throw CommandError(name + ": this is a folder, not a file");
    if (!IsFolder(path.parent_path())) throw CommandError(name + ": the folder for it is not there");
    for (const std::string& file : fFiles) {
        if (fs::equivalent(path, ToAbsolutePath(file), error)) {
            throw CommandError(name + ": this is one of the images");
        }
    }
    if (!fs::exists(path, error)) return path;
    if (!fIsForced) throw CommandError(name + ": there is such a file already; --force replaces it");
    if (!fs::is_regular_file(path, error))
        throw CommandError(name + ": this is no file that can be replaced");
    return path;
}

// Nobody knows beforehand what compressed frames take: what becomes too large then is given up.
void MovieCommand::RequireSize(const Images& images, uint32_t codec) const {
    int64_t width = 0;
    int64_t height = 0;
    for (const auto& image : images) {
        width = std::max<int64_t>(width, image->GetImageWidth());
        height = std::max<int64_t>(height, image->GetImageHeight());
    }
    const Grid grid(images.size());
    width *= grid.fColumns;
    height *= grid.fRows;
    constexpr int64_t kMostPixels = kLargestMovie / 4;
    if (width > kMostPixels || height > kMostPixels || width * height > kMostPixels) {
        throw CommandError(ToPrintable(ToText(fPath)) + ": the images are too large for a movie");
    }
    const int64_t frame = FrameSizeOf(width, height);
    const bool isCompressed = codec != ToCharacterCode(kUncompressed);
    const int64_t size = (isCompressed ? 0 : frame) + kFrameOverhead;
    const int64_t frames = CountFrames(images);
    if (size > (kLargestMovie - kFileOverhead) / frames) {
        throw CommandError(ToPrintable(ToText(fPath)) + ": the movie would be larger than 2 GB" +
                           (isCompressed ? "" : "; vantor codecs lists compressors"));
    }
}

MovieCommand::Movie MovieCommand::MakeAt(const fs::path& path, const Images& images, uint32_t codec,
                                         Console& console) const {
    const Interruption interruption;
    Movie movie;
    try {
        UnfinishedFile file(path);
        RequireDone(file.GetError());
        movie = Make(file.GetPath(), images, codec, console);
        RequireDone(file.Finish());
    } catch (const CommandError&) {
        Interruption::Pass();
        throw;
    }
    return movie;
}

void MovieCommand::RequireDone(const std::error_code& error) const {
    if (error) throw CommandError(ToPrintable(ToText(fPath)) + ": " + ToPrintable(error.message()));
}

MovieCommand::Movie MovieCommand::Make(const fs::path& path, const Images& images, uint32_t codec,
                                       Console& console) const {
    const int32_t frames = CountFrames(images);
    Progress progress(console, static_cast<uint64_t>(frames), "frames");
    VantorWrappers::StressAviMaker maker;
    uint64_t begun = 0;
    images.front()->SetFrameListener([&] {
        progress.SetDone(begun++);
        if (Interruption::HasCome()) maker.Cancel();
    });
    VantorWrappers::StressAviMaker::ImageViews views;
    for (const auto& image : images) views.push_back(image.get());
    Movie movie;
    maker.MakeStressAviFile(ToHostText(path), codec, fQuality, views, movie.fWidth, movie.fHeight);
    images.front()->SetFrameListener(nullptr);
    movie.fFrames = maker.GetFramesWritten();
    movie.fRate = maker.GetRate();
    const std::string name = ToPrintable(ToText(fPath));
    if (movie.fFrames == 0) {
        throw CommandError(name +
                           ": no frame can be written; the volume is full, or the compressor does not "
                           "take such frames");
    }
    if (movie.fFrames < frames) {
        throw CommandError(name + ": only " + Grouped(static_cast<uint64_t>(movie.fFrames)) + " of " +
                           Counted(static_cast<uint64_t>(frames), "frame", "frames") +
                           " can be written; the volume is full, or the movie larger than 2 GB");
    }
    return movie;
}

void MovieCommand::Show(const Movie& movie, uint32_t codec, Console& console) const {
    const HostString path = ToText(fPath);
    if (fIsJson) {
        Json object;
        object["path"] = ToUtf8(path);
        object["width"] = movie.fWidth;
        object["height"] = movie.fHeight;
        object["frames"] = movie.fFrames;
        object["rate"] = movie.fRate;
        object["codec"] = ToUtf8(ToText(ToCodeName(codec)));
        console.Print(ToLine(object));
        return;
    }
    console.Print("made  " + ToPrintable(path) + "  " + std::to_string(movie.fWidth) + " x " +
                  std::to_string(movie.fHeight) + "  " +
                  Counted(static_cast<uint64_t>(movie.fFrames), "frame", "frames") + "  " +
                  std::to_string(movie.fRate) + " a second");
}

}  // namespace VantorCli
