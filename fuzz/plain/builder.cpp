#include "plain/builder.h"

#include <algorithm>
#include <numeric>

#include "common/chi_square_tail.h"
#include "csm/random_pair_study.h"

namespace vort::fuzz {

namespace {

bool is_odd(short phenotype) {
    return phenotype != 0 && phenotype != 1;
}

// Cases first, then the second half of them to the beginning of the second half of all.
void spread_cases(PlainData& data) {
    const int n = data.individuals();
    const auto exchange = [&](int a, int b) {
        std::swap(data.y[a], data.y[b]);
        std::swap(data.order[a], data.order[b]);
    };
    data.cases = static_cast<int>(std::ranges::count_if(data.y, [](double y) { return y > 0; }));
    for (int left = 0, right = data.cases; left < data.cases; ++left) {
        if (data.y[left] > 0) continue;
        while (!(data.y[right] > 0)) ++right;
        exchange(left, right);
    }
    for (int l = data.cases / 2, r = n / 2; l < data.cases && r < n; ++l, ++r) exchange(l, r);
}

void centre(PlainData& data) {
    double sum = 0;
    for (const double y : data.y) sum += y;
    data.mean = sum / data.individuals();
    double squares = 0;
    for (double& y : data.y) {
        y -= data.mean;
        squares += y * y;
    }
    data.sigma = squares / data.individuals();
}

// Genotypes drawn for the individuals that miss one, from the marker's frequencies.
std::vector<signed char> imputed(std::vector<signed char> column, testing::PlainGenerator& draw) {
    const auto count = [&](int code) { return double(std::ranges::count(column, code)); };
    const double known = double(column.size()) - count(-1);
    const double of_0 = count(0) / known;
    const double of_1 = count(1) / known;
    for (signed char& code : column) {
        if (code >= 0) continue;
        const double u = draw.next();
        code = u <= of_0 ? 0 : u <= of_0 + of_1 ? 1 : 2;
    }
    return column;
}

std::vector<signed char> in_places(const std::vector<signed char>& column,
                                   const std::vector<int>& order) {
    std::vector<signed char> out;
    for (const int i : order) out.push_back(column[i]);
    return out;
}

// The quick test of a set; cells are all codes there may be.
double quick_test(const PlainData& data, const MarkerSet& set, Transcript& text) {
    std::vector<double> sum(9);
    std::vector<int> count(9);
    for (int i = 0; i < data.individuals(); ++i) {
        const int first = data.codes[set.marker[0]][i];
        const int second = set.size == 1 ? 0 : data.codes[set.marker[1]][i];
        if (first < 0 || second < 0) continue;
        const int cell = set.size == 1 ? first : 3 * first + second;
        sum[cell] += data.y[i];
        ++count[cell];
    }
    const double ybar = std::accumulate(sum.begin(), sum.end(), 0.0) / data.individuals();
    double S = 0;
    int seen = 0;
    for (std::size_t cell = 0; cell < 9; ++cell) {
        if (count[cell] == 0) continue;
        const double deviation = sum[cell] / count[cell] - ybar;
        S += deviation * deviation * count[cell];
        ++seen;
    }
    return seen < 2 ? 0.5 : chi_square_upper_tail(seen - 1, S / data.sigma, text);
}

int markers_passed(double cutoff, double alpha, const std::vector<double>& pvalue,
                   const std::vector<int>& order) {
    const int N = static_cast<int>(pvalue.size()) - 1;
    int j = N;
    while (j > 0 && (cutoff / N <= pvalue[order[j]] / j || pvalue[order[j]] > alpha)) --j;
    return j;
}

class PlainBuilder {
  public:
    PlainBuilder(const BuilderSettings& settings, PlainCourse& course, PlainDesign& design)
        : settings_(settings), course_(course), design_(design), data_(design.data) {}

    void take_in(const testing::Columns& columns, std::span<const short> phenotypes,
                 std::span<const int> best) {
        const auto n = static_cast<std::size_t>(settings_.individuals);
        phenotypes_.assign(phenotypes.begin(), phenotypes.begin() + std::ptrdiff_t(n));
        course_.quantitative = course_.quantitative || std::ranges::any_of(phenotypes_, is_odd);
        data_.quantitative = course_.quantitative;
        data_.y.assign(phenotypes_.begin(), phenotypes_.end());
        data_.order.resize(n);
        std::iota(data_.order.begin(), data_.order.end(), 0);
        spread_cases(data_);
        centre(data_);
        for (int rank = 0; rank < settings_.usable_markers(); ++rank) {
            const auto& column = columns[static_cast<std::size_t>(best[rank])];
            data_.codes.push_back(in_places(column, data_.order));
            data_.imputed.push_back(in_places(imputed(column, course_.generator), data_.order));
        }
    }

    void tell_intake(bool permuted) {
        for (const short p : phenotypes_) {
            if (is_odd(p)) console() << "yy[i]=" << fixed(p) << '\n';
        }
        console() << "read data finished\n";
        const int shown = std::min(10, data_.individuals());
        for (int i = 0; i < shown; ++i) {
            const auto place = std::ranges::find(data_.order, i) - data_.order.begin();
            tell_individual(phenotypes_[i], static_cast<int>(place));
        }
        console() << (permuted ? "permutation\n" : "bakeup\n") << "mean=" << general(data_.mean)
                  << '\n';
        for (int i = 0; i < shown; ++i) tell_individual(data_.y[i], i);
    }

    // Sets of one size: tested, sorted, kept, clustered.
    std::vector<int> search(int size) {
        const int m = settings_.usable_markers();
        const int sets = size == 1 ? m : m * (m - 1) / 2;
        std::vector<double> pvalue{0};
        for (int number = 1; number <= sets; ++number) {
            if (number % (size == 1 ? 100 : 1000) == 0) console() << "j=" << number << '\n';
            pvalue.push_back(quick_test(data_, marker_set(size, number, m), console()));
        }
        std::vector<int> order = testing::sorted_plainly(pvalue);
        const auto passed = size == 1 ? markers_passed : testing::plainly_passed;
        if (size == 2) design_.pair_pvalues = pvalue;
        const int kept = std::min(settings_.max_retain,
                                  passed(settings_.fdr_cutoff, settings_.alpha, pvalue, order));
        return {order.begin() + 1, order.begin() + 1 + std::max(kept, 0)};
    }

    void cluster(int size, const std::vector<int>& numbers) {
        for (const int number : numbers) {
            std::string announcement;
            if (size == 2 && !course_.method_told) {
                announcement = "clustermethod=" + std::to_string(settings_.clustering) + '\n';
                course_.method_told = true;
            }
            const MarkerSet set = marker_set(size, number, settings_.usable_markers());
            const ClusterRecord record =
                plain_clustering(data_, set, settings_.markers, settings_.clustering, announcement,
                                 course_.generator, console());
            add_columns(record, set);
            design_.records.push_back(record.as_read_back());
        }
    }

    void finish() {
        if (design_.records.empty()) console() << "CSM get len=0\n";
        console() << "first step finish at calculating 1-item\n";
        for (const double y : data_.y) design_.response.push_back(as_read_back(fixed(y)));
        design_.complete = true;
    }

  private:
    Transcript& console() { return design_.console; }

    void tell_individual(double phenotype, int place) {
        console() << "Y=" << general(phenotype) << " X=";
        for (std::size_t j = 0; j < std::min<std::size_t>(10, data_.imputed.size()); ++j) {
            console() << static_cast<int>(data_.imputed[j][place]) << ' ';
        }
        console() << '\n';
    }

    void add_columns(const ClusterRecord& record, const MarkerSet& set) {
        for (int q = 0; q <= record.nonempty_groups - 2; ++q) {
            if (record.group_frequency[q] <= 0 || record.group_frequency[q] >= 1) continue;
            auto& column = design_.columns.emplace_back();
            for (int i = 0; i < data_.individuals(); ++i) {
                const int first = data_.imputed[set.marker[0]][i];
                const int code =
                    set.size == 1 ? first : 3 * first + data_.imputed[set.marker[1]][i];
                column.push_back(record.includes(code, q) ? 1 : 0);
            }
        }
    }

    const BuilderSettings& settings_;
    PlainCourse& course_;
    PlainDesign& design_;
    PlainData& data_;
    std::vector<short> phenotypes_;
};

}  // namespace

std::string PlainDesign::text() const {
    Transcript out(true);
    for (std::size_t i = 0; i < response.size(); ++i) {
        out << fixed(response[i]) << ' ';
        for (const auto& column : columns) out << static_cast<int>(column[i]) << ' ';
        out << '\n';
    }
    out << "para  " << response.size() << ' ' << columns.size() << '\n';
    for (std::size_t r = 0; r < records.size(); ++r) out << records[r].text(static_cast<int>(r));
    return std::string(out.text());
}

void build_plainly(const testing::Columns& columns, std::span<const short> phenotypes,
                   std::span<const int> best, const BuilderSettings& settings, bool permuted,
                   PlainCourse& course, PlainDesign& design) {
    PlainBuilder builder(settings, course, design);
    builder.take_in(columns, phenotypes, best);
    builder.tell_intake(permuted);
    design.kept_markers = builder.search(1);
    builder.cluster(1, design.kept_markers);
    if (settings.takes_pairs()) {
        design.kept_pairs = builder.search(2);
        builder.cluster(2, design.kept_pairs);
    }
    builder.finish();
}

}  // namespace vort::fuzz
