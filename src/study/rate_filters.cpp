// Counting is done on bit planes of a column, with a plane for each kind of people that a filter
// counts over; missing genotypes of a person are counted one by one, since they are few.
//
// Cost: one pass over the genotypes for --mind, and one for the others together.
#include "study/rate_filters.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <mutex>

#include "common/number_text.h"
#include "common/parallel.h"
#include "study/chromosome_names.h"
#include "study/hardy_weinberg.h"

namespace vort {

namespace {

constexpr double kTolerance = 1.0 / (std::int64_t{1} << 44);

using Plane = std::vector<std::uint64_t>;

struct Counts {
    int people = 0;
    int one = 0;
    int two = 0;
    int missing = 0;

    int none() const { return people - one - two - missing; }
};

// Memory for the planes of one column.
class ColumnPlanes {
  public:
    explicit ColumnPlanes(const Genotypes& genotypes)
        : genotypes_(genotypes), words_(plane_words(genotypes.individuals())) {
        for (Plane* plane : {&one_, &two_, &missing_}) plane->resize(words_);
    }

    void load(int column) {
        genotypes_.planes(column, {one_.data(), two_.data(), missing_.data()});
    }

    Counts counts(const Plane& who) const {
        Counts counts;
        for (std::size_t w = 0; w < words_; ++w) {
            counts.people += std::popcount(who[w]);
            counts.one += std::popcount(who[w] & one_[w]);
            counts.two += std::popcount(who[w] & two_[w]);
            counts.missing += std::popcount(who[w] & missing_[w]);
        }
        return counts;
    }

    // visit(row) for each of `who` that misses the genotype.
    template <typename Visit>
    void visit_missing(const Plane& who, Visit visit) const {
        for (std::size_t w = 0; w < words_; ++w) {
            for (std::uint64_t bits = who[w] & missing_[w]; bits != 0; bits &= bits - 1) {
                visit(64 * w + static_cast<std::size_t>(std::countr_zero(bits)));
            }
        }
    }

  private:
    const Genotypes& genotypes_;
    std::size_t words_;
    Plane one_, two_, missing_;
};

// body(begin, end) for stretches of a cohort's columns, whose memory is let go behind it.
template <typename Body>
void for_column_stretches(const Cohort& cohort, int threads, Body body) {
    const std::size_t stride = std::max<std::size_t>(1, cohort.genotypes.stride());
    const std::size_t size = std::max<std::size_t>(1, (std::size_t{2} << 20) / stride);
    for_each_stretch(threads, cohort.columns.size(), size, [&](std::size_t begin, std::size_t end) {
        body(begin, end);
        cohort.genotypes.let_go(cohort.columns[begin], cohort.columns[end - 1] + 1);
    });
}

bool too_many(int missing, int of, double limit) {
    return missing > limit * (1 + kTolerance) * of;
}

// Planes over the rows of the genotypes.
class People {
  public:
    People(const Cohort& cohort, const Members& members) {
        const std::size_t words = plane_words(cohort.genotypes.individuals());
        for (Plane* plane : {&all, &males, &founders, &founder_males, &founder_others, &controls,
                             &control_others}) {
            plane->resize(words);
        }
        for (std::size_t i = 0; i < members.people.size(); ++i) {
            add(static_cast<std::size_t>(cohort.rows[i]), members.people[i], members.phenotypes[i]);
        }
    }

    Plane all, males;
    Plane founders, founder_males, founder_others;  // others: not known to be male
    Plane controls, control_others;                 // founders

  private:
    void add(std::size_t row, const Person& person, short phenotype) {
        const bool male = person.name.sex == 1;
        const auto set = [row](Plane& plane, bool yes) {
            plane[row / 64] |= std::uint64_t{yes} << row % 64;
        };
        set(all, true);
        set(males, male);
        set(founders, person.founder);
        set(founder_males, person.founder && male);
        set(founder_others, person.founder && !male);
        set(controls, person.founder && phenotype == 0);
        set(control_others, person.founder && phenotype == 0 && !male);
    }
};

// Of each row, over the markers on chromosome Y or the others.
struct MissingCounts {
    std::vector<int> on_y, elsewhere;
};

MissingCounts count_missing(const Cohort& cohort, const People& people, int threads) {
    const auto rows = static_cast<std::size_t>(cohort.genotypes.individuals());
    MissingCounts counts{std::vector<int>(rows), std::vector<int>(rows)};
    std::mutex mutex;
    for_column_stretches(cohort, threads, [&](std::size_t begin, std::size_t end) {
        MissingCounts part{std::vector<int>(rows), std::vector<int>(rows)};
        ColumnPlanes planes(cohort.genotypes);
        for (std::size_t j = begin; j < end; ++j) {
            planes.load(cohort.columns[j]);
            const bool y = cohort.markers[j].chromosome == kChromosomeY;
            auto& into = y ? part.on_y : part.elsewhere;
            planes.visit_missing(people.all, [&](std::size_t row) { ++into[row]; });
        }
        const std::scoped_lock lock(mutex);
        for (std::size_t i = 0; i < rows; ++i) {
            counts.on_y[i] += part.on_y[i];
            counts.elsewhere[i] += part.elsewhere[i];
        }
    });
    return counts;
}

void apply_mind(double limit, int threads, Cohort& cohort, Members& members, Study& study) {
    const MissingCounts missing = count_missing(cohort, People(cohort, members), threads);
    const auto on_y = static_cast<int>(
        std::count_if(cohort.markers.begin(), cohort.markers.end(),
                      [](const MarkerInfo& m) { return m.chromosome == kChromosomeY; }));
    const int elsewhere = static_cast<int>(cohort.markers.size()) - on_y;
    const long gone = members.take_out(cohort.rows, [&](std::size_t i) {
        const bool male = members.people[i].name.sex == 1;
        const auto row = static_cast<std::size_t>(cohort.rows[i]);
        return too_many(missing.elsewhere[row] + (male ? missing.on_y[row] : 0),
                        elsewhere + (male ? on_y : 0), limit);
    });
    leave_out(study, LeftOut::What::kIndividuals, gone, "--mind " + to_text(general(limit)));
}

// Copies of an allele among the alleles seen.
struct Share {
    int copies = 0;
    int of = 0;

    void add_diploid(const Counts& counts) {
        copies += counts.one + 2 * counts.two;
        of += 2 * (counts.people - counts.missing);
    }
    void add_haploid(const Counts& counts) {
        copies += counts.two;
        of += counts.two + counts.none();
    }
};

double minor_frequency(const ColumnPlanes& planes, int chromosome, const People& people) {
    Share share;
    if (chromosome == kChromosomeX || chromosome == kChromosomeY) {
        share.add_haploid(planes.counts(people.founder_males));
        if (chromosome == kChromosomeX) share.add_diploid(planes.counts(people.founder_others));
    } else {
        share.add_diploid(planes.counts(people.founders));
    }
    if (share.of == 0) return 0.5;
    return static_cast<double>(std::min(share.copies, share.of - share.copies)) / share.of;
}

bool out_of_proportion(const ColumnPlanes& planes, int chromosome, const People& people,
                       double limit) {
    if (chromosome == kChromosomeY || chromosome == kChromosomeMT) return false;
    const Counts counts =
        planes.counts(chromosome == kChromosomeX ? people.control_others : people.controls);
    return hardy_weinberg_p(counts.one, counts.two, counts.none()) < limit * (1 - kTolerance);
}

enum class Fault : unsigned char { kNone, kGeno, kHwe, kMaf };

// The first filter that the marker does not pass.
Fault fault_of(const Filters& filters, const ColumnPlanes& planes, int chromosome,
               const People& people) {
    if (filters.geno) {
        const Counts counts = planes.counts(chromosome == kChromosomeY ? people.males : people.all);
        if (too_many(counts.missing, counts.people, *filters.geno)) return Fault::kGeno;
    }
    if (filters.hwe && out_of_proportion(planes, chromosome, people, *filters.hwe)) {
        return Fault::kHwe;
    }
    if (filters.maf &&
        minor_frequency(planes, chromosome, people) < *filters.maf * (1 - kTolerance)) {
        return Fault::kMaf;
    }
    return Fault::kNone;
}

void take_out_markers(Cohort& cohort, const std::vector<Fault>& faults) {
    std::size_t left = 0;
    for (std::size_t j = 0; j < faults.size(); ++j) {
        if (faults[j] != Fault::kNone) continue;
        if (left < j) cohort.markers[left] = std::move(cohort.markers[j]);
        cohort.columns[left++] = cohort.columns[j];
    }
    cohort.markers.resize(left);
    cohort.columns.resize(left);
}

void apply_marker_filters(const Filters& filters, int threads, Cohort& cohort,
                          const Members& members, Study& study) {
    const People people(cohort, members);
    std::vector<Fault> faults(cohort.columns.size());
    for_column_stretches(cohort, threads, [&](std::size_t begin, std::size_t end) {
        ColumnPlanes planes(cohort.genotypes);
        for (std::size_t j = begin; j < end; ++j) {
            planes.load(cohort.columns[j]);
            faults[j] = fault_of(filters, planes, cohort.markers[j].chromosome, people);
        }
    });
    const auto tell = [&](Fault fault, const char* option, std::optional<double> limit) {
        const auto count = std::count(faults.begin(), faults.end(), fault);
        if (count == 0) return;
        leave_out(study, LeftOut::What::kMarkers, count, option + to_text(general(*limit)));
    };
    tell(Fault::kGeno, "--geno ", filters.geno);
    tell(Fault::kHwe, "--hwe ", filters.hwe);
    tell(Fault::kMaf, "--maf ", filters.maf);
    take_out_markers(cohort, faults);
}

}  // namespace

void apply_rate_filters(const Filters& filters, int threads, Cohort& cohort, Members& members,
                        Study& study) {
    if (filters.mind) apply_mind(*filters.mind, threads, cohort, members, study);
    if (filters.geno || filters.hwe || filters.maf) {
        apply_marker_filters(filters, threads, cohort, members, study);
    }
}

}  // namespace vort
