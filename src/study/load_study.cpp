// From files to a study, in the order in which PLINK 1.9 leaves things out, so that counts can be
// compared: markers by name and place, people by name, people by their missing genotypes, markers
// by their genotypes. People without a phenotype go last, since the filters count over them.
#include <algorithm>
#include <array>
#include <numeric>
#include <unordered_map>

#include "common/input_error.h"
#include "study/cohort.h"
#include "study/compaction.h"
#include "study/person_names.h"
#include "study/phenotype.h"
#include "study/rate_filters.h"
#include "study/within.h"
#include "study/word_lines.h"

namespace vort {

namespace {

std::unique_ptr<CohortReader> reader_for(const StudyRequest& request, Study& study) {
    switch (request.files.format) {
        case StudyFormat::kBed:
            return bed_reader(request.files, study);
        case StudyFormat::kVcf:
            return vcf_reader(request.files, study);
        case StudyFormat::kRaw:
            return raw_reader(request.files, study);
        case StudyFormat::kDirectory:
            return directory_reader(request.files, request.threads, study);
    }
    return nullptr;
}

// People and what is told of them, before any genotype is read.
struct Census {
    People people;
    Phenotypes phenotypes;
    ClusterLabels clusters;
    std::vector<int> wanted;
    Study told;  // by --keep and --remove, which come after the choice of markers
};

Census take_census(CohortReader& reader, const StudyRequest& request, Study& study) {
    Census census{reader.people(), {}, {}, {}, {}};
    study.individuals_read = static_cast<long>(census.people.all.size());
    const PersonNames names(census.people);
    PhenotypeSource source = request.phenotype;
    if (request.files.format == StudyFormat::kDirectory && source.file.empty()) {
        source.control_is_0 = true;
    }
    census.phenotypes = read_phenotypes(census.people, names, source, study);
    if (!source.optional) {
        require_both_groups(census.phenotypes.file, census.phenotypes.values, true);
    }
    census.clusters = read_cluster_labels(request.within, names, census.people.all.size(), study);
    census.wanted = chosen_people(census.people, names, request.filters, census.told);
    return census;
}

template <typename T>
void append_moved(std::vector<T>& to, std::vector<T>& from) {
    std::move(from.begin(), from.end(), std::back_inserter(to));
}

Members members_of(Census& census) {
    Members members;
    for (const int i : census.wanted) {
        const auto place = static_cast<std::size_t>(i);
        members.people.push_back(std::move(census.people.all[place]));
        members.phenotypes.push_back(census.phenotypes.values[place]);
        members.clusters.push_back(census.clusters.labels[place]);
    }
    return members;
}

const std::string& file_of_markers(const StudyFiles& files) {
    switch (files.format) {
        case StudyFormat::kBed:
            return files.bim;
        case StudyFormat::kVcf:
            return files.vcf;
        case StudyFormat::kRaw:
            return files.raw;
        case StudyFormat::kDirectory:
            break;
    }
    return files.directory;
}

void require_markers(const Cohort& cohort, const StudyRequest& request) {
    if (!cohort.markers.empty()) return;
    input_error(file_of_markers(request.files), 0,
                request.only_markers
                    ? "none of the markers is there by its name; at least one expected, called as "
                      "in the model"
                    : "no marker is left; at least one expected; loosen the filters");
}

void require_people(const Members& members, const Census& census) {
    if (!members.people.empty()) return;
    input_error(census.people.file, 0,
                "no individual is left; at least one expected; loosen the filters");
}

void drop_unphenotyped(const Census& census, Cohort& cohort, Members& members, Study& study) {
    leave_out(
        study, LeftOut::What::kIndividuals,
        members.take_out(cohort.rows,
                         [&](std::size_t i) { return members.phenotypes[i] == kNoPhenotype; }),
        "no phenotype");
    require_both_groups(census.phenotypes.file, members.phenotypes, false);
}

// By chromosome and position; those at one place stay as they are.
void sort_markers(Cohort& cohort, Study& study) {
    const auto& markers = cohort.markers;
    const auto before = [&markers](int a, int b) {
        const MarkerInfo& one = markers[static_cast<std::size_t>(a)];
        const MarkerInfo& other = markers[static_cast<std::size_t>(b)];
        if (one.chromosome != other.chromosome) return one.chromosome < other.chromosome;
        return one.position < other.position;
    };
    std::vector<int> order = first_numbers(markers.size());
    if (std::is_sorted(order.begin(), order.end(), before)) return;
    std::stable_sort(order.begin(), order.end(), before);
    study.notes.emplace_back(
        "The markers were out of order; they are sorted by chromosome and position.");
    std::vector<MarkerInfo> sorted;
    std::vector<int> columns;
    sorted.reserve(order.size());
    for (const int j : order) {
        sorted.push_back(std::move(cohort.markers[static_cast<std::size_t>(j)]));
        columns.push_back(cohort.columns[static_cast<std::size_t>(j)]);
    }
    cohort.markers = std::move(sorted);
    cohort.columns = std::move(columns);
}

// Hashes of names that may be there more than once, ascending: sorted numbers are far cheaper than
// a table of half a million names.
std::vector<std::size_t> repeated_hashes(const std::vector<MarkerInfo>& markers) {
    std::vector<std::size_t> hashes;
    hashes.reserve(markers.size());
    for (const MarkerInfo& marker : markers)
        hashes.push_back(std::hash<std::string>()(marker.name));
    std::sort(hashes.begin(), hashes.end());
    std::vector<std::size_t> repeated;
    for (std::size_t k = 1; k < hashes.size(); ++k) {
        if (hashes[k] == hashes[k - 1]) repeated.push_back(hashes[k]);
    }
    return repeated;
}

void tell_duplicate_names(const std::vector<MarkerInfo>& markers, Study& study) {
    const std::vector<std::size_t> hashes = repeated_hashes(markers);
    if (hashes.empty()) return;
    std::unordered_map<std::string_view, int> times;
    std::string_view first;
    long repeated = 0;
    for (const MarkerInfo& marker : markers) {
        const std::size_t hash = std::hash<std::string>()(marker.name);
        if (!std::binary_search(hashes.begin(), hashes.end(), hash)) continue;
        if (++times[marker.name] != 2) continue;
        if (repeated++ == 0) first = marker.name;
    }
    if (repeated == 0) return;
    study.notes.push_back(counted(repeated, "marker name occurs", "marker names occur") +
                          " more than once, " + std::string(first) + " for one.");
}

void tell_sex_chromosomes(const std::vector<MarkerInfo>& markers, Study& study) {
    constexpr std::array<const char*, 4> kNames = {"X", "Y", "XY", "MT"};
    std::array<long, 4> counts{};
    for (const MarkerInfo& marker : markers) {
        if (marker.chromosome >= kChromosomeX) {
            ++counts[static_cast<std::size_t>(marker.chromosome - kChromosomeX)];
        }
    }
    const long all = std::accumulate(counts.begin(), counts.end(), 0L);
    if (all == 0) return;
    std::string each;
    for (std::size_t k = 0; k < counts.size(); ++k) {
        if (counts[k] == 0) continue;
        each +=
            (each.empty() ? "" : ", ") + std::string(kNames[k]) + ' ' + std::to_string(counts[k]);
    }
    study.notes.push_back(counted(all, "marker is", "markers are") + " on chromosomes 23 to 26 (" +
                          each + "); males' genotypes there are used as they are coded.");
}

void fill(Study& study, Cohort& cohort, Members& members, int threads) {
    study.genotypes = compacted(std::move(cohort.genotypes), cohort.rows, cohort.columns, threads);
    study.markers = std::move(cohort.markers);
    study.phenotypes = std::move(members.phenotypes);
    for (Person& person : members.people) study.individuals.push_back(std::move(person.name));
}

}  // namespace

void leave_out(Study& study, LeftOut::What what, long count, std::string why) {
    if (count > 0) study.left_out.push_back({what, count, std::move(why)});
}

std::vector<int> first_numbers(std::size_t count) {
    std::vector<int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

Study load_study(const StudyRequest& request) {
    Study study;
    const std::unique_ptr<CohortReader> reader = reader_for(request, study);
    MarkerChoice choice(request, study);
    Census census = take_census(*reader, request, study);
    Cohort cohort = reader->read(census.wanted, choice, study);
    choice.tell(study);
    append_moved(study.left_out, census.told.left_out);
    append_moved(study.notes, census.told.notes);
    append_moved(study.inputs, census.told.inputs);
    Members members = members_of(census);
    require_markers(cohort, request);
    apply_rate_filters(request.filters, request.threads, cohort, members, study);
    require_markers(cohort, request);
    if (request.phenotype.optional) {
        require_people(members, census);
    } else {
        drop_unphenotyped(census, cohort, members, study);
    }
    sort_markers(cohort, study);
    tell_duplicate_names(cohort.markers, study);
    tell_sex_chromosomes(cohort.markers, study);
    fill(study, cohort, members, request.threads);
    take_clusters(request.within, {census.clusters.column, std::move(members.clusters)}, study);
    return study;
}

}  // namespace vort
