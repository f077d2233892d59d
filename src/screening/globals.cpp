#include "screening/globals.h"

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
const char* const modelname[5] = {"additive ", "dominant ", "recessive", "genotype ", "minimum  "};
double not_over_missing_marker_drop_ratio = 0.05;
int write_FDR_result = 0;
int save_pre = 0;
std::string Datapath = ".\\";

}  // namespace vort
