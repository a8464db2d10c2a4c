#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Vantor::Platform {

// How a system writes its paths. Both styles are plain rules over text, so each can be asked anywhere; the
// port says which one its system has.
class PathStyle {
  public:
    // The style of the system that the library runs on.
    static const PathStyle& OfPlatform();

    virtual char GetSeparator() const = 0;
    virtual bool IsSeparator(char character) const = 0;

    // True for a path that stands for itself, whatever folder one looks from.
    virtual bool IsFullPath(std::string_view path) const = 0;

    // True when a name may follow at once: behind a separator, and behind a drive.
    virtual bool EndsFolder(std::string_view path) const = 0;

    // Where the path goes on behind its drive; none without one.
    virtual std::optional<size_t> DriveEnd(std::string_view path) const = 0;

    // The path to ask for the space of the volume that a path is on, which ends with a separator: the drive
    // or the network share, or, where volumes are mounted anywhere, the folder that holds what the path
    // names.
    virtual std::string VolumeRoot(std::string_view path) const = 0;

    // How a name that the library chooses is spelled on disk. Media go to readers that tell case apart, and
    // file IDs are upper case: where the system tells case apart too, so are the names.
    virtual std::string NameToMake(std::string_view name) const = 0;

    // True for a name that means an entry of the folder in which it is looked for, and that one only: not the
    // folder itself or the one above, no device, no part of a file, and nothing that the system takes for
    // another name.
    virtual bool IsPlainName(std::string_view name) const = 0;

    // The part up to and with the last separator; empty without one.
    std::string_view FolderPart(std::string_view path) const;

    // The path without separators at its end, which would name nothing; that of a root is part of its name.
    std::string WithoutLastSeparators(std::string_view path) const;

    // The folder that holds what the path names, without separators at its end; and the name there.
    std::string FolderOf(std::string_view path) const { return WithoutLastSeparators(FolderPart(path)); }
    std::string_view LastPart(std::string_view path) const { return path.substr(FolderPart(path).size()); }

    // The path of a name in a folder.
    std::string Join(std::string folder, std::string_view name) const;

    // Every separator of a file ID, which is `\`, as this style's own, and back.
    std::string FromFileID(std::string_view fileID) const;
    std::string ToFileID(std::string_view path) const;

  protected:
    ~PathStyle() = default;
};

// Drives and network shares; `\` and, where users or programs write it so, `/`.
class WindowsPathStyle final : public PathStyle {
  public:
    char GetSeparator() const override { return '\\'; }
    bool IsSeparator(char character) const override { return character == '\\' || character == '/'; }
    bool IsFullPath(std::string_view path) const override;
    bool EndsFolder(std::string_view path) const override;
    std::optional<size_t> DriveEnd(std::string_view path) const override;
    std::string VolumeRoot(std::string_view path) const override;
    std::string NameToMake(std::string_view name) const override { return std::string(name); }
    bool IsPlainName(std::string_view name) const override;
};

// One tree of folders from `/`; `\` is a letter.
class PosixPathStyle final : public PathStyle {
  public:
    char GetSeparator() const override { return '/'; }
    bool IsSeparator(char character) const override { return character == '/'; }
    bool IsFullPath(std::string_view path) const override;
    bool EndsFolder(std::string_view path) const override;
    std::optional<size_t> DriveEnd(std::string_view /*path*/) const override { return std::nullopt; }
    std::string VolumeRoot(std::string_view path) const override;
    std::string NameToMake(std::string_view name) const override;
    bool IsPlainName(std::string_view name) const override;
};

}  // namespace Vantor::Platform
