#include "legacy/run_driver.h"

#include "legacy/globals.h"
#include "legacy/parameter_readers.h"
#include "legacy/replication_driver.h"

namespace vort {

int gethostname() {
    static char no_prefix[] = "";
    hostname = no_prefix;
    return 0;
}

int* main_vort3(int individuals, int markers, char** genotypes, short** phenotypes, int** rankings,
                int permutations, int replications, int* count) {
    gethostname();
    int unused_head = 0;
    int unused_record = 0;
    ReadPara(&ns, &nm, &missingrepeat, &unused_head, &unused_record);
    return permutation_simulation1(individuals, markers, genotypes, phenotypes, rankings,
                                   permutations, replications, count);
}

}  // namespace vort
