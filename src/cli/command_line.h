// The program's command line.
//
//     vort                                        the analysis of the working directory
//     vort run INPUT --out DIR [...]              a study of any format, all results in DIR
//     vort import INPUT --out DIR                 the same study as such a directory
//     vort report DIR                             its page anew
#pragma once

namespace vort {

// Runs the command and returns the exit status: of the analysis of the working directory as Stop
// has it; of the commands 0 when done, 2 for a misused command line, 3 for input that cannot be
// used, 4 where memory, disk or another resource is gone, 128 plus the number of a signal.
int run_command_line(int argc, char** argv);

}  // namespace vort
