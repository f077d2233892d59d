#include <exception>

#include "common/console.h"
#include "common/diagnostics.h"
#include "common/end_program.h"
#include "vort/run_driver.h"

int main() {
    vort::open_console();
    try {
        return vort::run_analysis();
    } catch (const std::exception& problem) {
        // Memory that ran out, mostly; what the console still holds is written all the same.
        vort::diagnose("ends for lack of resources", "vort", 0, problem.what());
        vort::end_program(1);
    }
}
