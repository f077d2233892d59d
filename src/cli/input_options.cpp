#include "cli/input_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <vector>

#include "cli/ranges.h"

namespace vort {

namespace {

constexpr const char* kInput = "Input, one of --bfile, --vcf, --raw, --study";
constexpr const char* kPhenotype = "Phenotype";
constexpr const char* kWithin = "Permutation";
constexpr const char* kFilters = "Filters, as in PLINK 1.9 and in its order";
constexpr const char* kPeople = "Individuals";

template <typename T>
void add(CLI::App& command, const char* group, const char* name, T& value, const char* type,
         const char* text) {
    command.add_option(name, value, text)->type_name(type)->group(group);
}

void add_files(CLI::App& command, InputOptions& options) {
    StudyFiles& files = options.request.files;
    add(command, kInput, "--bfile", options.bfile, "PREFIX",
        "PREFIX.bed, PREFIX.bim and PREFIX.fam; A1 is counted");
    add(command, kInput, "--bed", files.bed, "FILE", "this .bed instead");
    add(command, kInput, "--bim", files.bim, "FILE", "this .bim instead; or the .bim of --raw");
    add(command, kInput, "--fam", files.fam, "FILE", "this .fam instead");
    add(command, kInput, "--vcf", files.vcf, "FILE",
        options.request.phenotype.optional
            ? "VCF, plain or bgzipped, or BCF; ALT is counted"
            : "VCF, plain or bgzipped, or BCF; ALT is counted, --pheno is needed");
    add(command, kInput, "--raw", files.raw, "FILE", "additive recoding: FID IID ... ID_ALLELE");
    add(command, kInput, "--study", files.directory, "DIR",
        "a directory with parameter.txt, as the bare vort reads it");
}

void add_phenotype(CLI::App& command, PhenotypeSource& phenotype) {
    add(command, kPhenotype, "--pheno", phenotype.file, "FILE",
        "FID, IID and phenotypes [default: the input's own]");
    add(command, kPhenotype, "--pheno-name", phenotype.name, "NAME",
        "the column of --pheno [default: the third]");
    command
        .add_flag("--1", phenotype.control_is_0,
                  "0 is a control and 1 a case [default: 1 and 2; 0, -9 and NA are missing]")
        ->group(kPhenotype);
}

void add_people(CLI::App& command, const char* group, Filters& filters) {
    add(command, group, "--keep", filters.keep, "FILE", "only these individuals (FID IID)");
    add(command, group, "--remove", filters.remove, "FILE", "all but these individuals");
}

void add_filters(CLI::App& command, Filters& filters) {
    add_people(command, kFilters, filters);
    add(command, kFilters, "--extract", filters.extract, "FILE", "only these markers");
    add(command, kFilters, "--exclude", filters.exclude, "FILE", "all but these markers");
    add(command, kFilters, "--chr", filters.chromosomes, "LIST",
        "only these chromosomes, as in 1-4,22,X [default: 1 to 26]");
    const auto add_rate = [&](const char* name, std::optional<double>& rate, const char* text) {
        command.add_option(name, rate, text)
            ->type_name("X")
            ->check(within(0.0, 1.0))
            ->group(kFilters);
    };
    add_rate("--mind", filters.mind, "individuals that miss at most this share of genotypes");
    add_rate("--geno", filters.geno, "markers that miss at most this share of genotypes");
    add_rate("--maf", filters.maf, "markers with at least this minor allele frequency");
    add_rate("--hwe", filters.hwe,
             "markers whose exact Hardy-Weinberg test in controls has at least this p-value");
}

[[noreturn]] void misused(const std::string& text) {
    throw CLI::ValidationError(text, CLI::ExitCodes::ValidationError);
}

std::vector<StudyFormat> chosen_formats(const InputOptions& options) {
    const StudyFiles& files = options.request.files;
    std::vector<StudyFormat> chosen;
    if (!options.bfile.empty() || !files.bed.empty() || !files.fam.empty()) {
        chosen.push_back(StudyFormat::kBed);
    }
    if (!files.vcf.empty()) chosen.push_back(StudyFormat::kVcf);
    if (!files.raw.empty()) chosen.push_back(StudyFormat::kRaw);
    if (!files.directory.empty()) chosen.push_back(StudyFormat::kDirectory);
    return chosen;
}

StudyFormat format_of(const InputOptions& options) {
    const std::vector<StudyFormat> chosen = chosen_formats(options);
    if (chosen.size() == 1) return chosen.front();
    misused("exactly one of --bfile, --vcf, --raw and --study is expected");
}

}  // namespace

bool is_chosen(const InputOptions& options) {
    return !chosen_formats(options).empty();
}

void add_input_options(CLI::App& command, InputOptions& options) {
    add_files(command, options);
    add_phenotype(command, options.request.phenotype);
    add_filters(command, options.request.filters);
}

void add_within_options(CLI::App& command, InputOptions& options) {
    ClusterSource& within = options.request.within;
    add(command, kWithin, "--within", within.file, "FILE",
        "FID, IID and clusters: phenotypes are shuffled within each cluster only");
    add(command, kWithin, "--within-name", within.name, "NAME",
        "the column of --within [default: the third]");
}

void add_people_options(CLI::App& command, InputOptions& options) {
    options.request.phenotype.optional = true;
    add_files(command, options);
    add_phenotype(command, options.request.phenotype);
    add_people(command, kPeople, options.request.filters);
}

StudyRequest study_request(const InputOptions& options) {
    StudyRequest request = options.request;
    StudyFiles& files = request.files;
    files.format = format_of(options);
    if (files.format == StudyFormat::kBed) {
        for (const auto& [file, ending] :
             {std::pair{&files.bed, ".bed"}, std::pair{&files.bim, ".bim"},
              std::pair{&files.fam, ".fam"}}) {
            if (!file->empty()) continue;
            if (options.bfile.empty()) misused("--bfile PREFIX, or all of --bed, --bim and --fam");
            *file = options.bfile + ending;
        }
    } else if (!files.bim.empty() && files.format != StudyFormat::kRaw) {
        misused("--bim goes with --bfile or --raw");
    }
    const PhenotypeSource& phenotype = request.phenotype;
    if (files.format == StudyFormat::kVcf && phenotype.file.empty() && !phenotype.optional) {
        misused("--vcf needs --pheno FILE, since a VCF has no phenotypes");
    }
    if (phenotype.file.empty() && !phenotype.name.empty()) {
        misused("--pheno-name names a column of --pheno FILE");
    }
    if (request.within.file.empty() && !request.within.name.empty()) {
        misused("--within-name names a column of --within FILE");
    }
    return request;
}

}  // namespace vort
