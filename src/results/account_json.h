// What was read and what was left out, as it stands in a description of results.
#pragma once

#include <nlohmann/json.hpp>

#include "study/study.h"

namespace vort {

const char* name_of(StudyFormat format);

// Role and path of each file.
nlohmann::ordered_json files_json(const Study& study);

nlohmann::ordered_json left_out_json(const Study& study);

}  // namespace vort
