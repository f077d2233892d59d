// The parameter file of a study directory, read strictly.
#pragma once

#include <string>

#include "common/settings.h"
#include "study/study.h"

namespace vort {

// The three stages of an analysis take parameters by rules of their own; here all must come to the
// same: what decides about a run is given, and whole numbers are whole. Throws InputError, naming
// the key, where that is not so. What is merely unusual goes to the notes.
Settings read_study_parameters(const std::string& path, Study& study);

}  // namespace vort
