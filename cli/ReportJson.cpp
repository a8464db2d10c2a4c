#include "cli/ReportJson.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "cli/ContentWalk.h"
#include "cli/JsonWriter.h"
#include "platform/CodePage.h"
#include "sr/SRDateContentItem.h"
#include "sr/SRDateTimeContentItem.h"
#include "sr/SRNumericContentItem.h"
#include "sr/SRTimeContentItem.h"

namespace VantorCli {

namespace {

using namespace VantorWrappers;

void AddTextOrNull(JsonWriter& json, const char* key, const HostString& text) {
    if (text.empty()) {
        json.AddNull(key);
    } else {
        json.Add(key, text);
    }
}

void AddCode(JsonWriter& json, const SRCodedEntry& code) {
    json.BeginObject("code");
    json.Add("value", code.GetCodeValue());
    json.Add("scheme", code.GetCodingSchemeDesignator());
    json.Add("version", code.GetCodingSchemeVersion());
    json.Add("meaning", code.GetCodeMeaning());
    json.EndObject();
}

// A date or time that is absent is null, a text that is absent is empty.
void AddValue(JsonWriter& json, const SRContentItem& item) {
    constexpr std::array<std::string_view, 3> kMoments = {
        SRDateContentItem::kValueType, SRTimeContentItem::kValueType, SRDateTimeContentItem::kValueType};
    const bool isMoment = std::find(kMoments.begin(), kMoments.end(), item.GetValueType()) != kMoments.end();
    if (isMoment) {
        AddTextOrNull(json, "value", item.GetValue());
    } else {
        json.Add("value", item.GetValue());
    }
}

// Up to the list of the items below it, which is open then.
void BeginItem(JsonWriter& json, const SRContentItem& item) {
    json.Add("node", item.GetNodeNumber());
    json.Add("valueType", item.GetValueType());
    json.Add("relationship", NameOf(item.GetRelationshipType()));
    json.Add("concept", item.GetConceptName());
    AddCode(json, item.GetConceptNameCodedEntry());
    AddValue(json, item);
    if (const auto* number = dynamic_cast<const SRNumericContentItem*>(&item)) {
        json.Add("units", number->GetUnits());
    }
    AddTextOrNull(json, "observationDateTime", item.GetObservationDateTime());
    json.BeginList("items");
}

void AddContent(JsonWriter& json, const SRContentItem& root) {
    const auto enter = [&](const SRContentItem& item) {
        if (&item == &root) {
            json.BeginObject("root");
        } else {
            json.BeginObject();
        }
        BeginItem(json, item);
    };
    const auto leave = [&](const SRContentItem&) {
        json.EndList();
        json.EndObject();
    };
    WalkContent(root, enter, leave);
}

HostString ToIsoText(const std::optional<HostDateTime>& moment) {
    return moment ? Vantor::Platform::ToHostText(IsoDateTime(*moment)) : HostString();
}

}  // namespace

void PrintReportAsJson(const HostString& path, const ReportHeader& header, const SRContentItem* root,
                       Console& console) {
    JsonWriter json(console);
    json.BeginObject();
    json.Add("path", path);
    json.AddFlag("valid", root != nullptr);
    json.Add("title", header.fTitle);
    json.Add("type", NameOf(header.fType));
    json.Add("completion", header.fCompletion);
    json.Add("verification", header.fVerification);
    AddTextOrNull(json, "dateTime", ToIsoText(header.fDateTime));
    json.Add("instanceNumber", header.fInstanceNumber);
    json.Add("studyUID", header.fStudyUID);
    json.Add("seriesUID", header.fSeriesUID);
    json.Add("uid", header.fUID);
    json.Add("patientName", header.fPatientName);
    json.Add("patientNumber", header.fPatientNumber);
    if (root != nullptr) {
        AddContent(json, *root);
    } else {
        json.AddNull("root");
    }
    json.EndObject();
    json.EndLine();
}

}  // namespace VantorCli
