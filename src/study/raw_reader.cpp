#include "study/cohort.h"
namespace vort {
std::unique_ptr<CohortReader> raw_reader(const StudyFiles&, Study&) {
    return nullptr;
}
}  // namespace vort
