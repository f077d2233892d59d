// Who is a case and who a control.
#pragma once

#include <string>
#include <vector>

#include "study/cohort.h"
#include "study/person_names.h"

namespace vort {

struct Phenotypes {
    std::string file;           // that they come from
    std::vector<short> values;  // of each person: 1 case, 0 control, kNoPhenotype
};

// From the study's own column, or the source's file. Told to `study`. Throws InputError for a value
// that is none, an individual that is there twice, 0/1 coding taken for 1/2, and a study without
// such a column, unless phenotypes are optional.
Phenotypes read_phenotypes(const People& people, const PersonNames& names,
                           const PhenotypeSource& source, Study& study);

// Throws InputError unless there are cases and controls. `before`: nothing is filtered yet.
void require_both_groups(const std::string& file, const std::vector<short>& phenotypes,
                         bool before);

}  // namespace vort
