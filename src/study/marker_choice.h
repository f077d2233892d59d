// Which markers are taken, by what is known of them without their genotypes.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "genotypes/marker_info.h"
#include "study/chromosome_names.h"
#include "study/study.h"

namespace vort {

// The request's own list, then chromosome, position, --chr, --extract and --exclude.
class MarkerChoice {
  public:
    // Reads the lists of names, which are told as inputs of `study`. The request is not owned.
    MarkerChoice(const StudyRequest& request, Study& study);

    // Counts the marker.
    bool takes(const MarkerInfo& marker);

    // Takes out those that are not taken; `columns` become the places of the others.
    void apply(std::vector<MarkerInfo>& markers, std::vector<int>& columns);

    // Tells `study` what was left out, and names that no marker has.
    void tell(Study& study) const;

  private:
    // A list of names in a file, and which of them were met.
    struct NameList {
        std::string option;
        std::unordered_map<std::string, bool> met;

        void read(const std::string& path, const std::string& role, Study& study);
        bool holds(const std::string& name);
        void tell_unmet(Study& study) const;
    };

    const std::optional<std::set<std::string>>& only_;
    std::string chr_;
    ChromosomeSet chromosomes_;
    NameList extract_{"--extract", {}};
    NameList exclude_{"--exclude", {}};
    bool extracts_;
    bool excludes_;
    long no_chromosome_ = 0;
    long no_position_ = 0;
    long by_chr_ = 0;
    long by_extract_ = 0;
    long by_exclude_ = 0;
};

}  // namespace vort
