// What the readers of all formats make of their files, for load_study().
//
// A reader first tells who is in the study (people()), then hands over markers and genotypes of
// those that are wanted (read()), so that what is left out by name need not be kept in memory.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "study/marker_choice.h"
#include "study/study.h"

namespace vort {

struct Person {
    Individual name;
    bool founder = true;  // neither parent has a name
    std::string status;   // the phenotype as it stands in the file; empty where there is none
    long line = 0;        // of the file, from 1; 0 where it has no lines
};

struct People {
    std::string file;  // that they stand in
    std::vector<Person> all;
    bool one_name = false;  // the format has one name for an individual, not FID and IID
};

struct Cohort {
    Genotypes genotypes;
    std::vector<MarkerInfo> markers;  // those that were taken
    std::vector<int> columns;         // of `genotypes`, of each marker
    std::vector<int> rows;            // of `genotypes`, of each wanted person
};

class CohortReader {
  public:
    CohortReader() = default;
    virtual ~CohortReader() = default;
    CohortReader(const CohortReader&) = delete;
    CohortReader& operator=(const CohortReader&) = delete;

    virtual People people() = 0;

    // `wanted` numbers people, ascending from 0. What is left out or told goes to `study`.
    virtual Cohort read(std::span<const int> wanted, MarkerChoice& choice, Study& study) = 0;
};

// Counts of 0 are no news.
void leave_out(Study& study, LeftOut::What what, long count, std::string why);

// 0 .. count-1.
std::vector<int> first_numbers(std::size_t count);

std::unique_ptr<CohortReader> bed_reader(const StudyFiles& files, Study& study);
std::unique_ptr<CohortReader> raw_reader(const StudyFiles& files, Study& study);
std::unique_ptr<CohortReader> vcf_reader(const StudyFiles& files, Study& study);
std::unique_ptr<CohortReader> directory_reader(const StudyFiles& files, int threads, Study& study);

}  // namespace vort
