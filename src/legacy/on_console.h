// Functions that print, made of those that tell a transcript.
#pragma once

#include <cstdlib>
#include <iostream>

#include "common/stop.h"
#include "common/transcript.h"

namespace vort {

// What `act` returns when it is given a transcript, whose text goes to standard output. A stop of
// the run ends the process.
template <typename Act>
auto on_console(Act act) {
    Transcript transcript(true);
    try {
        auto result = act(transcript);
        std::cout << transcript.text();
        return result;
    } catch (const Stop& end) {
        std::cout << transcript.text() << end.text;
        std::exit(end.status);
    }
}

}  // namespace vort
