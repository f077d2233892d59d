#include "study/within.h"

#include <algorithm>
#include <unordered_map>

#include "common/input_error.h"
#include "study/person_column.h"
#include "study/word_lines.h"

namespace vort {

namespace {

bool can_be_shuffled(std::span<const int> members, const std::vector<short>& phenotypes) {
    const auto phenotype = [&](int i) { return phenotypes[static_cast<std::size_t>(i)]; };
    return std::ranges::any_of(members,
                               [&](int i) { return phenotype(i) != phenotype(members.front()); });
}

void tell_clusters(const Study& study, std::vector<std::string>& notes) {
    const WithinAccount& within = *study.within;
    notes.push_back("Phenotypes are shuffled within the " +
                    counted(within.clusters, "cluster", "clusters") + " of " + within.file +
                    " only.");
    if (within.fixed > 0) {
        notes.push_back(counted(within.fixed, "cluster has", "clusters have") +
                        " cases only or controls only, so nothing is shuffled there.");
    }
    if (within.unassigned > 0) {
        notes.push_back(counted(within.unassigned,
                                "individual is in no cluster and keeps its phenotype.",
                                "individuals are in no cluster and keep their phenotypes."));
    }
}

}  // namespace

ClusterLabels read_cluster_labels(const ClusterSource& source, const PersonNames& names,
                                  std::size_t people, Study& study) {
    ClusterLabels read{{}, std::vector<int>(people, Clusters::kAlone)};
    if (source.file.empty()) return read;
    std::unordered_map<std::string, int> numbers;
    const auto take = [&](int person, std::string_view cluster, long) {
        if (person < 0 || cluster == "NA") return;
        const auto next = static_cast<int>(numbers.size());
        read.labels[static_cast<std::size_t>(person)] =
            numbers.try_emplace(std::string(cluster), next).first->second;
    };
    read.column = read_person_column(
        {source.file, source.name, "--within-name", "a cluster", "clusters", "within"}, names,
        people, study, take);
    return read;
}

void take_clusters(const ClusterSource& source, const ClusterLabels& read, Study& study) {
    if (source.file.empty()) return;
    study.clusters = Clusters(read.labels);
    const auto alone = std::ranges::count(read.labels, Clusters::kAlone);
    long shuffled = 0;
    for (int c = 0; c < study.clusters.count(); ++c) {
        if (can_be_shuffled(study.clusters.members(c), study.phenotypes)) ++shuffled;
    }
    const long clusters = study.clusters.count() - alone;
    study.within = {source.file, read.column, clusters, clusters - shuffled, alone, read.labels};
    if (shuffled == 0) {
        input_error(source.file, 0,
                    counted(clusters, "cluster", "clusters") +
                        " of individuals in the study, none with both cases and controls; one "
                        "expected, since phenotypes are shuffled within clusters only");
    }
    tell_clusters(study, study.notes);
}

void retake_clusters(std::span<const int> left, Study& study) {
    if (!study.within) return;
    std::vector<std::string> told;
    tell_clusters(study, told);
    std::erase_if(study.notes, [&told](const std::string& note) {
        return std::ranges::find(told, note) != told.end();
    });
    ClusterLabels kept{study.within->column, {}};
    kept.labels.reserve(left.size());
    for (const int i : left)
        kept.labels.push_back(study.within->labels[static_cast<std::size_t>(i)]);
    take_clusters({study.within->file, ""}, kept, study);
}

}  // namespace vort
