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
                // Nobody sees a control character, but a terminal may obey it.
                out += static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\t' ? '?' : c;
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

RowTable::RowTable(const std::string& caption, std::vector<Column> columns)
    : columns_(std::move(columns)) {
    html_ = "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"" +
            escaped(caption) + "\"><table class=\"rows\">" + element("caption", caption) +
            "<thead><tr>";
    for (const Column& column : columns_) {
        html_ += "<th scope=\"col\"" +
                 std::string(column.kind == Kind::kNumber ? " class=\"number\">" : ">") +
                 escaped(column.title) + "</th>";
    }
    html_ += "</tr></thead><tbody>";
}

void RowTable::add(const std::vector<std::string>& cells) {
    html_ += "<tr>";
    for (std::size_t i = 0; i < cells.size(); ++i) {
        switch (columns_.at(i).kind) {
            case Kind::kText:
                html_ += element("td", cells[i]);
                break;
            case Kind::kWords:
                html_ += element("td", cells[i], "words");
                break;
            case Kind::kNumber:
                html_ += element("td", cells[i], "number");
                break;
            case Kind::kHead:
                html_ += "<th scope=\"row\">" + escaped(cells[i]) + "</th>";
                break;
        }
    }
    html_ += "</tr>";
}

}  // namespace vort
