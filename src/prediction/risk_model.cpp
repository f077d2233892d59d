#include "prediction/risk_model.h"

#include <algorithm>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <tuple>

#include "common/input_error.h"
#include "results/json_values.h"

namespace vort {

namespace {

using nlohmann::json;

constexpr long kMost = 1'000'000'000;
constexpr double kFarthest = 1000;  // risks, whose range is 1; fits exceed it, but not by far

MarkerInfo read_marker(const json& from) {
    MarkerInfo marker;
    marker.name = from.at("name").get<std::string>();
    marker.chromosome = static_cast<int>(whole_of(from.at("chromosome"), "a chromosome", 0, 26));
    marker.position =
        whole_of(from.at("position"), "a position", 0, std::numeric_limits<long>::max());
    marker.a1 = from.at("a1").get<std::string>();
    marker.a2 = from.at("a2").get<std::string>();
    return marker;
}

long people(const json& from) {
    return whole_of(from.at("cases"), "cases", 0, kMost) +
           whole_of(from.at("controls"), "controls", 0, kMost);
}

double share(long part, long of) {
    return of == 0 ? 0 : static_cast<double>(part) / static_cast<double>(of);
}

// A genotype of each marker, as a code.
std::size_t read_cell(const json& from, int size) {
    if (!from.is_array() || from.size() != static_cast<std::size_t>(size)) {
        throw std::out_of_range("a genotype of other markers");
    }
    long code = 0;
    for (const json& copies : from) code = 3 * code + whole_of(copies, "a genotype", 0, 2);
    return static_cast<std::size_t>(code);
}

class ModelReader {
  public:
    RiskModel read(const json& model) {
        model_.intercept = number_of(model.at("intercept"), "the intercept", -kFarthest, kFarthest);
        const json& learners = model.at("base_learners");
        if (!learners.is_array() || learners.empty()) throw std::out_of_range("no base learner");
        for (const json& each : learners) model_.learners.push_back(read_learner(each));
        return std::move(model_);
    }

  private:
    RiskLearner read_learner(const json& from) {
        RiskLearner learner;
        learner.id = static_cast<int>(whole_of(from.at("id"), "id", 1, kMost));
        if (!ids_.insert(learner.id).second) {
            throw std::out_of_range("base learner " + std::to_string(learner.id) +
                                    " is there twice");
        }
        read_markers(from.at("markers"), learner);
        for (const json& cell : from.at("cells")) learner.cells.set(read_cell(cell, learner.size));
        learner.difference =
            number_of(from.at("risk_difference"), "a risk difference", -kFarthest, kFarthest);
        const long inside = people(from.at("inside"));
        learner.share = share(inside, inside + people(from.at("outside")));
        return learner;
    }

    void read_markers(const json& from, RiskLearner& learner) {
        if (!from.is_array() || from.empty() || from.size() > 2) {
            throw std::out_of_range("a base learner of neither one marker nor two");
        }
        learner.size = static_cast<int>(from.size());
        learner.marker = {};
        for (std::size_t l = 0; l < from.size(); ++l) {
            learner.marker[l] = number_of_marker(read_marker(from[l]));
        }
        if (learner.size == 2 && learner.marker[0] == learner.marker[1]) {
            throw std::out_of_range("a pair of one marker, " +
                                    model_.markers[learner.marker[0]].name);
        }
    }

    int number_of_marker(MarkerInfo marker) {
        const auto next = static_cast<int>(model_.markers.size());
        const auto [place, fresh] = numbers_.try_emplace(
            std::tuple(marker.name, marker.chromosome, marker.position, marker.a1, marker.a2),
            next);
        if (fresh) model_.markers.push_back(std::move(marker));
        return place->second;
    }

    RiskModel model_;
    std::set<int> ids_;
    std::map<std::tuple<std::string, int, long, std::string, std::string>, int> numbers_;
};

bool has_places(const json& input) {
    const auto is_bim = [](const json& file) { return file.at("role") == "bim"; };
    const json& format = input.at("format");
    return format != "study" && (format != "raw" || std::ranges::any_of(input.at("files"), is_bim));
}

RiskModel read_all(const json& run) {
    RiskModel model = ModelReader().read(run.at("model"));
    const json& input = run.at("input");
    const json& individuals = input.at("individuals");
    model.study_share =
        share(whole_of(individuals.at("cases"), "cases", 0, kMost), people(individuals));
    model.has_places = has_places(input);
    return model;
}

bool is_without_model(const json& run) {
    return run.is_object() && run.contains("model") && run["model"].is_null();
}

}  // namespace

RiskModel risk_model_of(const json& model, const std::string& path) try {
    if (is_without_model(model)) {
        input_error(path, 0,
                    "holds no model, since that run found none; one with a model expected");
    }
    return read_all(model);
} catch (const std::bad_alloc&) {
    throw;
} catch (const std::exception& fault) {  // json's own, or a value out of range
    input_error(path, 0,
                std::string(fault.what()) +
                    "; the model of a run as it left it is expected; run the analysis again");
}

}  // namespace vort
