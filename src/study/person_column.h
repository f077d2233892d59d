// A column of a file that begins each line with FID and IID, with a header or without.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "study/cohort.h"
#include "study/person_names.h"

namespace vort {

struct PersonColumn {
    std::string file;
    std::string name;         // of the column; empty: the third
    std::string_view option;  // that names the column
    std::string_view one;     // what a line holds, "a phenotype",
    std::string_view many;    // and the file, "phenotypes"
    std::string_view role;    // of the file among a study's inputs
};

// A line's person, -1 for one who is not in the study, and value; its number counts from 1.
using TakePersonValue = std::function<void(int person, std::string_view value, long line)>;

// Reads the file; strangers are told to `study`. The column's title is returned, empty where there
// is no header. Throws InputError where a person is there twice, a line is too short, or the column
// is not there.
std::string read_person_column(const PersonColumn& column, const PersonNames& names,
                               std::size_t people, Study& study, const TakePersonValue& take);

}  // namespace vort
