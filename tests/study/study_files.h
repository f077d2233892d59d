// Studies written to files of every format, and what was loaded as text.
#pragma once

#include <string>
#include <vector>

#include "common/input_error.h"
#include "study/study.h"
#include "support/temporary_folder.h"

namespace vort::testing {

// A study as it is before it is written: codes[j][i] is -1, 0, 1 or 2.
struct PlainStudy {
    std::vector<std::string> people;  // "FID IID PAT MAT SEX PHENOTYPE"
    std::vector<MarkerInfo> markers;
    std::vector<std::vector<int>> codes;
};

inline std::string bed_of(const std::vector<std::vector<int>>& codes) {
    constexpr int kBits[] = {1, 3, 2, 0};
    std::string bed("\x6C\x1B\x01", 3);
    for (const auto& column : codes) {
        std::string bytes((column.size() + 3) / 4, '\0');
        for (std::size_t i = 0; i < column.size(); ++i) {
            bytes[i / 4] = static_cast<char>(bytes[i / 4] | kBits[column[i] + 1] << 2 * (i % 4));
        }
        bed += bytes;
    }
    return bed;
}

inline std::string bim_of(const std::vector<MarkerInfo>& markers) {
    std::string bim;
    for (const MarkerInfo& m : markers) {
        bim += std::to_string(m.chromosome) + '\t' + m.name + "\t0\t" + std::to_string(m.position) +
               '\t' + m.a1 + '\t' + m.a2 + '\n';
    }
    return bim;
}

inline void write_bed(const PlainStudy& study, const std::string& prefix) {
    std::string fam;
    for (const std::string& person : study.people) fam += person + '\n';
    write_file(prefix + ".bed", bed_of(study.codes));
    write_file(prefix + ".bim", bim_of(study.markers));
    write_file(prefix + ".fam", fam);
}

inline StudyRequest bed_request(const std::string& prefix) {
    StudyRequest request;
    request.files.bed = prefix + ".bed";
    request.files.bim = prefix + ".bim";
    request.files.fam = prefix + ".fam";
    return request;
}

inline StudyRequest directory_request(const std::string& folder) {
    StudyRequest request;
    request.files.format = StudyFormat::kDirectory;
    request.files.directory = folder;
    return request;
}

// One word a marker, a character an individual.
inline std::string codes_of(const Genotypes& genotypes) {
    std::string codes;
    for (int j = 0; j < genotypes.markers(); ++j) {
        if (j > 0) codes += ' ';
        for (int i = 0; i < genotypes.individuals(); ++i) codes += "-012"[genotypes.code(i, j) + 1];
    }
    return codes;
}

inline std::string phenotypes_of(const Study& study) {
    std::string text;
    for (const short phenotype : study.phenotypes) text += phenotype == 1 ? '1' : '0';
    return text;
}

inline std::string people_of(const Study& study) {
    std::string text;
    for (const Individual& person : study.individuals) {
        text += person.family + '/' + person.id + ' ';
    }
    return text;
}

inline std::string markers_of(const Study& study) {
    std::string text;
    for (const MarkerInfo& m : study.markers) {
        text += std::to_string(m.chromosome) + ':' + std::to_string(m.position) + ':' + m.name +
                ':' + m.a1 + m.a2 + ' ';
    }
    return text;
}

inline std::string left_out_of(const Study& study) {
    std::string text;
    for (const LeftOut& out : study.left_out) {
        text += std::to_string(out.count) +
                (out.what == LeftOut::What::kMarkers ? " markers " : " people ") + out.why + "; ";
    }
    return text;
}

inline std::string notes_of(const Study& study) {
    std::string text;
    for (const std::string& note : study.notes) text += note + '\n';
    return text;
}

// The text of the InputError that loading ends in; "none" where it does not.
inline std::string fault_of(const StudyRequest& request) try {
    load_study(request);
    return "none";
} catch (const InputError& error) {
    return error.text;
}

}  // namespace vort::testing
