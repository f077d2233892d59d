// Who is who: individuals by the names that other files call them.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "study/cohort.h"

namespace vort {

class PersonNames {
  public:
    // An individual that is there twice throws InputError.
    explicit PersonNames(const People& people);

    // The number of the person that a line FID IID means, or -1. Where the study has one name for
    // an individual, that is the name itself with FID the same or 0, or the name FID_IID.
    int find(std::string_view family, std::string_view id) const;

  private:
    bool one_name_;
    std::unordered_map<std::string, int> numbers_;
};

// The people, ascending, that --keep and --remove leave. Told to `study`.
std::vector<int> chosen_people(const People& people, const PersonNames& names,
                               const Filters& filters, Study& study);

}  // namespace vort
