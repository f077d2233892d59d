// Records read back, by functions of fixed names.
#include "legacy/best_cluster.h"
#include "legacy/on_console.h"
#include "legacy/record_file.h"

namespace vort {

std::unique_ptr<BestClusterInformation> BestClusterInformation::ReStore(const char* file,
                                                                        int number) {
    return on_console([&](Transcript&) {
        Myfstream input(file);
        return read_record(input, number);
    });
}

int BestClusterInformationArray::getbestmarker(const char* file) {
    items.clear();
    Myfstream input(file);
    auto records = on_console([&](Transcript&) { return read_records(input); });
    if (records.empty()) return 0;
    items = std::move(records);
    capacity = count();
    return count();
}

}  // namespace vort
