// The individuals of a study in binary files: FID IID PAT MAT SEX PHENOTYPE.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "study/cohort.h"

namespace vort {

// From the words FID IID PAT MAT SEX PHENOTYPE; a sex other than 1 and 2 is unknown.
Person person_of(const std::vector<std::string_view>& six_words, long line);

// Throws InputError where the file cannot be used.
People read_fam(const std::string& path);

}  // namespace vort
