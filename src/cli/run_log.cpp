#include "cli/run_log.h"

#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <ctime>
#include <fstream>

#include "cli/version.h"
#include "common/number_text.h"

namespace vort {

namespace {

constexpr std::string_view kPlain =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=:,./@%";

// As a shell would take it.
std::string quoted(const std::string& word) {
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
    std::string text = "'";
    for (const char c : word) text += c == '\'' ? "'\\''" : std::string(1, c);
    return text + '\'';
}

std::string processor() {
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("model name")) continue;
        const std::size_t colon = line.find(": ");
        if (colon != std::string::npos) return line.substr(colon + 2);
    }
    return "unknown";
}

}  // namespace

std::string time_text(std::chrono::system_clock::time_point time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &parts);
    return text.data();
}

std::string host_name() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "unknown";
}

void Stopwatch::begin(const std::string& stage) {
    end();
    began_ = Clock::now();
    stages_.push_back({stage, 0});
    running_ = true;
}

void Stopwatch::share(const std::vector<Stage>& stages) {
    end();
    stages_.pop_back();
    stages_.insert(stages_.end(), stages.begin(), stages.end());
}

void Stopwatch::end() {
    if (running_) {
        stages_.back().seconds = std::chrono::duration<double>(Clock::now() - began_).count();
    }
    running_ = false;
}

double Stopwatch::total() const {
    return std::chrono::duration<double>(Clock::now() - first_).count();
}

double peak_megabytes() {
    struct rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

std::string RunLog::text() const {
    std::string out = std::string("vort ") + kVersion + "\ncommand    ";
    for (std::size_t w = 0; w < command.size(); ++w) out += (w > 0 ? " " : "") + quoted(command[w]);
    out += "\nstarted    " + time_text(start);
    out += "\nended      " + time_text(std::chrono::system_clock::now());
    out += "\nhost       " + host_name() + ", " + processor() + ", " +
           std::to_string(::sysconf(_SC_NPROCESSORS_ONLN)) + " processors";
    out += "\nthreads    " + std::to_string(threads);
    out += "\nmemory     " + std::to_string(std::lround(peak_megabytes())) + " MB at most\n";
    out += "\ninputs, with SHA-256\n";
    for (const auto& [file, sha256] : inputs) {
        out += "  " + sha256 + "  " + file.role + "  " + file.path + '\n';
    }
    out += "\nstages, in seconds\n";
    for (const auto& [name, seconds] : stages) {
        out += "  " + to_text(fixed(seconds, 3, 10)) + "  " + name + '\n';
    }
    return out + "\nterminal\n\n" + terminal;
}

}  // namespace vort
