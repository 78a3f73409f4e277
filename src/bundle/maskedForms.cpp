// SPDX-License-Identifier: Apache-2.0
#include "bundle/maskedForms.h"

#include "bundle/documentNames.h"
#include "bundle/tomlFiles.h"
#include "bundle/utf8.h"
#include "model/CZor.h"

#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

template <class Change>
void eachText(Json& value, const Change& change) {
    if (value.is_string())
        value = change(value.get_ref<const std::string&>());
    else if (value.is_structured())
        for (Json& each : value)
            eachText(each, change);
}

std::optional<std::string> maskedDocument(const std::string& text, Mask& mask) {
    CZor rows;
    if (!readRows(text, rows))
        return std::nullopt;
    maskRows(rows, mask);
    return writtenRows(rows);
}

} // namespace

std::string jsonText(Json document) {
    eachText(document, [](const std::string& text) { return toUtf8(text); });
    return document.dump(2) + "\n";
}

void learnFrom(Form form, const std::string& text, Mask& mask) {
    CZor rows;
    switch (form) {
    case Form::Toml:
        return learnToml(text, mask);
    case Form::Document:
        if (readRows(text, rows))
            learnRows(rows, mask);
        return;
    case Form::Log:
        learnFromLog(text, mask);
        [[fallthrough]];
    default:
        mask.survey(text);
    }
}

std::optional<std::string> maskedFile(Form form, const std::string& text, Mask& mask) {
    const auto masked = [&](const std::string& each) { return mask.masked(std::string_view(each)); };
    switch (form) {
    case Form::Toml:
        return maskedToml(text, mask);
    case Form::Json: {
        Json document = Json::parse(text);
        eachText(document, masked);
        return jsonText(document);
    }
    case Form::Document:
        return maskedDocument(text, mask);
    default:
        return masked(text);
    }
}

} // namespace Zorvane
