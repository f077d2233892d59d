#include "genotypes/text_data_set.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstddef>
#include <iterator>
#include <memory>
#include <mutex>
#include <utility>

#include "common/parallel.h"
#include "genotypes/strip_packer.h"
#include "genotypes/text_rows.h"

namespace vort {

namespace {

// Lets passes that began in order do one part of their work in order.
class InOrder {
  public:
    // `work` of pass i, after that of pass i - 1. Once one throws, no further one is done.
    template <typename Work>
    void run(std::size_t i, Work work) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return turn_ == i || failed_; });
        if (failed_) return;
        failed_ = true;  // unless the work is done
        const Waker wake_others{changed_};
        work();
        failed_ = false;
        ++turn_;
    }

  private:
    struct Waker {
        std::condition_variable& changed;
        ~Waker() { changed.notify_all(); }
    };

    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t turn_ = 0;
    bool failed_ = false;
};

// Memory that is used again.
template <typename T>
class Pool {
  public:
    template <typename Make>
    std::unique_ptr<T> take(Make make) {
        const std::scoped_lock lock(mutex_);
        if (spare_.empty()) return std::make_unique<T>(make());
        std::unique_ptr<T> taken = std::move(spare_.back());
        spare_.pop_back();
        return taken;
    }
    void give_back(std::unique_ptr<T> item) {
        const std::scoped_lock lock(mutex_);
        spare_.push_back(std::move(item));
    }

  private:
    std::mutex mutex_;
    std::vector<std::unique_ptr<T>> spare_;
};

// A strip on its way from its rows to its columns.
struct LoadedStrip {
    std::unique_ptr<PackedStrip> packed;
    std::vector<Remark> remarks;
    int read_error = 0;
    long line = 0;  // that reading ended on
};

class Loader {
  public:
    Loader(const TextDataSet& settings, int threads, Diagnostics& diagnostics)
        : settings_(settings),
          threads_(threads),
          diagnostics_(diagnostics),
          rows_(settings, diagnostics),
          individuals_(std::max(settings.individuals, 0)),
          markers_(std::max(settings.markers, 0)),
          stride_(packed_size(individuals_)),
          columns_(stride_ * static_cast<std::size_t>(markers_)),
          phenotypes_(static_cast<std::size_t>(individuals_)) {}

    DataSet load() {
        const std::size_t strips = (stride_ + kStripBytes - 1) / kStripBytes;
        for_each_in_order(
            threads_, strips, [&](std::size_t s) { return load_strip(s); },
            [&](std::size_t s, LoadedStrip strip) { take_in(s, std::move(strip)); });
        store();
        rows_.diagnose_number_of_rows();
        const auto cases = std::count(phenotypes_.begin(), phenotypes_.end(), 1);
        diagnose_groups(static_cast<int>(cases));
        return {Genotypes(individuals_, markers_, std::move(columns_)), std::move(phenotypes_),
                static_cast<int>(cases), individuals_ - static_cast<int>(cases)};
    }

  private:
    LoadedStrip load_strip(std::size_t s) {
        std::unique_ptr<RowStrip> rows = texts_.take([] { return RowStrip(); });
        const int first = static_cast<int>(s) * kStripRows;
        const int count = std::min(kStripRows, individuals_ - first);
        LoadedStrip strip;
        reading_.run(s, [&] {
            rows_.read(count, *rows, phenotypes_.data() + first);
            strip.line = rows_.line();
        });
        strip.read_error = rows->read_error;
        pack(*rows, count, strip);
        texts_.give_back(std::move(rows));
        return strip;
    }

    void pack(RowStrip& rows, int count, LoadedStrip& strip) {
        std::vector<RowParser> parsers;
        for (std::size_t r = 0; r < rows.rows.size(); ++r) {
            parsers.emplace_back(rows.genotypes_of(r));
        }
        parsers.resize(static_cast<std::size_t>(count), RowParser(""));
        strip.packed = packed_.take([&] { return packed_strip_for(markers_); });
        std::array<int, kStripRows> given{};
        pack_strip(parsers, markers_, *strip.packed, given.data());
        auto remark = rows.remarks.begin();
        for (std::size_t r = 0; r < rows.rows.size(); ++r) {
            const RowStrip::Row& row = rows.rows[r];
            const auto until = rows.remarks.begin() + static_cast<long>(row.remarks_before);
            std::move(remark, until, std::back_inserter(strip.remarks));
            remark = until;
            remark_on_row(settings_, row.line, given[r], parsers[r].lone_minus(), parsers[r].rest(),
                          strip.remarks);
        }
        std::move(remark, rows.remarks.end(), std::back_inserter(strip.remarks));
    }

    // One strip after the other.
    void take_in(std::size_t s, LoadedStrip strip) {
        for (const Remark& remark : strip.remarks) {
            diagnostics_.say(remark.kind, settings_.file, remark.line, remark.text);
        }
        if (strip.read_error != 0) rows_.fail(strip.line, strip.read_error);
        if (waiting_.empty()) first_byte_ = s * kStripBytes;
        waiting_.push_back(std::move(strip.packed));
        if (waiting_.size() == kStripsAtOnce) store();
    }

    void store() {
        if (waiting_.empty()) return;
        std::vector<const PackedStrip*> strips;
        for (const auto& strip : waiting_) strips.push_back(strip.get());
        store_strips(strips, markers_,
                     {columns_.data() + first_byte_, stride_,
                      std::min(strips.size() * kStripBytes, stride_ - first_byte_)});
        for (auto& strip : waiting_) packed_.give_back(std::move(strip));
        waiting_.clear();
    }

    void diagnose_groups(int cases) {
        if (individuals_ > 0 && (cases == 0 || cases == individuals_)) {
            diagnostics_.say("data sets of one group", settings_.file, 0,
                             cases == 0
                                 ? "cases and controls were expected, there are only controls"
                                 : "cases and controls were expected, there are only cases");
        }
    }

    const TextDataSet& settings_;
    int threads_;
    Diagnostics& diagnostics_;
    TextRows rows_;
    InOrder reading_;
    int individuals_;
    int markers_;
    std::size_t stride_;
    LargeArray<unsigned char> columns_;
    std::vector<short> phenotypes_;
    Pool<RowStrip> texts_;
    Pool<PackedStrip> packed_;
    std::vector<std::unique_ptr<PackedStrip>> waiting_;  // to be stored, from byte first_byte_ on
    std::size_t first_byte_ = 0;
};

}  // namespace

DataSet load_text_data_set(const TextDataSet& settings, int threads, Diagnostics& diagnostics,
                           Transcript& transcript) {
    DataSet loaded = Loader(settings, threads, diagnostics).load();
    transcript << "read data is finished\n";
    return loaded;
}

}  // namespace vort
