// A model applied to another study: sections model and bim, the study's markers; its genotypes are
// made up. Of an accepted model
//
//   - every risk is a number, and whether somebody has a base learner is 1, 0 or open;
//   - the table has its columns, and an evaluation is read back as it was written;
//   - with all alleles of the study exchanged, and the other ones counted, the table is the same,
//     where alleles say what is counted.
#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "prediction/evaluation.h"
#include "prediction/prediction_file.h"
#include "results/model_json.h"
#include "study/bim_file.h"
#include "support/files.h"
#include "support/harness.h"
#include "support/sections.h"

namespace vort::fuzz {

namespace {

constexpr int kPeople = 29;

struct OtherStudy {
    std::vector<MarkerInfo> markers;
    Genotypes genotypes;
};

int code_of(int i, int j) {
    return (7 * i + 5 * j + i * j / 3) % 4 - 1;
}

// `exchanged`: A1 and A2 have changed places, and the copies of the other one are counted.
OtherStudy study_of(std::vector<MarkerInfo> markers, bool exchanged) {
    constexpr unsigned kBits[] = {1, 3, 2, 0};
    const auto count = static_cast<int>(markers.size());
    LargeArray<unsigned char> columns(packed_size(kPeople) * markers.size());
    for (int j = 0; j < count; ++j) {
        for (int i = 0; i < kPeople; ++i) {
            const int code = code_of(i, j);
            const int counted = exchanged && code >= 0 ? 2 - code : code;
            columns.data()[packed_size(kPeople) * static_cast<std::size_t>(j) +
                           static_cast<std::size_t>(i / 4)] |=
                static_cast<unsigned char>(kBits[counted + 1] << 2 * (i % 4));
        }
    }
    if (exchanged) {
        for (MarkerInfo& marker : markers) std::swap(marker.a1, marker.a2);
    }
    return {std::move(markers), Genotypes(kPeople, count, std::move(columns))};
}

bool is_decided(const MarkerMatch& match, const RiskModel& model, std::size_t k,
                const OtherStudy& study) {
    if (!match.found()) return true;
    const MarkerInfo& here = study.markers[static_cast<std::size_t>(match.column)];
    const MarkerInfo& there = model.markers[k];
    const auto alike = [](const MarkerInfo& marker) {
        return marker.a1.size() == 1 && marker.a2.size() == 1
                   ? std::tolower(marker.a1[0]) == std::tolower(marker.a2[0])
                   : marker.a1 == marker.a2;
    };
    return match.fit != AlleleFit::kNameless && !alike(here) && !alike(there);
}

class Applied {
  public:
    Applied(const RiskModel& model, const OtherStudy& study)
        : matches_(match_markers(model.markers, study.markers, model.has_places)),
          predictions_(predict(model, matches_, study.genotypes)) {
        require(matches_.size() == model.markers.size(), "every marker has its match");
        for (std::size_t k = 0; k < matches_.size(); ++k) {
            decided_ = decided_ && is_decided(matches_[k], model, k, study);
        }
        for (const std::string& note : match_notes(model.markers, study.markers, matches_)) {
            require(note.ends_with('.'), "a note is a sentence");
        }
        require_sound(model);
        write(model);
    }

    bool decided() const { return decided_; }
    const std::string& table() const { return table_; }
    const Predictions& predictions() const { return predictions_; }

  private:
    void require_sound(const RiskModel& model) const {
        for (std::size_t i = 0; i < kPeople; ++i) {
            require(std::isfinite(predictions_.risk[i]), "a risk is a number");
            for (std::size_t b = 0; b < model.learners.size(); ++b) {
                const int has = predictions_.has(i, b);
                require(has >= -1 && has <= 1, "a base learner is had, not had, or open");
            }
        }
    }

    void write(const RiskModel& model) {
        Transcript out(true);
        const std::vector<Individual> people(kPeople, {"f", "i", 0});
        const std::vector<short> phenotypes(kPeople, kNoPhenotype);
        put_predictions(people, phenotypes, model, predictions_, out);
        table_ = out.text();
        const auto tabs = static_cast<std::size_t>(std::ranges::count(table_, '\t'));
        require(tabs == (kPeople + 1) * (4 + model.learners.size()), "the table has its columns");
    }

    std::vector<MarkerMatch> matches_;
    Predictions predictions_;
    bool decided_ = true;
    std::string table_;
};

void require_evaluation(const Predictions& predictions, double share) {
    std::vector<short> phenotypes;
    phenotypes.reserve(kPeople);
    for (int i = 0; i < kPeople; ++i) phenotypes.push_back(static_cast<short>(i % 3 - 1));
    const nlohmann::json written = evaluation_json(evaluate(predictions.risk, phenotypes, share));
    require(nlohmann::json(evaluation_json(read_evaluation(written))) == written,
            "an evaluation is read as it was written");
}

void run(std::string_view text) {
    static Files files;
    const Sections input(text);
    const std::string path = files.put("model.json", input["model"]);
    const std::string bim = files.put("bim", input["bim"]);
    RiskModel model;
    std::vector<MarkerInfo> markers;
    if (!accepts([&] {
            model = risk_model_of(read_model(path), path);
            markers = read_bim(bim);
        })) {
        return;
    }
    const Applied one(model, study_of(markers, false));
    require_evaluation(one.predictions(), model.study_share);
    const Applied other(model, study_of(markers, true));
    if (!one.decided() || !other.decided()) return;
    require(one.table() == other.table(), "exchanged alleles change nothing");
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
