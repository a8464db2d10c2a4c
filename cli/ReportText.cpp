#include "cli/ReportText.h"

#include <algorithm>
#include <array>
#include <string>

#include "cli/Columns.h"
#include "cli/Console.h"
#include "cli/ContentWalk.h"
#include "cli/Wrapping.h"
#include "sr/SRCodedContentItem.h"
#include "sr/SRContainerContentItem.h"
#include "sr/SRNumericContentItem.h"

namespace VantorCli {

namespace {

using namespace VantorWrappers;

constexpr size_t kNarrowestLine = 40;  // what is not so wide is not laid out for
constexpr size_t kStep = 2;            // how far each level stands in
constexpr size_t kGap = 2;             // between label and value
constexpr size_t kShortValue = 24;     // labels leave room for as much
constexpr size_t kNarrowestText = 40;  // texts that would be narrower beside their label stand below it

bool IsSection(const SRContentItem& item) {
    return dynamic_cast<const SRContainerContentItem*>(&item) != nullptr;
}

// How an item stands to the one above it, for people: what is part of it needs no word.
const wchar_t* MarkOf(SRRelationshipType relationship) {
    switch (relationship) {
        case SRRelationshipType::HasPropertiesRelationship:
        case SRRelationshipType::HasObsContextRelationship:
        case SRRelationshipType::HasAcqContextRelationship:
        case SRRelationshipType::HasConceptModRelationship:
            return L"- ";
        case SRRelationshipType::InferredFromRelationship:
            return L"from ";
        case SRRelationshipType::SelectedFromRelationship:
            return L"selected from ";
        default:
            return L"";
    }
}

const char* ReadableType(SRType type) {
    switch (type) {
        case SRType::USAdultCardiacSR:
            return "adult echocardiography";
        case SRType::USPediatricCardiacSR:
            return "pediatric echocardiography";
        case SRType::USVascularSR:
            return "vascular ultrasound";
        case SRType::USOBGynSR:
            return "obstetric and gynecologic ultrasound";
        case SRType::CardiacCathSR:
            return "cardiac catheterization";
        case SRType::BasicTextSR:
            return "basic text";
        default:
            return "no known template";
    }
}

// Code strings that are words, as words.
std::string ReadableFlag(const HostString& flag) {
    std::string text = ToPrintable(flag);
    std::transform(text.begin(), text.end(), text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

std::string ReadableMoment(const std::optional<HostDateTime>& moment) {
    return moment ? ReadableDate(*moment) + ", " + ReadableTime(*moment) : "";
}

// With a blank between them when neither is empty.
HostString Joined(const HostString& text, const HostString& part) {
    return text.empty() || part.empty() ? text + part : text + L' ' + part;
}

}  // namespace

ReportText::ReportText(const ReportHeader& header, const Item& root, size_t width, bool isWithCodes,
                       Console& console)
    : fHeader(header),
      fRoot(root),
      fWidth(std::max(width, kNarrowestLine)),
      fIsWithCodes(isWithCodes),
      fConsole(console) {}

void ReportText::Print() {
    PrintHeader();
    fConsole.Print("");
    const auto enter = [this](const Item& item) {
        if (&item != &fRoot) PrintItem(item);
        fLevels.push_back(LevelBelow(item));
    };
    WalkContent(fRoot, enter, [this](const Item&) { fLevels.pop_back(); });
    if (fRoot.GetContentItemCount() == 0) fConsole.Print("(no content)");
    fConsole.Print("");
    PrintIdentifiers();
}

void ReportText::PrintHeader() {
    const HostString title = fHeader.fTitle.empty() ? L"(no title)" : fHeader.fTitle;
    Columns columns(Joined(title, CodeOf(fRoot.GetConceptNameCodedEntry())));
    columns.Add("Patient", fHeader.fPatientName);
    columns.Add("Patient ID", fHeader.fPatientNumber);
    columns.AddLine("Date", ReadableMoment(fHeader.fDateTime));
    columns.AddLine("Completion", ReadableFlag(fHeader.fCompletion));
    columns.AddLine("Verification", ReadableFlag(fHeader.fVerification));
    columns.AddLine("Template", ReadableType(fHeader.fType));
    columns.Add("Instance number", fHeader.fInstanceNumber);
    columns.Print(fConsole);
}

void ReportText::PrintIdentifiers() {
    Columns columns(L"Identifiers");
    columns.Add("Study UID", fHeader.fStudyUID);
    columns.Add("Series UID", fHeader.fSeriesUID);
    columns.Add("Instance UID", fHeader.fUID);
    columns.Print(fConsole);
}

// Values stand in a column behind the labels, but for those of labels that leave no room for it. The deepest
// levels do not stand in any further, so that there is a line left.
ReportText::Level ReportText::LevelBelow(const Item& item) const {
    constexpr size_t kMostOfLine = 3;  // a third of it
    Level level;
    level.fIndent = std::min(fLevels.size() * kStep, fWidth / kMostOfLine);
    level.fObserved = item.GetObservationDateTime();
    if (level.fObserved.empty() && !fLevels.empty()) level.fObserved = fLevels.back().fObserved;
    const size_t room = fWidth - level.fIndent;
    const size_t widest = room - std::min(room, kGap + kShortValue);
    size_t width = 0;
    const Item* child = nullptr;
    for (int32_t i = 0; item.GetContentItem(i, child); ++i) {
        const size_t labelWidth = IsSection(*child) ? 0 : WidthOf(ToPrintable(LabelOf(*child)));
        if (labelWidth <= widest) width = std::max(width, labelWidth);
    }
    level.fValueColumn = level.fIndent + width + kGap;
    return level;
}

// At the top, sections and what follows them stand apart.
void ReportText::PrintItem(const Item& item) {
    Level& level = fLevels.back();
    const bool isSection = IsSection(item);
    const bool isTop = fLevels.size() == 1;
    if (isTop && !level.fIsFirst && (isSection || level.fIsBehindSection)) fConsole.Print("");
    level.fIsFirst = false;
    level.fIsBehindSection = isSection;
    PrintEntry(LabelOf(item), ValueOf(item), ObservationOf(item, level), level);
}

// The remark stands behind the value when there is room for it, else below.
void ReportText::PrintEntry(const HostString& label, const HostString& value, const HostString& remark,
                            const Level& level) {
    const std::string indent(level.fIndent, ' ');
    const std::string printedLabel = ToPrintable(label);
    const size_t labelEnd = level.fIndent + WidthOf(printedLabel);
    const size_t column = std::max(level.fValueColumn, labelEnd + kGap);
    const size_t room = fWidth - std::min(fWidth, column);
    const std::string lead = PadRight(indent + printedLabel, column);
    const size_t belowColumn = level.fIndent + kStep + kStep;
    const std::string below(belowColumn, ' ');
    if (const auto line = ToSingleLine(Joined(value, remark), room); line && !line->empty()) {
        fConsole.Print(lead + *line);
        return;
    }
    if (!value.empty() && (room >= kNarrowestText || ToSingleLine(value, room))) {
        PrintLines(lead, value, column);
        PrintLines(below, remark, belowColumn);
    } else {
        PrintLines(indent, label, level.fIndent + kStep);
        PrintLines(below, Joined(value, remark), belowColumn);
    }
}

// A text on one or more lines: the first behind `lead`, the others from a column on.
void ReportText::PrintLines(std::string_view lead, const HostString& text, size_t column) {
    std::string start(lead);
    ForEachLine(text, fWidth - column, [&](std::string_view line) {
        fConsole.Print(line.empty() ? std::string() : start + std::string(line));
        start.assign(column, ' ');
    });
}

HostString ReportText::LabelOf(const Item& item) const {
    HostString label = fIsWithCodes ? item.GetNodeNumber() + L"  " : HostString();
    label += MarkOf(item.GetRelationshipType());
    if (item.GetConceptName().empty()) {
        label += IsSection(item) ? L"(no heading)" : L"(no name)";
    } else {
        label += item.GetConceptName();
    }
    return Joined(label, CodeOf(item.GetConceptNameCodedEntry()));
}

HostString ReportText::ValueOf(const Item& item) const {
    HostString value = item.GetValue();
    if (value.empty() && !IsSection(item)) value = L"(no value)";
    if (const auto* number = dynamic_cast<const SRNumericContentItem*>(&item)) {
        return item.GetValue().empty() ? value : Joined(value, number->GetUnits());
    }
    if (const auto* coded = dynamic_cast<const SRCodedContentItem*>(&item)) {
        return Joined(value, CodeOf(coded->GetValueCodedEntry()));
    }
    return value;
}

// When it is another one than that of the item above.
HostString ReportText::ObservationOf(const Item& item, const Level& level) {
    const HostString& moment = item.GetObservationDateTime();
    return moment.empty() || moment == level.fObserved ? HostString() : L"(observed " + moment + L")";
}

// "(121401, DCM)", when codes are shown.
HostString ReportText::CodeOf(const SRCodedEntry& code) const {
    if (!fIsWithCodes || (code.GetCodeValue().empty() && code.GetCodingSchemeDesignator().empty())) return {};
    return L"(" + code.GetCodeValue() + L", " + code.GetCodingSchemeDesignator() + L")";
}

}  // namespace VantorCli
