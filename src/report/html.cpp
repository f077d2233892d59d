#include "report/html.h"

#include <nlohmann/json.hpp>

namespace vort {

std::string escaped(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&#39;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string json_for_script(const nlohmann::json& value) {
    const std::string text = value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        if (c == '<') {
            out += "\\u003c";
        } else {
            out += c;
        }
    }
    return out;
}

std::string element(std::string_view tag, std::string_view text, std::string_view name) {
    std::string out = "<" + std::string(tag);
    if (!name.empty()) out.append(" class=\"").append(name).append("\"");
    return out.append(">").append(escaped(text)).append("</").append(tag).append(">");
}

}  // namespace vort
