#include "cli/prediction_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "cli/doomed_files.h"
#include "common/file_descriptor.h"
#include "common/input_error.h"
#include "common/output_file.h"
#include "common/path_names.h"
#include "common/stop.h"

namespace vort {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEnding = ".tsv";

// NAME.json for NAME.tsv, and for any other NAME.
std::string summary_path(std::string table) {
    if (table.ends_with(kEnding)) table.resize(table.size() - kEnding.size());
    return table + ".json";
}

void write_file(const std::string& path, std::string_view text, Diagnostics& diagnostics) {
    OutputFile file(path, OutputFile::Mode::kNew, diagnostics);
    file << text;
    if (!file.close_on_disk()) stop("", 1);
}

}  // namespace

PredictionOutput::PredictionOutput(const std::string& table, bool force,
                                   std::span<const std::string> inputs)
    : folder_(folder_of(table)),
      unfinished_(table + ".vort-unfinished"),
      table_{table, unfinished_ + "/table"},
      summary_{summary_path(table), unfinished_ + "/summary"} {
    std::error_code failure;
    if (!fs::is_directory(folder_, failure)) {
        input_error(folder_, 0, "is no directory; one that is there expected for " + table);
    }
    require_free(summary_.path, force);
    require_free(table_.path, force);
    require_apart(inputs);
    make_folder();
}

PredictionOutput::~PredictionOutput() {
    discard();
}

void PredictionOutput::require_free(const std::string& path, bool force) const {
    std::error_code failure;
    const fs::file_status there = fs::symlink_status(path, failure);
    if (!fs::exists(there)) return;
    if (!fs::is_regular_file(there) && !fs::is_symlink(there)) {
        input_error(path, 0, "is no regular file; a place for one was expected");
    }
    if (!force) {
        input_error(path, 0,
                    "is there already; name another file by --out, or replace it by --force");
    }
}

void PredictionOutput::require_apart(std::span<const std::string> inputs) const {
    vort::require_apart(inputs, std::array{table_.path, table_.unfinished, summary_.path,
                                           summary_.unfinished, unfinished_});
}

// Whoever holds the folder's lock may remove what is in it.
void PredictionOutput::make_folder() {
    remove_file(unfinished_);  // a link is not followed
    std::error_code failure;
    fs::create_directory(unfinished_, failure);
    if (failure) {
        input_error(
            folder_, 0,
            "cannot be written (" + failure.message() + "); a directory of your own was expected");
    }
    auto lock = std::make_unique<DirectoryLock>(unfinished_);
    if (!lock->held()) {
        input_error(table_.path, 0, "another run is at work on it; name another file");
    }
    lock_ = std::move(lock);
    remove_file(table_.unfinished);
    remove_file(summary_.unfinished);
}

void PredictionOutput::write(std::string_view table, std::string_view summary,
                             Diagnostics& diagnostics) const {
    write_file(summary_.unfinished, summary, diagnostics);
    write_file(table_.unfinished, table, diagnostics);
}

void PredictionOutput::remove_unfinished() const {
    remove_file(table_.unfinished);
    remove_file(summary_.unfinished);
    ::rmdir(unfinished_.c_str());
}

void PredictionOutput::discard() {
    const std::scoped_lock lock(mutex_);
    if (lock_ != nullptr && !complete_) remove_unfinished();
}

void PredictionOutput::publish() {
    const std::scoped_lock lock(mutex_);
    complete_ = true;
    const int error = give_names();
    if (error != 0) {
        throw std::runtime_error(table_.path + ": the results could not get their names (" +
                                 std::strerror(error) + "); they are complete in " + unfinished_);
    }
    ::rmdir(unfinished_.c_str());
}

// Nothing here needs memory. 0, or a value of errno.
int PredictionOutput::give_names() {
    FileDescriptor folder(folder_, O_RDONLY);
    if (!folder.is_open()) return folder.error();
    if (!remove_file(table_.path)) return errno;
    if (!folder.sync()) return folder.error();
    if (std::rename(summary_.unfinished.c_str(), summary_.path.c_str()) != 0) return errno;
    int error = 0;
    if (std::rename(table_.unfinished.c_str(), table_.path.c_str()) != 0) error = errno;
    if (error == 0 && folder.sync()) return 0;
    if (error == 0) error = folder.error();
    [[maybe_unused]] int tried = std::rename(table_.path.c_str(), table_.unfinished.c_str());
    tried = std::rename(summary_.path.c_str(), summary_.unfinished.c_str());
    return error;
}

}  // namespace vort
