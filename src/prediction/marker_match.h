// The markers of a model among those of another study.
//
// A marker is found by its name. Its alleles say which copies are counted:
//
//     model A/G, here A/G    the same
//               here G/A    the other allele is counted: 0 and 2 copies change places
//               here T/C    the other strand, read as A/G
//               here C/T    the other strand, read as G/A
//               here A/C    another variant: the marker counts as not found
//     model A/T, here A/T    the same, or the other strand with the other allele: cannot be told,
//     so
//                           the model's strand is taken
//
// Only A, C, G and T have another strand. An allele that is not known (empty, 0 or .) fits any, as
// long as one of both studies is known and agrees; the other strand is believed only where both
// alleles of the model are known. Where neither is known what is counted is taken to be the same.
// Of several markers of the name, the one whose place and alleles fit; where that is not one alone,
// the marker counts as not found.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "genotypes/marker_info.h"

namespace vort {

enum class AlleleFit {
    kSame,
    kSwapped,         // A1 and A2 have changed places
    kFlipped,         // the other strand
    kFlippedSwapped,  // both
    kNameless,        // no allele to go by; taken as counted
    kOther,           // other alleles: not found
    kTwice,           // the name is there more than once: not found
    kAbsent,          // no marker of the name
};

struct MarkerMatch {
    AlleleFit fit = AlleleFit::kAbsent;
    int column = -1;         // of the study, from 0; of kOther too
    bool no_strand = false;  // found, but A/T or C/G, whose strand cannot be told
    bool elsewhere = false;  // on another chromosome, or at another position

    bool found() const { return fit <= AlleleFit::kNameless; }
    bool counts_other() const {
        return fit == AlleleFit::kSwapped || fit == AlleleFit::kFlippedSwapped;
    }
};

// A match for each marker of the model. `places`: chromosomes and positions of both are those of
// the genome.
std::vector<MarkerMatch> match_markers(std::span<const MarkerInfo> model,
                                       std::span<const MarkerInfo> study, bool places);

// "same", "swapped", "flipped", "flipped and swapped", ...
std::string fit_text(AlleleFit fit);

// What is to be told of the matches, a sentence each; nothing where all are the same.
std::vector<std::string> match_notes(std::span<const MarkerInfo> model,
                                     std::span<const MarkerInfo> study,
                                     std::span<const MarkerMatch> matches);

}  // namespace vort
