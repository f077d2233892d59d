#include "vort/report_files.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "common/file_descriptor.h"
#include "common/output_file.h"
#include "common/stop.h"

namespace vort {

namespace {

// A file of p-values that cannot be opened has always been an end without a message or a status.
void stop_unwritable(const char* name) {
    stop("", name == kReportNames[0] ? 0 : 1);
}

// 0, or a value of errno.
int remove_earlier(const std::string& path) {
    return remove_file(path) ? 0 : errno;
}

void require_removed(int error, const char* name, const std::string& path,
                     Diagnostics& diagnostics) {
    if (error == 0) return;
    diagnostics.say(
        "files that could not be replaced", path, 0,
        std::string("could not be replaced (") + std::strerror(error) + "); nothing is analysed");
    stop_unwritable(name);
}

std::array<std::string, 2> paths_in(const std::string& folder) {
    return {folder + kReportNames[0], folder + kReportNames[1]};
}

}  // namespace

void clear_reports(const std::string& folder, Diagnostics& diagnostics) {
    const auto paths = paths_in(folder);
    const std::array errors = {remove_earlier(paths[0]), remove_earlier(paths[1])};
    for (std::size_t k = 0; k < 2; ++k) {
        require_removed(errors[k], kReportNames[k], paths[k], diagnostics);
    }
    for (std::size_t k = 0; k < 2; ++k) {
        if (!WholeFile(paths[k], diagnostics).is_open()) stop_unwritable(kReportNames[k]);
    }
}

void write_reports(const ReportTexts& texts, const std::string& folder, Diagnostics& diagnostics) {
    const auto paths = paths_in(folder);
    FileDescriptor names(folder.empty() ? "." : folder, O_RDONLY);
    WholeFile pvalues(paths[0], diagnostics);
    WholeFile report(paths[1], diagnostics);
    const bool written = pvalues.is_open() && report.is_open() && pvalues.write(texts.pvalues) &&
                         report.write(texts.report);
    if (written && pvalues.take_name() && report.take_name()) {
        if (names.is_open()) names.sync();
        return;
    }
    for (const std::string& path : paths) remove_file(path);
    stop("", 1);
}

}  // namespace vort
