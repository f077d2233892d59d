// What a command works on: input, phenotype and filters.
#pragma once

#include <string>

#include "study/study.h"

namespace CLI {
class App;
}

namespace vort {

struct InputOptions {
    std::string bfile;  // PREFIX of the three files
    StudyRequest request;
};

// Adds the options; their values go to `options`, which outlives the command.
void add_input_options(CLI::App& command, InputOptions& options);

// The clusters that permutations keep to, for a command that permutes.
void add_within_options(CLI::App& command, InputOptions& options);

// The same without filters of markers and by rates, for a command that does not need phenotypes.
void add_people_options(CLI::App& command, InputOptions& options);

// Whether any input is named, once the command line is read.
bool is_chosen(const InputOptions& options);

// What they ask for, once the command line is read. Throws CLI::ValidationError where not exactly
// one input is named.
StudyRequest study_request(const InputOptions& options);

}  // namespace vort
