#include "csm/globals.h"

namespace vort {

int clustermethod = 0;
int clustermethod_print = 1;
int test_method_print = 1;

}  // namespace vort
