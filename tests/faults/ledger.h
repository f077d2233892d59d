// A library to preload that makes one call on a watched file fail.
//
// It takes the place of the C library's calls on files in a program that was linked without it, and
// passes each on, but for the one that is to fail. A *position* is the k-th time that the program
// does one kind of call on one file: `write 3 out/markers.tsv`. Counting for each file by itself
// keeps positions where they are when threads take turns differently. Files are named from the
// watched folder on, so the positions of one run are those of the same run in another folder.
//
// The environment says what happens:
//
//   VORT_FAULTS_WATCH  folders, with ':' between them; calls on files outside are passed on
//                      uncounted. `<stdout>` among them watches the standard output.
//   VORT_FAULTS_LOG    a file to which every position is added as it is reached, a line each, with
//                      '!' before the one that failed; at the end of the program a line `alloc N -`
//                      with the number of allocations.
//   VORT_FAULTS_AT     the position that fails; without it none does
//   VORT_FAULTS_DO     how: the name of an error (`ENOSPC`), `short` (half of what was asked for is
//                      read or written), `kill-before` or `kill-after` (the process is killed right
//                      before or after the call). `ENOSPC+` fails from that position on, every call
//                      of that kind on every watched file: a disk that stays full. (The standard
//                      output is no file, and files are no standard output.)
//
// Kinds of calls are not functions: `read` is read() and pread(), `write` is write(), writev() and
// pwrite(), `stat` every question about a file, `unlink` every removal of a file. A rename and a
// link count for the new name. A close that fails has closed all the same, as on Linux.
//
// Allocations are a position, too, `alloc N -`: the N-th since the first call on a watched file, in
// whichever thread. They fail without an error's name: any VORT_FAULTS_DO, with '+' for all that
// follow. Those of this library do not count, since it tells them by a thread-local flag.
//
// Costs: a map's look-up for each call on a file, an addition for each allocation.
//
// Example, a disk that is full when the second piece of a table is written:
//
//   export VORT_FAULTS_WATCH=$PWD VORT_FAULTS_DO=ENOSPC
//   export VORT_FAULTS_AT="write 2 out/.vort-unfinished/markers.tsv"
//   LD_PRELOAD=libvort_faults.so vort run --bfile study --out out
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vort::faults {

// What the library itself allocates is no allocation of the program's. The flag must be there
// before the first allocation of all, so its place is fixed at the program's start.
[[gnu::tls_model("initial-exec")]] extern thread_local bool inside;

class Inside {
  public:
    Inside();
    ~Inside();
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

  private:
    bool before_;
    int error_;
};

// Allocations are counted without a lock, and without the ledger, which allocates.
struct Allocations {
    std::atomic<bool> counting{false};
    std::atomic<long> count{0};
    std::atomic<long> first_failing{0};  // 0 where none is to fail
    std::atomic<long> last_failing{0};
};

extern Allocations allocations;

enum class Deed { kPass, kFail, kShort, kKillBefore, kKillAfter };

struct Verdict {
    Deed deed = Deed::kPass;
    int error = 0;
};

// Watched folders, open files, and how often each position was reached.
class Ledger {
  public:
    static Ledger& instance();

    // A path as the watched folder has it; nothing where it is elsewhere.
    std::optional<std::string> watched(int directory, const char* path);
    void opened(int file, const std::string& name);
    std::optional<std::string> name_of(int file);
    void closed(int file);
    Verdict reach(const char* kind, const std::string& name);
    void log(const std::string& line) const;

  private:
    Ledger();
    void set_fault();
    bool fails(const std::string& kind, const std::string& position);

    std::mutex mutex_;
    std::vector<std::string> folders_;
    std::map<int, std::string> files_;
    std::map<std::string, int> reached_;
    std::string log_;
    std::string at_;
    Verdict fault_;
    bool lasting_ = false;
    bool failing_ = false;
};

// Ends the process as if from outside.
[[noreturn]] void die();

}  // namespace vort::faults
