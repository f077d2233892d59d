// Standard input, output and error, where the process was started without them.
#pragma once

namespace vort {

// Gives each one that is closed a file in which every read or write fails, so that no file which is
// opened later gets its number, and with it what is meant for a console.
void occupy_standard_streams();

}  // namespace vort
