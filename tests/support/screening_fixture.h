// A working directory and a screening stage of its own for each test.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "screening/genotype_data.h"
#include "screening/globals.h"
#include "screening/prepared_file.h"
#include "screening/snp_index.h"
#include "support/console_capture.h"
#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/restored.h"
#include "support/temporary_folder.h"

namespace vort::testing {

constexpr const char* kDataFile = "dat1.txt";
constexpr const char* kMarkerTable = "Chromosome_SNP_Name.txt";

class ScreeningTest : public ::testing::Test {
  protected:
    ScreeningTest() {
        forget_all();
        head = record = 0;
        std::strcpy(inputfilename, kDataFile);
    }
    ~ScreeningTest() override {
        forget_all();
        inputfilename[0] = '\0';
    }

    // What the stage keeps from one call to the next.
    static void forget_all() {
        release_data_set();
        forget_snp_index();
        restart_prepared_files();
    }

    static void set_sizes(int individuals, int markers) {
        Sample = individuals;
        Marker = markers;
    }

    static void load(const std::string& text) {
        release_data_set();
        write_file(kDataFile, text);
        load_data_set_once();
    }

    static void load_quietly(const std::string& text) {
        const ConsoleCapture console;
        const DiagnosticsCapture diagnostics;
        load(text);
    }

  private:
    TemporaryFolder folder_;
    Restored<int, int, int, int, int, int> sizes_{
        Sample, Marker, Permutation, missingrepeat1, Save_marker_length, direct_calculate};
    Restored<int, int, int, int, int, int, int> switches_{
        head, record, orginal_data, write_FDR_result, save_pre, samplesize[0], samplesize[1]};
    Restored<double, std::string> names_{not_over_missing_marker_drop_ratio, Datapath};
};

}  // namespace vort::testing
