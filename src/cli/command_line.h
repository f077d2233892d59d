// The program's command line.
//
//     vort                                        the analysis of the working directory
//     vort run --bfile PREFIX --out DIR [...]     the analysis of a study in binary files
#pragma once

namespace vort {

// Runs the command and returns the exit status: of the analysis of the working directory as Stop
// has it; of the commands 0 when done, 2 for a misused command line, 3 for input that cannot be
// used, 4 where memory, disk or another resource is gone.
int run_command_line(int argc, char** argv);

}  // namespace vort
