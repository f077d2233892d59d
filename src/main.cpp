#include "common/console.h"
#include "vort/run_driver.h"

int main() {
    vort::open_console();
    return vort::run_analysis();
}
