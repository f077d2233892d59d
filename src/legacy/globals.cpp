#include "legacy/globals.h"

#include "screening/screening_result.h"

namespace vort {

int Sample = 547;
int Marker = 541325;
int Permutation = 100;
int Replication = 1;
int missingrepeat1 = 1;
int head = 0;
int record = 0;
int Save_marker_length = 1000;
char inputfilename[100] = "";
int orginal_data = 1;
int direct_calculate = 1;
int exist_X_Y_data = 0;
char** X = nullptr;
short* Y = nullptr;
int samplesize[2] = {0, 0};
const char* const modelname[5] = {kModelNames[0], kModelNames[1], kModelNames[2], kModelNames[3],
                                  kModelNames[4]};
double not_over_missing_marker_drop_ratio = kMissingShare;
int write_FDR_result = 0;
int save_pre = 0;
std::string Datapath = ".\\";

int clustermethod = 0;
int clustermethod_print = 1;
int test_method_print = 1;

char* hostname = nullptr;
int ns = 400;
int nm = 20;
int missingrepeat = 10;
int repeat = 1;
int permutation = 200;
std::vector<output_information> base_learner;

}  // namespace vort
