// SPDX-License-Identifier: Apache-2.0
#include "bundle/maskedForms.h"

#include "bundle/documentNames.h"
#include "model/CZor.h"

#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

void maskTexts(Json& value, Mask& mask) {
    if (value.is_string())
        value = mask.masked(std::string_view(value.get_ref<const std::string&>()));
    else if (value.is_structured())
        for (Json& each : value)
            maskTexts(each, mask);
}

std::string maskedJson(const std::string& text, Mask& mask) {
    Json document = Json::parse(text, nullptr, false);
    if (document.is_discarded())
        return mask.masked(std::string_view(text));
    maskTexts(document, mask);
    return jsonText(document);
}

// From a quote or a comment's sign to its end, that included; a text of several lines ends where a line does,
// and goes on as keys would. 0 where neither stands.
std::size_t heldLength(std::string_view text) {
    const char first = text.front();
    if (first != '"' && first != '\'' && first != '#')
        return 0;
    std::size_t end = 1;
    for (; end < text.size() && text[end] != '\n'; ++end) {
        if (first == '"' && text[end] == '\\')
            ++end;
        else if (first != '#' && text[end] == first)
            return end + 1;
    }
    return std::min(end, text.size());
}

std::string maskedToml(std::string_view text, Mask& mask) {
    std::string out;
    while (!text.empty()) {
        const std::size_t length = heldLength(text);
        out += length > 0 ? mask.masked(text.substr(0, length)) : std::string(1, text.front());
        text.remove_prefix(length > 0 ? length : 1);
    }
    return out;
}

bool readRows(const std::string& text, CZor& rows) {
    std::string copy = text;
    return rows.readXml(reinterpret_cast<unsigned char*>(copy.data()), static_cast<int>(copy.size())) == 0;
}

std::string maskedDocument(const std::string& text, Mask& mask) {
    CZor rows;
    if (!readRows(text, rows))
        return {};
    maskRows(rows, mask);
    return documentText(rows);
}

} // namespace

std::string jsonText(const Json& document) {
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void learnFrom(Form form, const std::string& text, Mask& mask) {
    if (form == Form::Document) {
        CZor rows;
        if (readRows(text, rows))
            learnRows(rows, mask);
        return;
    }
    if (form == Form::Log)
        learnFromLog(text, mask);
    mask.survey(text);
}

std::string maskedFile(Form form, const std::string& text, Mask& mask) {
    switch (form) {
    case Form::Toml:
        return maskedToml(text, mask);
    case Form::Json:
        return maskedJson(text, mask);
    case Form::Document:
        return maskedDocument(text, mask);
    default:
        return mask.masked(std::string_view(text));
    }
}

} // namespace Zorvane
