// A study of any format as an input of sections: its files, and those of phenotypes and filters.
//
// The section "options" holds words: "1" (0 is a control, 1 a case), "threads", "name NAME",
// "within-name NAME", "chr LIST", and "mind", "geno", "maf", "hwe" with a number each. The sections
// "pheno", "within", "keep", "remove", "extract" and "exclude" are the files of these options.
#pragma once

#include <optional>

#include "study/study.h"
#include "support/files.h"
#include "support/sections.h"

namespace vort::fuzz {

// The request without its genotype files.
StudyRequest request_for(const Sections& input, Files& files);

// Loads the study; where it is accepted, what must hold of every study is required, and that it is
// the same when written as a study directory and read again. Nothing where it is refused.
std::optional<Study> check_study(const StudyRequest& request, Files& files);

}  // namespace vort::fuzz
