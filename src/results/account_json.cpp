#include "results/account_json.h"

namespace vort {

using Json = nlohmann::ordered_json;

const char* name_of(StudyFormat format) {
    switch (format) {
        case StudyFormat::kBed:
            return "bed";
        case StudyFormat::kVcf:
            return "vcf";
        case StudyFormat::kRaw:
            return "raw";
        case StudyFormat::kDirectory:
            return "study";
    }
    return "";
}

Json files_json(const Study& study) {
    Json files = Json::array();
    for (const InputFile& file : study.inputs) {
        files.push_back({{"role", file.role}, {"path", file.path}});
    }
    return files;
}

Json left_out_json(const Study& study) {
    Json out = Json::array();
    for (const LeftOut& left : study.left_out) {
        const bool individuals = left.what == LeftOut::What::kIndividuals;
        out.push_back({{"what", individuals ? "individuals" : "markers"},
                       {"count", left.count},
                       {"why", left.why}});
    }
    return out;
}

}  // namespace vort
