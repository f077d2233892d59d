// A study in binary files: PREFIX.bed, PREFIX.bim and PREFIX.fam.
#pragma once

#include <string>
#include <vector>

#include "genotypes/genotypes.h"
#include "genotypes/marker_info.h"

namespace vort {

struct BedStudy {
    Genotypes genotypes;            // mapped, or owned where individuals are left out
    std::vector<short> phenotypes;  // 1 case, 0 control
    std::vector<MarkerInfo> markers;
    int without_phenotype = 0;  // individuals left out
};

// .fam: FID IID PAT MAT SEX PHENOTYPE, the last one 1 for a control, 2 for a case, and 0, -9 or NA
// where it is missing. .bim: CHR ID CM BP A1 A2, chromosomes 1 to 26, X, Y, XY and MT by name, with
// "chr" in front or not; A1 is the counted allele. .bed: SNP-major. A file that cannot be used
// throws InputError.
BedStudy load_bed(const std::string& bed, const std::string& bim, const std::string& fam);

}  // namespace vort
