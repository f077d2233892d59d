#include "ensemble/globals.h"

namespace vort {

char* hostname = nullptr;
int ns = 400;
int nm = 20;
int missingrepeat = 10;
int repeat = 1;
int permutation = 200;
std::vector<output_information> base_learner;

}  // namespace vort
