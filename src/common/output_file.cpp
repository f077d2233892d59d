#include "common/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace vort {

namespace {

int flags_of(OutputFile::Mode mode) {
    constexpr int kWrite = O_WRONLY | O_CREAT;
    switch (mode) {
        case OutputFile::Mode::kAppend:
            return kWrite | O_APPEND;
        case OutputFile::Mode::kNew:
            return kWrite | O_EXCL;
        default:
            return kWrite | O_TRUNC;
    }
}

std::string because(std::string_view what, int error) {
    return std::string(what) + " (" + std::strerror(error) + ')';
}

}  // namespace

bool remove_file(const std::string& path) {
    return ::unlink(path.c_str()) == 0 || errno == ENOENT;
}

OutputFile::OutputFile(std::string path, Mode mode, Diagnostics& diagnostics)
    : diagnostics_(diagnostics),
      path_(std::move(path)),
      file_(path_, flags_of(mode)),
      opened_(file_.is_open()) {
    if (!opened_) {
        diagnostics_.say("files that could not be opened for writing", path_, 0,
                         because("could not be opened for writing", file_.error()));
    }
}

OutputFile::Buffer::int_type OutputFile::Buffer::overflow(int_type character) {
    if (!hand_on()) return traits_type::eof();
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(character);
        pbump(1);
    }
    return traits_type::not_eof(character);
}

std::streamsize OutputFile::Buffer::xsputn(const char* text, std::streamsize size) {
    if (size > epptr() - pptr() && !hand_on()) return 0;
    if (size > epptr() - pptr()) {
        return file_.write({text, static_cast<std::size_t>(size)}) ? size : 0;
    }
    std::memcpy(pptr(), text, static_cast<std::size_t>(size));
    pbump(static_cast<int>(size));
    return size;
}

bool OutputFile::Buffer::hand_on() {
    const std::string_view piece(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    empty();
    return file_.write(piece);
}

bool OutputFile::close() {
    return close(false);
}

bool OutputFile::close_on_disk() {
    return close(true);
}

bool OutputFile::close(bool on_disk) {
    if (!file_.is_open()) return whole_;
    stream_.flush();
    const bool written = stream_.good() && (!on_disk || file_.sync());
    whole_ = file_.close() && written;
    if (!whole_) {
        diagnostics_.say("files that could not be written", path_, 0,
                         because("could not be fully written", file_.error()));
    }
    return whole_;
}

std::string unfinished_name(const std::string& path) {
    return path + ".unfinished";
}

WholeFile::WholeFile(std::string path, Diagnostics& diagnostics)
    : diagnostics_(diagnostics),
      path_(std::move(path)),
      unfinished_(unfinished_name(path_)),
      there_(remove_file(unfinished_)),
      file_(unfinished_, OutputFile::Mode::kNew, diagnostics_) {
    there_ = file_.is_open();
    if (there_) held_ = file_.duplicate();
}

WholeFile::~WholeFile() {
    file_.close();
    if (there_ && !is_replaced()) remove_file(unfinished_);
}

bool WholeFile::write(std::string_view text) {
    file_ << text;
    return file_.close_on_disk();
}

bool WholeFile::is_replaced() const {
    return held_.is_open() && held_.identity() != identity_of_name(unfinished_);
}

bool WholeFile::take_name() {
    if (is_replaced()) return refused(ESTALE);
    if (std::rename(unfinished_.c_str(), path_.c_str()) != 0) return refused(errno);
    there_ = false;
    return true;
}

// The second name goes with this object. File systems without second names are asked first instead.
bool WholeFile::take_free_name() {
    if (is_replaced()) return refused(ESTALE);
    if (::link(unfinished_.c_str(), path_.c_str()) == 0) return true;
    if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS) return refused(errno);
    struct stat there {};
    if (::lstat(path_.c_str(), &there) == 0) return refused(EEXIST);
    return take_name();
}

bool WholeFile::refused(int error) {
    diagnostics_.say("files that could not get their names", path_, 0,
                     because("could not be replaced", error));
    return false;
}

}  // namespace vort
