// Whole runs of tiny studies: the program's own engine against the plain form, to the last byte.
//
// Several looks at each study. The engine's analysis with console text, on one to three threads:
// its console, its files. The stages without text, which take other paths, on another number of
// threads: ranking, designs, coefficients; or the analysis cut into tasks, with text, or without
// and by way of prepared files: its results, every statistic and count. Then the two stages that
// can be asked for a set of instructions, with each that the processor has, and the search of pairs
// with a cut-off that one pair just fails.
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
#include "support/cut_run.h"
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

std::string folder_of_runs() {
    static const Files files;
    return files.path() + "/";
}

void expect_reports(const PlainRun& plain) {
    const std::string folder = folder_of_runs();
    expect_text("P_value.txt", take(folder + "P_value.txt"), plain.pvalues);
    expect_text("Final_result.txt", take(folder + "Final_result.txt"), plain.report);
}

// The analysis as the bare program makes it.
void compare_analysis(const TinyStudy& study, const PlainRun& plain) {
    const std::string folder = folder_of_runs();
    StudyData data = data_of(study);
    std::ostringstream told;
    Diagnostics diagnostics(told);
    std::string console;
    std::string stopped = "goes on";
    Result result;
    try {
        result = analyse(
            data, study.settings, {.threads = study.threads, .folder = folder},
            [&](std::string_view text) { console += text; }, diagnostics);
    } catch (const Stop& stop) {
        stopped = std::to_string(stop.status) + ' ' + stop.text;
    }
    expect_text("the console text", testing::with_masked_seconds(console), plain.console);
    expect_text("the end", stopped, plain.stops ? plain.stopped : "goes on");
    expect_reports(plain);
    const std::string design = take(folder + "output_X_Y.txt");
    const std::string coefficients = take(folder + "beta.txt");
    expect_text("output_X_Y.txt", design, plain.stops ? plain.left_design : "");
    expect_text("beta.txt", coefficients, plain.stops ? plain.left_coefficients : "");
    if (!plain.stops) expect_result(result, plain.result);
}

// Permuted data sets in which the marker's p-value is no larger than observed.
std::uint32_t plainly_no_weaker(const PlainRun& plain, std::size_t marker) {
    const double observed = plain.data_sets.front().pvalues[marker];
    const auto permuted = std::span(plain.data_sets).subspan(1);
    return static_cast<std::uint32_t>(std::ranges::count_if(
        permuted, [&](const PlainDataSet& set) { return set.pvalues[marker] <= observed; }));
}

void expect_record(const RunRecord& record, const PlainRun& plain, bool screened) {
    for (int d = 0; d < static_cast<int>(plain.data_sets.size()); ++d) {
        const RunRecord::DataSet& told = record.data_sets.at(static_cast<std::size_t>(d));
        const PlainDataSet& set = plain.data_sets[static_cast<std::size_t>(d)];
        if (screened && !set.ranking.empty()) {
            require(told.best == set.ranking.front(), "the best marker as plainly");
            expect_bits(of("the smallest p-value", d), {&told.smallest_p, 1},
                        {&set.pvalues[static_cast<std::size_t>(told.best)], 1});
        }
        if (d >= plain.modelled) continue;
        expect_bits(of("the statistic", d), {&told.statistic, 1}, {&set.statistic, 1});
        require(told.learners == set.learners, "as many base learners as plainly");
    }
    if (!screened) return;
    expect_bits("the p-values", record.observed, plain.data_sets.front().pvalues);
    expect_list("the whole ranking", record.ranking, plain.data_sets.front().ranking);
    for (std::size_t j = 0; j < record.no_weaker.size(); ++j) {
        require(record.no_weaker[j] == plainly_no_weaker(plain, j), "EMP1 as plainly");
    }
}

// The analysis as it is cut into tasks: with console text, or without and with prepared files left,
// or by way of those.
enum class Cut { kTold, kSaving, kPrepared };

void compare_tasks(const TinyStudy& study, const PlainRun& plain, Cut cut) {
    const StudyData data = data_of(study);
    std::ostringstream told;
    Diagnostics diagnostics(told);
    const AnalysisOptions options{
        .threads = study.threads % 3 + 1, .console = cut == Cut::kTold, .folder = folder_of_runs()};
    TaskInput input{data, study.settings, options, diagnostics};
    input.fdr_report = cut == Cut::kSaving;
    const std::string prepared = options.folder + "prepared-";
    if (cut == Cut::kSaving) input.save_prepared = prepared;
    if (cut == Cut::kPrepared) input.prepared = prepared;
    const CutRun run(input, study.settings.builder.usable_markers(), 1 + study.detail / 3 % 4);
    expect_text("the end of the tasks", run.stopped, plain.stops ? plain.stopped : "goes on");
    if (plain.stops) return;
    expect_reports(plain);
    expect_result(run.merged.result, plain.result);
    expect_record(run.merged.record, plain, cut != Cut::kPrepared);
    if (cut == Cut::kTold) {
        expect_text("the console text of the tasks", testing::with_masked_seconds(run.console),
                    plain.console);
    }
    require(run.merged.fdr_report.empty() == !input.fdr_report, "a report where one was asked for");
}

// Whether the study is one that can be cut: labels, as many markers as are searched, and no more
// models than data sets, whose number a plan tells once for both.
bool can_be_cut(const TinyStudy& study) {
    const int best_m = study.settings.builder.usable_markers();
    const int permutations = study.settings.screening.permutations;
    return std::ranges::none_of(study.phenotypes, is_quantity) && best_m > 0 &&
           best_m <= study.markers() && permutations >= 0 &&
           study.settings.builder.permutations <= permutations;
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
    if (can_be_cut(study)) {
        if (study.detail % 3 == 1) compare_tasks(study, plain, Cut::kTold);
        if (study.detail % 6 == 2) {
            compare_tasks(study, plain, Cut::kSaving);
            compare_tasks(study, plain, Cut::kPrepared);
        }
    }
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
