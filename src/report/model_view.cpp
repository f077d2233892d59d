#include "report/model_view.h"

#include <nlohmann/json.hpp>

#include "common/input_error.h"
#include "report/wording.h"

namespace vort {
namespace {

using nlohmann::json;

double number(const json& from, const char* key) {
    const json& value = from.at(key);
    return value.is_null() ? kUnknown : value.get<double>();
}

// Where older or partial results leave a part out.
const json& part(const json& from, const char* key) {
    static const json nothing;
    const auto found = from.find(key);
    return found == from.end() ? nothing : *found;
}

Locus read_locus(const json& from) {
    return {shortened(from.at("name").get<std::string>(), kLongestName),
            from.at("chromosome"),
            from.at("position"),
            from.at("a1"),
            from.at("a2"),
            from.at("rank")};
}

std::vector<Locus> read_loci(const json& from) {
    std::vector<Locus> loci;
    for (const json& each : from) loci.push_back(read_locus(each));
    return loci;
}

Tally read_tally(const json& from) {
    return {from.at("cases"), from.at("controls")};
}

Learner read_learner(const json& from) {
    Learner learner;
    learner.id = from.at("id");
    learner.marker_set = from.at("marker_set");
    learner.markers = read_loci(from.at("markers"));
    learner.group = from.at("group");
    learner.cells = from.at("cells").get<std::vector<std::vector<int>>>();
    learner.coefficient = from.at("coefficient");
    learner.risk_difference = from.at("risk_difference");
    learner.inside = read_tally(from.at("inside"));
    learner.outside = read_tally(from.at("outside"));
    learner.missing = from.value("missing", 0);
    return learner;
}

// The set names its markers only; what else is known of them stands with its base learners.
std::vector<Locus> loci_of_set(const json& set, const std::vector<Learner>& learners) {
    const int id = set.at("id");
    for (const Learner& learner : learners) {
        if (learner.marker_set == id) return learner.markers;
    }
    std::vector<Locus> loci;
    for (const json& name : set.at("markers"))
        loci.emplace_back().name = shortened(name.get<std::string>(), kLongestName);
    return loci;
}

ShownSet read_set(const json& from, const std::vector<Learner>& learners) {
    ShownSet set{from.at("id"), loci_of_set(from, learners), {}};
    const bool pair = set.markers.size() == 2;
    set.cells.resize(pair ? 9 : 3);
    for (const json& each : from.at("cells")) {
        const json& genotype = each.at("genotype");
        const int first = genotype.at(0);
        GenotypeCell& cell = set.cells.at(pair ? 3 * first + genotype.at(1).get<int>() : first);
        cell.people = read_tally(each);
        if (!each.at("group").is_null()) cell.group = each.at("group");
    }
    return set;
}

void read_input(const json& input, ModelView& view) {
    view.format = input.at("format");
    for (const json& file : part(input, "files")) {
        view.files.emplace_back(file.at("role"), file.at("path"));
    }
    const json& individuals = input.at("individuals");
    view.individuals_read = individuals.at("read");
    view.individuals = individuals.at("analysed");
    view.cases = individuals.at("cases");
    view.controls = individuals.at("controls");
    const json& markers = input.at("markers");
    view.markers_read = markers.at("read");
    view.markers = markers.at("analysed");
    view.dropped = markers.at("dropped");
    for (const json& each : part(input, "left_out")) {
        view.left_out.push_back({each.at("what"), each.at("count"), each.at("why")});
    }
    for (const json& note : part(input, "notes")) view.notes.push_back(note);
}

void read_result(const json& result, ModelView& view) {
    view.has_model = result.at("has_model");
    view.T0 = number(result, "T0");
    view.permutations = result.at("permutations");
    view.stronger = result.value("stronger", 0L);
    view.equal = result.value("equal", 0L);
    view.p = number(result, "p");
    view.p_plus_one = number(result, "p_plus_one");
    const json& interval = result.at("p_interval");
    if (!interval.is_null()) {
        view.p_low = interval.at(0);
        view.p_high = interval.at(1);
    }
}

void read_model(const json& model, ModelView& view) {
    if (model.is_null()) return;
    view.intercept = model.at("intercept");
    for (const json& each : model.at("base_learners")) view.learners.push_back(read_learner(each));
    for (const json& each : model.at("marker_sets")) {
        view.sets.push_back(read_set(each, view.learners));
    }
    for (const json& each : model.at("markers")) {
        view.weighed.push_back(
            {read_locus(each), each.at("importance"), number(each, "p_min"), number(each, "emp2")});
    }
}

ModelView read_all(const json& model) {
    ModelView view;
    view.version = model.at("program").at("version");
    read_input(model.at("input"), view);
    for (const auto& [key, value] : model.at("parameters").items()) {
        view.parameters.emplace_back(key,
                                     value.is_string() ? value.get<std::string>() : value.dump());
    }
    if (!part(model, "screening").is_null()) {
        view.lambda_gc = number(model.at("screening"), "lambda_gc");
    }
    read_result(model.at("result"), view);
    if (view.has_model) read_model(part(model, "model"), view);
    return view;
}

}  // namespace

ModelView read_model_view(const json& model) try {
    return read_all(model);
} catch (const std::exception& fault) {  // json's own, or a genotype out of range
    input_error("model.json", 0,
                std::string(fault.what()) +
                    "; the results of a run as it left them are expected; run the analysis again");
}

}  // namespace vort
