#include "study/cohort.h"
namespace vort {
std::unique_ptr<CohortReader> vcf_reader(const StudyFiles&, int, Study&) {
    return nullptr;
}
}  // namespace vort
