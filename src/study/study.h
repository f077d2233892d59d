// A study, whatever files it came from: individuals, markers with their full names, packed
// genotypes, and an account of all that was left out on the way.
//
// The formats differ in what they hold, not in what comes of them: every reader ends here. All that
// can be found wrong with the input is found by load_study(), before an analysis begins.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "genotypes/genotypes.h"
#include "genotypes/marker_info.h"
#include "numeric/clusters.h"

namespace vort {

enum class StudyFormat {
    kBed,        // PREFIX.bed, .bim, .fam
    kVcf,        // VCF, plain or bgzipped, or BCF
    kRaw,        // additive recoding: FID IID PAT MAT SEX PHENOTYPE, then a column for each marker
    kDirectory,  // parameter.txt, a text data set, a marker table
};

// Paths; empty where there is none.
struct StudyFiles {
    StudyFormat format = StudyFormat::kBed;
    std::string bed, bim, fam;  // bim also beside raw
    std::string vcf;
    std::string raw;
    std::string directory;
};

struct PhenotypeSource {
    std::string file;           // FID IID columns, a header or not; empty: the study's own column
    std::string name;           // of the column; empty: the third
    bool control_is_0 = false;  // 0 control, 1 case, instead of 1 and 2
    bool optional = false;      // who has none stays, and so does a study in which nobody has one
};

// Clusters that permuted phenotypes keep to.
struct ClusterSource {
    std::string file;  // FID IID columns, a header or not; empty: there are none
    std::string name;  // of the column; empty: the third
};

constexpr short kNoPhenotype = -1;

// With PLINK 1.9's definitions and order, so that its counts are met.
struct Filters {
    std::string keep, remove;      // files of individuals, FID IID a line
    std::string extract, exclude;  // files of marker names
    std::string chromosomes;       // "1-4,22,X"; empty: all of 1 to 26
    std::optional<double> mind, geno, maf, hwe;
};

struct StudyRequest {
    StudyFiles files;
    PhenotypeSource phenotype;
    Filters filters;
    ClusterSource within;
    // Only markers of these names, the others not even counted as left out.
    std::optional<std::set<std::string>> only_markers;
    int threads = 1;
};

struct Individual {
    std::string family;
    std::string id;
    signed char sex = 0;  // 1 male, 2 female, 0 unknown
};

struct LeftOut {
    enum class What { kIndividuals, kMarkers };
    What what;
    long count;       // above 0
    std::string why;  // "no phenotype", "--mind 0.1", "more than one ALT allele", ...
};

// What the parameter file of a study directory asks for.
struct StudyParameters {
    int permutations = 0;
    int best_m = 0;
    int max_retain = 0;
    double fdr = 0;
};

struct WithinAccount {
    std::string file;
    std::string column;       // its title; empty where the file has no header
    long clusters = 0;        // of the individuals analysed
    long fixed = 0;           // of these without both cases and controls
    long unassigned = 0;      // individuals in none
    std::vector<int> labels;  // of the individuals, as Clusters take them
};

struct InputFile {
    std::string role;  // "bed", "bim", "fam", "vcf", "raw", "phenotype", "within", "keep", ...
    std::string path;
};

struct Study {
    Genotypes genotypes;            // individuals x markers; mapped where a .bed is taken as it is
    std::vector<short> phenotypes;  // 1 case, 0 control; kNoPhenotype where they are optional
    std::vector<Individual> individuals;
    Clusters clusters;  // of the individuals, those in none alone; none without --within
    std::optional<WithinAccount> within;
    std::vector<MarkerInfo> markers;  // in ascending order of chromosome and position

    long individuals_read = 0;
    long markers_read = 0;
    std::vector<LeftOut> left_out;   // in the order in which it happened
    std::vector<std::string> notes;  // one sentence each: duplicate names, markers sorted, ...
    std::vector<InputFile> inputs;   // every file that was read
    std::optional<StudyParameters> parameters;  // of a directory
};

// Every file that a request names, whether it is there or not; of a study directory all but the
// data set, whose name stands in one of them.
std::vector<std::string> named_files(const StudyRequest& request);

std::vector<std::string> paths_of(const std::vector<InputFile>& files);

// Input that cannot be used throws InputError.
Study load_study(const StudyRequest& request);

}  // namespace vort
