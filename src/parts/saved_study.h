// A study as tasks have it: all but its genotypes in a part, those in the form of a .bed file, to
// be mapped. Where the study is a .bed that is taken as it is, that one is mapped.
#pragma once

#include <string>
#include <string_view>

#include "common/diagnostics.h"
#include "study/holdout.h"
#include "study/study.h"

namespace vort {

// Everything but the genotypes.
std::string bytes_of(const Study& study);
// Throws MalformedBytes.
Study study_of(std::string_view bytes);

// What tasks need of it: phenotypes and clusters, for nothing costs as much as half a million
// names.
std::string people_bytes_of(const Study& study);
// Throws MalformedBytes.
Study people_of(std::string_view bytes);

// People held back, genotypes and all, and the way back, for so many markers.
std::string bytes_of(const HeldBack& held_back);
HeldBack held_back_of(std::string_view bytes, int markers);

// Writes a .bed of the genotypes, complete and on the disk before it has its name; a file that
// cannot be written to its end stops the run with status 1.
void write_genotypes(const Genotypes& genotypes, const std::string& path, Diagnostics& diagnostics);

// Maps one. Throws InputError where it is not of this size.
Genotypes map_genotypes(const std::string& path, int individuals, int markers);

}  // namespace vort
