// The genotypes of cases and of controls, for every marker.
#pragma once

#include <vector>

#include "genotypes/genotypes.h"
#include "screening/five_model_test.h"
#include "screening/phenotype_rows.h"

namespace vort {

// Of the observed phenotype, row 0; an element for each column. Goes through the genotypes once,
// in bit planes, on so many threads; count_genotypes() is the plain form.
std::vector<MarkerCounts> count_all_genotypes(const Genotypes& genotypes,
                                              const PhenotypeRows& phenotypes, int threads);

}  // namespace vort
