#include <array>

#include "report/html.h"
#include "report/page_template.h"
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

// Nothing where phenotypes were shuffled freely.
std::string within_html(const ModelView& view) {
    if (view.within_file.empty()) return "";
    return element("p", "Phenotypes were shuffled within the " +
                            counted(view.clusters, "clusters") + " of " + view.within_file +
                            " only. So the p-value of the model, EMP1 and EMP2 allow for clusters "
                            "whose shares of cases and whose allele frequencies differ. The tests' "
                            "own p-values, lambda and the model's fit do not.");
}

std::string structure_html(const ModelView& view) {
    if (view.within_file.empty()) {
        return "Population structure is not adjusted for. Where cases and controls differ in "
               "ancestry, markers\nthat differ between the ancestries show up, in the model as "
               "well.";
    }
    return "Tests and model are not adjusted for population structure, permutations are, as far "
           "as clusters go:\nmarkers that differ between ancestries still have small p-values of "
           "their own, and structure inside a\ncluster still shows up in everything.";
}

}  // namespace

void method_parts(const ModelView& view, PageParts& parts) {
    using Kind = RowTable::Kind;
    RowTable table("Parameters and versions",
                   {{"Name", Kind::kHead}, {"Value", Kind::kWords}, {"Meaning", Kind::kWords}});
    for (const auto& [name, value] : view.parameters) {
        table.add({name, value, meaning(kParameters, name)});
    }
    for (const auto& [role, path] : view.files) table.add({role, path, "input file"});
    table.add({"format", view.format, meaning(kFormats, view.format)});
    table.add({"vort", view.version, "the program"});
    table.add({"Chart.js", chartjs_version(), "the charts"});
    parts["method"] = within_html(view) + table.html();
    parts["structure"] = structure_html(view);
}

}  // namespace vort
