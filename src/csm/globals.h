// State of the builder of base learners that is wider than one CSM.
#pragma once

namespace vort {

// How the cells of a set of two or more markers are clustered: 0 for CSM::cluster, 1 to 4 for
// CSM::cluster1 to CSM::cluster4. Nothing in the program changes it from 0; read by the score of a
// marker set.
extern int clustermethod;

// While 1, the first evaluation of a set of two prints the method, and sets it to 0.
extern int clustermethod_print;

// While 1, the first CSM made prints its search strategy, and sets it to 0.
extern int test_method_print;

}  // namespace vort
