#include <array>

#include "report/html.h"
#include "report/sections.h"
#include "report/wording.h"

namespace vort {
namespace {

struct Meaning {
    const char* name;
    const char* text;
};

constexpr std::array<Meaning, 5> kParameters = {{
    {"permutations", "permuted data sets"},
    {"best_m", "best markers that were searched, their pairs included"},
    {"max_retain", "marker sets kept of each size, single markers and pairs"},
    {"fdr", "cut-off of the step-up rules for marker sets"},
    {"clustering", "how the genotypes of a pair are grouped; 0 is by their shares of cases"},
}};

constexpr std::array<Meaning, 4> kFormats = {{
    {"bed", "bed, bim and fam files"},
    {"vcf", "VCF or BCF file"},
    {"raw", "raw file, additive recoding"},
    {"study", "study directory"},
}};

template <std::size_t N>
std::string meaning(const std::array<Meaning, N>& of, const std::string& name) {
    for (const Meaning& each : of) {
        if (name == each.name) return each.text;
    }
    return "";
}

std::string row(const std::string& name, const std::string& value, const std::string& text) {
    return "<tr>" + ("<th scope=\"row\">" + escaped(name) + "</th>") +
           element("td", value, "value") + element("td", text) + "</tr>";
}

}  // namespace

void method_parts(const ModelView& view, PageParts& parts) {
    std::string html =
        "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"Parameters and "
        "versions\"><table class=\"rows\"><caption>Parameters and versions</caption><thead><tr>"
        "<th scope=\"col\">Name</th><th scope=\"col\">Value</th><th scope=\"col\">Meaning</th>"
        "</tr></thead><tbody>";
    for (const auto& [name, value] : view.parameters) {
        html += row(name, value, meaning(kParameters, name));
    }
    for (const auto& [role, path] : view.files) html += row(role, path, "input file");
    html += row("format", view.format, meaning(kFormats, view.format));
    html += row("vort", view.version, "the program");
    html +=
        "<tr><th scope=\"row\">Chart.js</th><td class=\"value\" id=\"chartjs\"></td><td>the "
        "charts</td></tr>";
    parts["method"] = html + "</tbody></table></div>";
}

}  // namespace vort
