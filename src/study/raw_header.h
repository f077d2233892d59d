// The titles of an additive recoding, and what they say of the markers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "genotypes/marker_info.h"

namespace vort {

// The markers of the titles FID IID PAT MAT SEX PHENOTYPE ID_ALLELE ..., in file order, all on
// chromosome 1 at 1, 2, ...; the other allele is 0 where the title does not tell it. Throws
// InputError.
std::vector<MarkerInfo> raw_markers(const std::string& path, std::string_view titles);

// Gives them chromosome, position and the other allele by a .bim, by their names; those of one name
// in the order in which they stand. Throws InputError where one is not there with its allele.
void place_by_bim(std::vector<MarkerInfo>& markers, const std::string& raw, const std::string& bim);

}  // namespace vort
