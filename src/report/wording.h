// Numbers and genotypes as a reader of plain sentences wants them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "report/model_view.h"

namespace vort {

// "no markers", "1 marker", "541,325 markers"; the noun is given in its plural.
std::string counted(long number, std::string_view plural);

// "541,325".
std::string grouped(long number);

// Two digits: "0.015", "0.5", "3.2e-9"; "not available" where it is not a number.
std::string p_text(double p);

// A fixed number of digits after the point; "not available" where it is not a number.
std::string decimal(double value, int digits);

// "0.683 (95 % interval 0.62 to 0.74)".
std::string auc_text(const RocArea& roc);

// "83 %"; of == 0 gives "no share".
std::string share_text(long part, long of);

// "1" to "22", "X", "Y", "XY", "MT".
std::string chromosome_name(int chromosome);

// Cut to `longest` characters, of which the last is then an ellipsis.
std::string shortened(std::string_view text, std::size_t longest);

// Longer names are cut: the whole ones stand in markers.tsv.
constexpr std::size_t kLongestName = 60;

// "A/G", "A" where only the counted allele is known, or nothing.
std::string alleles_text(std::string_view a1, std::string_view a2);

// "AG" for one copy of A1, or "A/GT" where an allele has several letters; empty where the study
// does not name its alleles.
std::string genotype_letters(const Locus& locus, int copies);

// "no A", "two A", "1 copy": what a row of a table is called beside its letters.
std::string copies_text(const Locus& locus, int copies);

// The genotypes of a base learner as a rule that can be read:
// "carriers of at least one A at rs1117 and of at least one A at rs1226".
std::string rule_text(const std::vector<Locus>& markers,
                      const std::vector<std::vector<int>>& cells);

// rule_text(), cases among all of the group, and the difference in risk: a sentence.
std::string learner_sentence(const Learner& learner);

}  // namespace vort
