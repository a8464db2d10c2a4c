#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Vantor {

class TDicomDataSet;

// The folder that a study of the exam layout has for itself, as the study's record names it: its path from
// the root of the drive on, or, without drives, from the directory's folder on, with backslashes, in a
// private element. The element's creator marks a directory as one of that layout.
namespace ExamFolder {

// True when the record has the creator.
bool IsNamedIn(const TDicomDataSet& record);

// The folder's name; none unless the path ends with a plain one that TDicomDoc can keep.
std::optional<std::string> ReadName(const TDicomDataSet& record);

void WritePath(TDicomDataSet& record, std::string_view path);

// True for the name of one folder on every system that the medium may come to.
bool IsPlainName(std::string_view name);

}  // namespace ExamFolder
}  // namespace Vantor
