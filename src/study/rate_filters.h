// Filters that look at genotypes: --mind, then --geno, --hwe and --maf.
//
// Whom they count over, as PLINK 1.9 does:
//
//     --mind   a person's markers; those on Y for males only
//     --geno   everybody; on Y males
//     --hwe    controls without parents; on X those that are not male; Y and MT are passed over
//     --maf    people without parents; males have one allele on X and on Y, where nobody else
//              counts, and their heterozygous genotypes there count as missing
//
// A person without a phenotype counts in --mind, --geno and --maf. A marker that nobody has a
// genotype of passes --hwe and --maf. Rates are compared with a tolerance of 2^-44 of the limit.
//
// One known difference: where a marker has only 2 or 3 heterozygotes, PLINK's --hwe leaves the
// rarest outcome out of its sum (the p-value that its --hardy prints has it). So a marker whose
// p-value is within a few per cent above the limit may be removed there and is kept here.
#pragma once

#include <vector>

#include "study/cohort.h"

namespace vort {

// The people still in a study, in the order of the cohort's rows.
struct Members {
    std::vector<Person> people;
    std::vector<short> phenotypes;  // 1 case, 0 control, kNoPhenotype
    std::vector<int> clusters;      // labels, as in Clusters

    // Takes those out, and their rows, that `gone` (of a place) tells.
    template <typename Gone>
    long take_out(std::vector<int>& rows, Gone gone);
};

template <typename Gone>
long Members::take_out(std::vector<int>& rows, Gone gone) {
    std::size_t left = 0;
    for (std::size_t i = 0; i < people.size(); ++i) {
        if (gone(i)) continue;
        if (left < i) {
            people[left] = std::move(people[i]);
            phenotypes[left] = phenotypes[i];
            clusters[left] = clusters[i];
            rows[left] = rows[i];
        }
        ++left;
    }
    const auto count = static_cast<long>(people.size() - left);
    people.resize(left);
    phenotypes.resize(left);
    clusters.resize(left);
    rows.resize(left);
    return count;
}

// Takes people and markers out and tells `study`.
void apply_rate_filters(const Filters& filters, int threads, Cohort& cohort, Members& members,
                        Study& study);

}  // namespace vort
