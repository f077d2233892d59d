// Whole runs of tiny studies: the program's own engine against the plain form, to the last byte.
//
// Several looks at each study. The engine's analysis with console text, on one to three threads:
// its console, its files, every statistic. The stages without text, which take other paths, on
// another number of threads: ranking, designs, coefficients; or the analysis without text, by way
// of prepared files. Then the two stages that can be asked for a set of instructions, with each
// that the processor has, and the search of pairs with a cut-off that one pair just fails.
//
// With VORT_FUZZ_STUDY=FOLDER in the environment nothing is compared: an input is written to the
// folder, which is there, as a study that the program can be run on.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "csm/pair_search.h"
#include "csm/random_pair_study.h"
#include "ensemble/model_stage.h"
#include "plain/run.h"
#include "screening/screening.h"
#include "support/builder_study.h"
#include "support/files.h"
#include "support/harness.h"
#include "support/instruction_sets.h"
#include "support/masked_seconds.h"
#include "vort/analysis.h"

namespace vort::fuzz {

namespace {

// The content of a file, which is removed; empty where there is none.
std::string take(const std::string& path) {
    const std::string text = read_file(path);
    ::unlink(path.c_str());
    return text;
}

[[noreturn]] void differ(const std::string& what, const std::string& fast,
                         const std::string& plain) {
    std::size_t at = 0;
    while (at < fast.size() && at < plain.size() && fast[at] == plain[at]) ++at;
    const std::size_t from = at < 200 ? 0 : at - 200;
    std::fprintf(stderr, "%s differs from byte %zu on\n--- fast\n%s\n--- plain\n%s\n", what.c_str(),
                 at, fast.substr(from, 400).c_str(), plain.substr(from, 400).c_str());
    std::abort();
}

void expect_text(const std::string& what, const std::string& fast, const std::string& plain) {
    if (fast != plain) differ(what, fast, plain);
}

// To the bit, but for the sign and payload of a NaN.
std::string bits_text(std::span<const double> values) {
    std::ostringstream text;
    for (const double value : values) text << value << '=' << testing::bits(value) << ' ';
    return text.str();
}

void expect_bits(const std::string& what, std::span<const double> fast,
                 std::span<const double> plain) {
    if (fast.size() == plain.size() &&
        std::ranges::equal(fast, plain, {}, testing::bits, testing::bits)) {
        return;
    }
    differ(what, bits_text(fast), bits_text(plain));
}

std::string list_text(std::span<const int> numbers) {
    std::string text;
    for (const int number : numbers) text += std::to_string(number) + ' ';
    return text;
}

void expect_list(const std::string& what, std::span<const int> fast, std::span<const int> plain) {
    if (!std::ranges::equal(fast, plain)) differ(what, list_text(fast), list_text(plain));
}

// Where a data set is meant.
std::string of(const char* what, int d) {
    return std::string(what) + " of data set " + std::to_string(d);
}

// What the analysis tells of each data set, as it comes.
class Comparison : public Observer {
  public:
    explicit Comparison(const PlainRun& plain) : plain_(plain) {}

    void screened(const ScreenedView& view) override {
        const PlainDataSet& set = plain_.data_sets.at(static_cast<std::size_t>(view.data_set));
        expect_bits(of("the p-values", view.data_set), view.pvalues, set.pvalues);
        const int best = set.ranking.empty() ? -1 : set.ranking.front();
        const double smallest = best < 0 ? 1 : set.pvalues[static_cast<std::size_t>(best)];
        expect_bits(of("the smallest p-value", view.data_set), {&view.smallest_pvalue, 1},
                    {&smallest, 1});
        if (view.data_set == 0) expect_list("the whole ranking", view.ranking, set.ranking);
    }
    void modelled(const ModelledView& view) override {
        require(view.data_set == modelled_++, "models come in order");
        require(view.data_set < plain_.modelled, "no more data sets are modelled than plainly");
        const PlainDataSet& set = plain_.data_sets[static_cast<std::size_t>(view.data_set)];
        expect_bits(of("the statistic", view.data_set), {&view.statistic, 1}, {&set.statistic, 1});
        require(view.learners == set.learners, "as many base learners as plainly");
    }

  private:
    const PlainRun& plain_;
    int modelled_ = 0;
};

StudyData data_of(const TinyStudy& study) {
    return {testing::packed(study.individuals(), study.columns), study.phenotypes, table_of(study)};
}

void expect_result(const Result& fast, const Result& plain) {
    require(fast.has_model == plain.has_model, "there is a model as plainly");
    expect_bits("the observed statistic", {&fast.observed, 1}, {&plain.observed, 1});
    expect_bits("the permuted statistics", fast.permuted, plain.permuted);
    expect_bits("the overall p-value", {&fast.pvalue, 1}, {&plain.pvalue, 1});
    expect_list("the list of the model's markers", fast.markers, plain.markers);
    expect_list("the list of importances", fast.importance, plain.importance);
    require(fast.columns.size() <= plain.columns.size(), "no more columns than plainly");
    expect_list("the list of the best columns", fast.columns,
                std::span(plain.columns).first(fast.columns.size()));
    require(fast.learners.size() == plain.learners.size(), "as many base learners as plainly");
    for (std::size_t b = 0; b < fast.learners.size(); ++b) {
        const BaseLearner& f = fast.learners[b];
        const BaseLearner& p = plain.learners[b];
        const std::string learner = "base learner " + std::to_string(b);
        expect_bits(learner, std::array{f.beta, f.importance, f.average},
                    std::array{p.beta, p.importance, p.average});
        expect_list(learner,
                    std::array{f.id, f.markers, f.marker[0], f.marker[1], f.group, f.carriers},
                    std::array{p.id, p.markers, p.marker[0], p.marker[1], p.group, p.carriers});
        expect_list(learner + ", its cells", f.cells, p.cells);
        expect_list(learner + ", its groups", f.cluster, p.cluster);
    }
}

// An analysis, and what it leaves.
struct FastRun {
    FastRun(const TinyStudy& study, AnalysisOptions options, Observer& observer) {
        static Files files;
        StudyData data = data_of(study);
        const std::string folder = files.path() + "/";
        options.folder = folder;
        if (!options.save_prepared.empty()) options.save_prepared.insert(0, folder);
        if (!options.prepared.empty()) options.prepared.insert(0, folder);
        std::ostringstream told;
        Diagnostics diagnostics(told);
        try {
            result = analyse(
                data, study.settings, options, [this](std::string_view text) { console += text; },
                diagnostics, observer);
        } catch (const Stop& stop) {
            stopped = std::to_string(stop.status) + ' ' + stop.text;
        }
        pvalues = take(folder + "P_value.txt");
        report = take(folder + "Final_result.txt");
        left_design = take(folder + "output_X_Y.txt");
        left_coefficients = take(folder + "beta.txt");
        take(folder + "FDR_results.txt");
    }

    Result result;
    std::string stopped = "goes on";
    std::string console, pvalues, report, left_design, left_coefficients;
};

void expect_end(const FastRun& fast, const PlainRun& plain) {
    expect_text("the end", fast.stopped, plain.stops ? plain.stopped : "goes on");
    expect_text("P_value.txt", fast.pvalues, plain.pvalues);
    expect_text("Final_result.txt", fast.report, plain.report);
    expect_text("output_X_Y.txt", fast.left_design, plain.stops ? plain.left_design : "");
    expect_text("beta.txt", fast.left_coefficients, plain.stops ? plain.left_coefficients : "");
    if (!plain.stops) expect_result(fast.result, plain.result);
}

// The analysis as the program makes it.
void compare_analysis(const TinyStudy& study, const PlainRun& plain) {
    AnalysisOptions options;
    options.threads = study.threads;
    options.rank_all = true;
    Comparison comparison(plain);
    const FastRun fast(study, options, comparison);
    expect_text("the console text", testing::with_masked_seconds(fast.console), plain.console);
    expect_end(fast, plain);
}

// Without text, by prepared files that another analysis has left; they hold phenotypes 0 and 1.
void compare_prepared(const TinyStudy& study, const PlainRun& plain) {
    AnalysisOptions options;
    options.threads = study.threads % 3 + 1;
    options.console = false;
    options.fdr_report = true;
    options.save_prepared = "prepared-";
    Observer nobody;
    expect_end(FastRun(study, options, nobody), plain);
    if (std::ranges::any_of(study.phenotypes, is_quantity)) return;
    options.fdr_report = false;
    options.prepared.swap(options.save_prepared);
    expect_end(FastRun(study, options, nobody), plain);
}

// The stages one by one, without text.
void compare_quiet_stages(const TinyStudy& study, const PlainRun& plain) {
    const int threads = study.threads % 3 + 1;
    const StudyData data = data_of(study);
    const int permuted = study.settings.screening.permutations;
    PhenotypeRows phenotypes(data.phenotypes);
    Generator generator;
    phenotypes.permute(permuted, generator, threads);
    ScreeningOptions screening;
    screening.threads = threads;
    screening.transcript = false;
    screening.kept = std::min(study.settings.builder.usable_markers(), study.markers());
    screening.batch_bytes = 16.0 * study.markers();
    std::ostringstream told;
    Diagnostics diagnostics(told);
    std::vector<std::vector<int>> best;
    screen_data_sets(data.genotypes, phenotypes, data.markers, screening, diagnostics,
                     [&](int d, ScreenedDataSet&& screened) {
                         const PlainDataSet& set = plain.data_sets[static_cast<std::size_t>(d)];
                         require(phenotypes.row(d) == set.phenotypes, "phenotypes as plainly");
                         expect_list(of("the ranking", d), screened.best,
                                     std::span(set.ranking).first(screened.best.size()));
                         best.push_back(std::move(screened.best));
                     });
    if (plain.modelled == 0) return;
    ModelStage stage(data.genotypes, phenotypes, best, study.settings.builder, threads, false);
    stage.run(0, plain.modelled, [&](int d, const ModelledDataSet& modelled) {
        const PlainDataSet& set = plain.data_sets[static_cast<std::size_t>(d)];
        require(!modelled.stopped && modelled.design, "no data set stops that does not plainly");
        expect_text(of("the design", d), modelled.design->text(), set.design.text());
        expect_bits(of("the statistic", d), {&modelled.statistic, 1}, {&set.statistic, 1});
        expect_text(of("the coefficients", d),
                    modelled.selection ? coefficient_text(*modelled.selection) : "",
                    set.coefficients);
    });
}

// P-values of all markers in all data sets, by one set of instructions.
void compare_screening(const TinyStudy& study, const PlainRun& plain, Instructions set) {
    const StudyData data = data_of(study);
    PhenotypeRows phenotypes(data.phenotypes);
    for (std::size_t d = 1; d < plain.data_sets.size(); ++d) {
        phenotypes.add(plain.data_sets[d].phenotypes);
    }
    const int cases = static_cast<int>(std::ranges::count(data.phenotypes, 1));
    const GroupSizes sizes{cases, study.individuals() - cases};
    const ScreeningStudy shared{data.genotypes, sizes, missing_limits(sizes), set};
    const CasePlanes planes(phenotypes, 0, phenotypes.count());
    const auto markers = static_cast<std::size_t>(study.markers());
    std::vector<double> minima(markers * plain.data_sets.size());
    std::vector<Findings> findings(plain.data_sets.size());
    StretchScreening(shared, planes).screen(0, study.markers(), {minima.data(), markers}, findings);
    for (std::size_t d = 0; d < plain.data_sets.size(); ++d) {
        expect_bits(of("the p-values by instructions", static_cast<int>(d)),
                    std::span(minima).subspan(d * markers, markers), plain.data_sets[d].pvalues);
    }
}

// What the step-up rule for pairs is asked.
struct PairCut {
    double cutoff;
    double alpha;
    int most;
};

// The cut-off at which the pair at some place just fails, with p-values up to its own or to any.
PairCut narrow_cut(const PlainDesign& design, int detail) {
    std::vector<double> pvalue = design.pair_pvalues;
    const std::vector<int> order = testing::sorted_plainly(pvalue);
    const int N = static_cast<int>(pvalue.size()) - 1;
    const int place = 1 + detail % N;
    double H = 0;
    for (int t = 1; t <= N; ++t) H += 1.0 / t;
    for (int t = N; t > place; --t) H -= 1.0 / t;
    const double p = pvalue[order[place]];
    const double slack = detail % 3 == 0 ? 1 - 1e-3 : 1;
    return {p / place * H * N * slack, detail % 5 == 0 ? p : 2, N};
}

void compare_cut(const TinyStudy& study, const PlainDesign& design, const PairCut& cut,
                 Instructions set) {
    const PlainData& data = design.data;
    MarkerPlanes planes(data.individuals(), static_cast<int>(data.codes.size()));
    for (std::size_t j = 0; j < data.codes.size(); ++j) {
        planes.set(static_cast<int>(j), data.codes[j]);
    }
    std::vector<double> pvalue = design.pair_pvalues;
    const std::vector<int> order = testing::sorted_plainly(pvalue);
    const int passed = testing::plainly_passed(cut.cutoff, cut.alpha, pvalue, order);
    const int kept = std::max(std::min(cut.most, passed), 0);
    Transcript text(false);
    const PairSearchResult found = search_pairs({planes, data.y, data.sigma}, cut.cutoff, cut.alpha,
                                                cut.most, study.threads, text, set);
    expect_list("the list of kept pairs", found.kept,
                std::span(order).subspan(1, static_cast<std::size_t>(kept)));
}

// The pairs that are kept of the first data set, by one set of instructions.
void compare_pairs(const TinyStudy& study, const PlainRun& plain, Instructions set) {
    const BuilderSettings& settings = study.settings.builder;
    const PlainDesign& design = plain.data_sets.front().design;
    if (design.pair_pvalues.size() < 2) return;
    compare_cut(study, design, {settings.fdr_cutoff, settings.alpha, settings.max_retain}, set);
    compare_cut(study, design, narrow_cut(design, study.detail), set);
}

// Whether sizes that are not those of the study's data would be refused, or are those after all.
bool sizes_are_right(const TinyStudy& study) {
    std::ostringstream told;
    Diagnostics diagnostics(told);
    const bool goes_on = accepts([&] {
        check_best_markers(study.settings.screening);
        check_sizes(study.settings, {}, false, diagnostics);
    });
    const ScreeningSettings& asked = study.settings.screening;
    return goes_on && asked.individuals == study.individuals() &&
           asked.markers == study.markers() && asked.permutations <= 6;
}

void compare(const TinyStudy& study) {
    if (study.odd_sizes && !sizes_are_right(study)) return;
    const PlainRun plain(study);
    compare_analysis(study, plain);
    if (study.detail % 3 == 0) compare_quiet_stages(study, plain);
    if (study.detail % 6 == 1) compare_prepared(study, plain);
    for (const Instructions set : testing::instruction_sets()) {
        compare_screening(study, plain, set);
        compare_pairs(study, plain, set);
    }
}

}  // namespace

}  // namespace vort::fuzz

// Short stacks of allocations, which are many.
extern "C" const char* __asan_default_options() {
    return "malloc_context_size=3";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const vort::fuzz::TinyStudy study = vort::fuzz::tiny_study({data, size});
    if (const char* const folder = std::getenv("VORT_FUZZ_STUDY")) {
        vort::fuzz::write_study(study, std::string(folder) + '/');
    } else {
        vort::fuzz::compare(study);
    }
    return 0;
}
