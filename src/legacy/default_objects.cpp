#include "legacy/default_objects.h"

#include <iostream>

#include "legacy/genotype_data.h"

namespace vort {

DefaultObjects::DefaultObjects() : diagnostics(std::cerr) {}

DefaultObjects& default_objects() {
    static DefaultObjects held;
    return held;
}

void reset_default_objects() {
    release_data_set();
    DefaultObjects& held = default_objects();
    held.markers.reset();
    held.prepared_files_written = held.prepared_files_read = 0;
    held.diagnostics.finish();
}

}  // namespace vort
