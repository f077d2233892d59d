// What was read and what was left out, on the terminal.
#pragma once

#include "cli/terminal.h"
#include "study/study.h"

namespace vort {

// Before a study is read: which pipes are waited for.
void tell_pipes(const StudyRequest& request, Terminal& terminal);

// A line for each count, and the study's notes.
void tell_account(const Study& study, Terminal& terminal);

}  // namespace vort
