#include "parts/part_file.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

#include "common/input_error.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "parts/bytes.h"
#include "parts/sha256.h"
#include "results/table_text.h"

namespace vort {

namespace {

constexpr std::string_view kMark = "vort part\n";
constexpr std::uint64_t kVersion = 1;
constexpr std::size_t kDigits = 64;

// Parts of the plan itself are of no task's making.
const char* remedy_for(std::string_view kind) {
    const bool of_a_task = kind == "screen" || kind == "draws" || kind == "model";
    return of_a_task ? "remove it and run its task again"
                     : "make the same plan in another directory, and copy the file from there";
}

struct Title {
    PartTitle title;
    std::string_view payload;
};

Title parsed(std::string_view bytes) {
    ByteReader in(bytes);
    Title read;
    ByteReader::require(in.get<std::uint64_t>() == kVersion);
    read.title.kind = in.get_text();
    read.title.fingerprint = in.get_text();
    read.title.task = in.get<int>();
    read.title.first = in.get<int>();
    read.title.count = in.get<int>();
    read.payload = in.get_text();
    in.require_end();
    return read;
}

std::string name_of(const PartTitle& title) {
    return title.kind + " part of task " + std::to_string(title.task) + ", data sets " +
           std::to_string(title.first) + " to " + std::to_string(title.first + title.count - 1);
}

[[noreturn]] void refuse(const std::string& path, std::string_view kind, const std::string& what) {
    input_error(path, 0, what + "; " + remedy_for(kind));
}

void require_title(const std::string& path, const PartTitle& found, const PartTitle& title) {
    if (found.fingerprint != title.fingerprint) {
        refuse(path, title.kind, "belongs to another plan, or to an earlier form of this one");
    }
    if (found == title) return;
    refuse(path, title.kind,
           "is the " + name_of(found) + "; the " + name_of(title) + " was expected");
}

// All that stands before the payload's length.
ByteWriter begun_with(const PartTitle& title) {
    ByteWriter out{std::string(kMark)};
    out.put(kVersion);
    out.put(title.kind);
    out.put(title.fingerprint);
    out.put(title.task);
    out.put(title.first);
    out.put(title.count);
    return out;
}

bool has_title_and_size(const std::string& path, const PartTitle& title) {
    const std::string expected = begun_with(title).take();
    std::uint64_t payload = 0;
    std::string begin(expected.size() + sizeof payload, '\0');
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);  // of files only
    if (failure) return false;
    std::ifstream file(path, std::ios::binary);
    if (!file.read(begin.data(), static_cast<std::streamsize>(begin.size()))) return false;
    if (!begin.starts_with(expected)) return false;
    std::memcpy(&payload, begin.data() + expected.size(), sizeof payload);
    const std::uintmax_t frame = begin.size() + kDigits;
    return size >= frame && size - frame == payload;
}

}  // namespace

std::string part_bytes(const PartTitle& title, std::string_view payload) {
    ByteWriter out = begun_with(title);
    out.put(payload);
    std::string bytes = std::move(out).take();
    return bytes += sha256(bytes);
}

void write_part(const std::string& path, const PartTitle& title, std::string_view payload,
                Diagnostics& diagnostics) {
    WholeFile file(path, diagnostics);
    if (!file.is_open() || !file.write(part_bytes(title, payload)) || !file.take_name()) {
        stop("", 1);
    }
}

std::string_view payload_of(std::string_view bytes, const std::string& path,
                            const PartTitle& title) {
    if (!bytes.starts_with(kMark)) refuse(path, title.kind, "is no part of a run");
    if (bytes.size() < kMark.size() + kDigits ||
        sha256(bytes.substr(0, bytes.size() - kDigits)) != bytes.substr(bytes.size() - kDigits)) {
        refuse(path, title.kind, "is damaged: its checksum does not agree");
    }
    bytes.remove_prefix(kMark.size());
    bytes.remove_suffix(kDigits);
    try {
        const Title found = parsed(bytes);
        require_title(path, found.title, title);
        return found.payload;
    } catch (const MalformedBytes&) {
        refuse(path, title.kind, "is of another version of the program");
    }
}

void require_title_and_size(const std::string& path, const PartTitle& title) {
    if (!has_title_and_size(path, title)) payload_of(read_part(path), path, title);
}

std::string read_part(const std::string& path) {
    return read_bytes(path, "a part of the plan expected");
}

void refuse_payload(const std::string& path, std::string_view kind) {
    refuse(path, kind, "holds what cannot be");
}

}  // namespace vort
