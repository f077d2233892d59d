#include "plain/run.h"

#include <algorithm>
#include <cmath>

#include "common/stop.h"
#include "ensemble/final_report.h"
#include "numeric/index_sort.h"
#include "plain/selection.h"
#include "screening/plain_screening.h"

namespace vort::fuzz {

namespace {

class Running {
  public:
    Running(const TinyStudy& study, PlainRun& run)
        : study_(study),
          settings_(study.settings),
          run_(run),
          result_(run.result),
          genotypes_(testing::packed(study.individuals(), study.columns)),
          importance_(static_cast<std::size_t>(settings_.builder.usable_markers()) + 1) {}

    void run() {
        screen();
        introduce();
        model(0);
        take_observed();
        if (result_.has_model) {
            permutations();
        } else {
            result_.observed = 0.5;
            result_.permuted.assign(static_cast<std::size_t>(permuted()), 0.5);
        }
        result_.columns = run_.data_sets[0].ranking;
        list_markers();
        report();
    }

    void tell() { run_.console += console_.text(); }

  private:
    int permuted() const { return std::max(settings_.builder.permutations, 0); }

    void screen() {
        testing::PlainGenerator generator;
        for (int d = 0; d <= settings_.screening.permutations; ++d) {
            PlainDataSet& set = run_.data_sets.emplace_back();
            set.phenotypes = d == 0 ? study_.phenotypes
                                    : testing::shuffled(
                                          run_.data_sets[std::size_t(d) - 1].phenotypes, generator);
            const testing::PlainScreening screened(genotypes_, set.phenotypes);
            set.ranking = screened.ranking;
            set.pvalues.assign(screened.all.minimum.begin() + 1, screened.all.minimum.end());
            console_ << "time of pvalue T\n" << screened.text;
        }
    }

    void introduce() {
        print_warnings(settings_.file, console_);
        print_warnings(settings_.file, console_);
        console_ << "test_method=newCSM\nnmarker=" << settings_.builder.markers
                 << "\nnsample=" << settings_.builder.individuals << '\n';
        need("individuals (Sample_size)", settings_.builder.individuals, study_.individuals());
        need("markers (Best_m)", settings_.builder.markers, study_.markers());
        need("permuted data sets (Number_of_permutation)", settings_.builder.permutations,
             settings_.screening.permutations);
    }

    static void need(const char* what, int wanted, int there) {
        if (wanted <= there) return;
        stop("find error, the ensemble stage needs " + std::to_string(wanted) + ' ' + what +
             " but only " + std::to_string(there) + " were screened\n");
    }

    // Builder and selector.
    void model(int d) {
        PlainDataSet& set = run_.data_sets[static_cast<std::size_t>(d)];
        console_ << "csm begin\n";
        try {
            build_plainly(study_.columns, set.phenotypes, set.ranking, settings_.builder, d > 0,
                          course_, set.design);
        } catch (const Stop&) {
            console_.add(set.design.console);
            throw;
        }
        console_.add(set.design.console);
        console_ << "csm end\n";
        run_.left_design = set.design.text();
        if (!set.design.columns.empty()) select(set);
        run_.modelled = d + 1;
    }

    void select(PlainDataSet& set) {
        selection_ = select_plainly(set.design.response, set.design.columns, console_);
        set.statistic = selection_.ratio;
        set.learners = selection_.nonzero;
        set.coefficients = run_.left_coefficients = coefficient_text(selection_);
    }

    void take_observed() {
        const PlainDataSet& set = run_.data_sets.front();
        result_.observed = set.statistic;
        if (set.design.records.empty()) {
            console_ << "CSM Method find there aren't any model for the data\n";
            return;
        }
        const bool selected = !set.coefficients.empty();
        const Coefficients read =
            selected ? read_coefficients(selection_, console_) : Coefficients();
        if (set.learners == 0) {
            console_ << "LARS Method find there aren't any model for the data\n";
            return;
        }
        record_learners(set.design, read);
        for (double& importance : importance_) importance = std::fabs(importance);
        const double most = *std::ranges::max_element(importance_);
        for (std::size_t i = 1; i < importance_.size(); ++i) {
            if (importance_[i] / most > 0) result_.has_model = true;
        }
    }

    // Columns are those of the groups of the records, in their order.
    void record_learners(const PlainDesign& design, const Coefficients& read) {
        std::size_t b = 0;
        for (std::size_t r = 0; r < design.records.size(); ++r) {
            const ClusterRecord& record = design.records[r];
            console_ << "BCIpointer->Nozerogroupnum=" << record.nonempty_groups << '\n';
            record.show(console_);
            int told = 0;
            for (int q = 0; q <= record.nonempty_groups - 2; ++q) {
                if (record.group_frequency[q] <= 0 || record.group_frequency[q] >= 1) continue;
                if (b < read.beta.size() && read.beta[b] != 0) {
                    add_learner(design, r, q, told++, b, read);
                }
                ++b;
            }
            if (told > 0) record.show(console_);
        }
        if (b != read.beta.size()) console_ << "nC=" << read.beta.size() << " q=" << b << '\n';
    }

    void add_learner(const PlainDesign& design, std::size_t r, int q, int told, std::size_t b,
                     const Coefficients& read) {
        const ClusterRecord& record = design.records[r];
        const MarkerSet set =
            marker_set(record.marker_count, record.combination_index, record.marker_total);
        BaseLearner learner;
        learner.id = static_cast<int>(result_.learners.size()) + 1;
        learner.markers = set.size;
        learner.beta = read.beta[b];
        learner.importance = std::fabs(learner.beta) / set.size / read.mean_square[b];
        learner.average = record.group_average[q];
        learner.group = q;
        learner.carriers = static_cast<int>(std::ranges::count(design.columns[b], 1.0));
        for (int l = 0; l < set.size; ++l) {
            learner.marker[l] = set.marker[l] + 1;
            double& importance = importance_[learner.marker[l]];
            importance += learner.importance;
            console_ << "importantfactor[" << learner.marker[l] << "]=" << general(importance)
                     << " beta[q]=" << general(learner.beta) << '\n';
        }
        learner.cells = record.show_codes(told, console_);
        console_ << "group k=" << q << " beta[" << b << "]=>markerset=" << r << '\n';
        for (int code = 0; code < learner.cell_count(); ++code) {
            for (int other = record.groups() - 1; other >= 0; --other) {
                if (record.includes(code, other)) learner.cluster[code] = other;
            }
        }
        result_.learners.push_back(learner);
    }

    void permutations() {
        int stronger = 0;
        for (int d = 1; d <= permuted(); ++d) {
            console_ << "permutation = " << d - 1 << " \n";
            model(d);
            const double S = run_.data_sets[static_cast<std::size_t>(d)].statistic;
            if (S < result_.observed) ++stronger;
            result_.permuted.push_back(S);
            console_ << "Cp0=" << general(result_.observed) << " Cp_per=" << general(S) << '\n';
        }
        result_.pvalue = static_cast<double>(stronger) / settings_.builder.permutations;
        console_ << "pvalue=" << general(result_.pvalue) << '\n';
    }

    // Markers of positive importance, the largest first.
    void list_markers() {
        const int m = static_cast<int>(importance_.size()) - 1;
        const double most = *std::ranges::max_element(importance_);
        std::vector<int> order(importance_.size());
        Quickindex(importance_.data(), order.data(), m);
        std::string in_model(static_cast<std::size_t>(std::max(settings_.builder.markers + 1, 0)),
                             '0');
        for (int position = m; position >= 1 && result_.has_model; --position) {
            const int marker = order[position];
            if (!(importance_[marker] / most > 0)) continue;
            in_model[marker] = '1';
            result_.markers.push_back(marker);
            result_.importance.push_back(truncated(importance_[marker]));
        }
        const bool significant = result_.has_model && result_.pvalue < 0.05;
        console_ << (significant ? "Best marker is " : "drop marker is ");
        for (const int marker : result_.markers) console_ << marker << ' ';
        console_ << (significant ? "\nImportantmeasure is " : "\nimportantmeasure is ");
        for (const int measure : result_.importance) console_ << measure << ' ';
        console_ << '\n' << in_model << '\n';
    }

    void report() {
        run_.pvalues = pvalue_text(result_);
        run_.report = report_text({settings_, genotypes_, study_.phenotypes}, result_, console_);
        run_.report += marker_names_text(settings_, result_, table_of(study_));
    }

    const TinyStudy& study_;
    const Settings& settings_;
    PlainRun& run_;
    Result& result_;
    Genotypes genotypes_;
    std::vector<double> importance_;  // of markers 1 .. m
    PlainCourse course_;
    Selection selection_;
    Transcript console_{true};
};

}  // namespace

PlainRun::PlainRun(const TinyStudy& study) {
    Running running(study, *this);
    try {
        running.run();
    } catch (const Stop& stop) {
        stops = true;
        stopped = std::to_string(stop.status) + ' ' + stop.text;
    }
    running.tell();
}

}  // namespace vort::fuzz
