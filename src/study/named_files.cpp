#include "common/path_names.h"
#include "study/study.h"

namespace vort {

std::vector<std::string> named_files(const StudyRequest& request) {
    const StudyFiles& files = request.files;
    const Filters& filters = request.filters;
    std::vector<std::string> named;
    for (const std::string* path : {&files.bed, &files.bim, &files.fam, &files.vcf, &files.raw,
                                    &request.phenotype.file, &request.within.file, &filters.keep,
                                    &filters.remove, &filters.extract, &filters.exclude}) {
        if (!path->empty()) named.push_back(*path);
    }
    if (!files.directory.empty()) {
        for (const char* name : {"parameter.txt", "Chromosome_SNP_Name.txt"}) {
            named.push_back(path_in(files.directory, name));
        }
    }
    return named;
}

std::vector<std::string> paths_of(const std::vector<InputFile>& files) {
    std::vector<std::string> paths;
    paths.reserve(files.size());
    for (const InputFile& file : files) paths.push_back(file.path);
    return paths;
}

}  // namespace vort
