// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/filterfacts.h"

#include "apps/cli/parametertext.h"
#include "apps/cli/text.h"
#include "orvcore/filterimage.h"
#include "orvcore/filterplot.h"
#include "orvcore/filtertext.h"

namespace cli {

namespace {

// Past nine digits the bounds are those of the number's type.
constexpr double LargestBound = 1e9;

Json TextJson(wxString const& text) {
    return Valid(ToUtf8(text));
}

Json TextsJson(VecString const& texts) {
    Json array = Json::array();
    for (wxString const& text : texts) array.push_back(TextJson(text));
    return array;
}

char const* KindOf(Parameter const& parameter) {
    switch (parameter.GetType()) {
        case ParameterTypeBool:
            return "boolean";
        case ParameterTypeOption:
            return "option";
        case ParameterTypeVectorString:
            return "texts";
        case ParameterTypeNumber:
        case ParameterTypeNumberMinMax:
        case ParameterTypeDoubleMinMax:
            return parameter.Holds<double>() ? "number" : "integer";
        default:
            return "text";
    }
}

// A whole number is written as one.
Json NumberJson(double number, bool whole) {
    return whole ? Json(static_cast<int64_t>(number)) : Json(number);
}

Json ParameterJson(Parameter const& parameter) {
    Json object = {{"name", TextJson(parameter.Name())},
                   {"description", TextJson(parameter.GetDescription())},
                   {"kind", KindOf(parameter)},
                   {"takes", Takes(parameter)}};
    Validator const* const validator = parameter.GetValidator();
    if (validator != nullptr && validator->IsBounded() && parameter.GetMaximum() < LargestBound) {
        const bool whole = !parameter.Holds<double>();
        object["minimum"] = NumberJson(parameter.GetMinimum(), whole);
        object["maximum"] = NumberJson(parameter.GetMaximum(), whole);
    }
    if (parameter.GetType() == ParameterTypeOption) object["options"] = TextsJson(parameter.Strings());
    object["default"] = ValueJson(parameter);
    return object;
}

Json ParametersJson(VecParameter const& parameters) {
    Json array = Json::array();
    for (Parameter const& parameter : parameters) array.push_back(ParameterJson(parameter));
    return array;
}

}  // namespace

ResultKind ResultKindOf(OrvFilter const& filter) {
    if (dynamic_cast<OrvFilterImage const*>(&filter) != nullptr) return ResultKind::Picture;
    if (dynamic_cast<OrvFilterPlot const*>(&filter) != nullptr) return ResultKind::Plot;
    if (dynamic_cast<OrvFilterText const*>(&filter) != nullptr) return ResultKind::Tables;
    if (dynamic_cast<OrvFilterTextCustom const*>(&filter) != nullptr) return ResultKind::Text;
    // A filter of no such class may save a picture all the same.
    const wxString endings = filter.GetOutputFileSelectorString();
    return !endings.empty() && endings == GetContext()->GetStringImageFormatsWrite() ? ResultKind::Picture
                                                                                     : ResultKind::Nothing;
}

char const* ResultKindName(ResultKind kind) {
    switch (kind) {
        case ResultKind::Picture:
            return "picture";
        case ResultKind::Plot:
            return "plot";
        case ResultKind::Tables:
            return "tables";
        case ResultKind::Text:
            return "text";
        default:
            return "nothing";
    }
}

Json ValueJson(Parameter const& parameter) {
    if (parameter.GetType() == ParameterTypeOption) return TextJson(parameter.ToReport());
    if (parameter.Holds<bool>()) return parameter.GetValue<bool>();
    if (parameter.Holds<int>()) return parameter.GetValue<int>();
    if (parameter.Holds<int64_t>()) return parameter.GetValue<int64_t>();
    if (parameter.Holds<double>()) return parameter.GetValue<double>();
    if (parameter.Holds<VecString>()) return TextsJson(parameter.GetValue<VecString>());
    if (parameter.Holds<VecVecString>()) {
        Json rows = Json::array();
        for (VecString const& row : parameter.GetValue<VecVecString>()) rows.push_back(TextsJson(row));
        return rows;
    }
    return TextJson(parameter.ToText());
}

Json ValuesJson(VecParameter const& parameters) {
    Json object = Json::object();
    for (Parameter const& parameter : parameters) object[Valid(ToUtf8(parameter.Name()))] = ValueJson(parameter);
    return object;
}

Json FilterJson(OrvFilter const& filter) {
    Json outputs = Json::array();
    for (Parameter const& parameter : filter.GetParametersOutput()) {
        outputs.push_back(
            {{"name", TextJson(parameter.Name())}, {"description", TextJson(parameter.GetDescription())}});
    }
    Json configurations = Json::array();
    for (OrvFilterConfiguration const& configuration : filter.GetConfigurations()) {
        configurations.push_back({{"enabled", configuration.IsEnabled()}, {"parameters", ValuesJson(configuration)}});
    }
    return {{"name", TextJson(filter.GetName())},
            {"group", TextJson(filter.GetAnalysisTypeString())},
            {"description", TextJson(filter.GetDescription())},
            {"gives", ResultKindName(ResultKindOf(filter))},
            {"only_jpeg", filter.IsOnlyForJpeg()},
            {"parameters", ParametersJson(filter.GetParametersInput())},
            {"post_parameters", ParametersJson(filter.GetParametersPostProcessing())},
            {"outputs", outputs},
            {"configurations", configurations}};
}

std::string ValuesText(VecParameter const& parameters) {
    std::string text;
    for (Parameter const& parameter : parameters) {
        text += (text.empty() ? "" : ", ") + ToUtf8(parameter.Name()) + "=" + ToUtf8(parameter.ToReport());
    }
    return text;
}

}  // namespace cli
