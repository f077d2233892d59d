// Report and intermediate files whose loss is never silent.
#pragma once

#include <array>
#include <ostream>
#include <streambuf>
#include <string>

#include "common/diagnostics.h"
#include "common/file_descriptor.h"

namespace vort {

// Removes a file, if there is one; a directory of that name stays. False, and errno, where it could
// not be removed.
bool remove_file(const std::string& path);

// An output stream to a file. A file that cannot be opened, or that could not be written to its
// end (a full disk), is told on standard error; what the program does about it is the caller's.
class OutputFile {
  public:
    enum class Mode {
        kTruncate,
        kAppend,
        kNew,  // only where nothing has that name, a link included
    };

    // `diagnostics` is not owned.
    OutputFile(std::string path, Mode mode, Diagnostics& diagnostics);
    ~OutputFile() { close(); }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool is_open() const { return opened_; }
    // Keeps the file in being when it has been closed, as long as it is open itself.
    FileDescriptor duplicate() const { return file_.duplicate(); }
    std::ostream& stream() { return stream_; }

    template <typename T>
    OutputFile& operator<<(const T& value) {
        stream_ << value;
        return *this;
    }

    // Safe to call twice. False where the file could not be written to its end.
    bool close();
    // The same, with all of it on the disk.
    bool close_on_disk();

  private:
    // Gathers what is written into pieces.
    class Buffer : public std::streambuf {
      public:
        explicit Buffer(FileDescriptor& file) : file_(file) { empty(); }

      protected:
        int_type overflow(int_type character) override;
        std::streamsize xsputn(const char* text, std::streamsize size) override;
        int sync() override { return hand_on() ? 0 : -1; }

      private:
        void empty() { setp(piece_.data(), piece_.data() + piece_.size()); }
        bool hand_on();

        FileDescriptor& file_;
        std::array<char, 65536> piece_;
    };

    bool close(bool on_disk);

    Diagnostics& diagnostics_;
    std::string path_;
    FileDescriptor file_;
    Buffer buffer_{file_};
    std::ostream stream_{&buffer_};
    bool opened_;
    bool whole_ = false;  // once it is closed
};

// What a file is called until it has its name.
std::string unfinished_name(const std::string& path);

// A file that gets its name when all of it is on the disk: until then it is PATH.unfinished. A
// process that is killed leaves the file of that name as it was; another one that writes the same
// file at the same time, where nothing keeps it out, costs one of the two its name.
class WholeFile {
  public:
    // Whether it could be opened, and why it could not, is told as of an OutputFile.
    WholeFile(std::string path, Diagnostics& diagnostics);
    // Removes what has not got its name.
    ~WholeFile();
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    bool is_open() const { return file_.is_open(); }
    // Writes the text and brings it to the disk.
    bool write(std::string_view text);
    // Replaces what has the name. False, told, where that cannot be done.
    bool take_name();
    // Takes the name only where nothing has it, a link included.
    bool take_free_name();

  private:
    bool refused(int error);
    bool is_replaced() const;

    Diagnostics& diagnostics_;
    std::string path_;
    std::string unfinished_;
    bool there_ = false;
    OutputFile file_;
    FileDescriptor held_;  // so that no other file gets its identity
};

}  // namespace vort
