#include "genotypes/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "common/file_descriptor.h"
#include "common/input_error.h"

namespace vort {

namespace {

[[noreturn]] void fail(const std::string& path, int reason) {
    input_error(path, 0, std::string("cannot be read (") + std::strerror(reason) + ')');
}

}  // namespace

MappedFile::MappedFile(std::string path) : path_(std::move(path)) {
    const FileDescriptor file(path_, O_RDONLY | O_NONBLOCK);
    struct stat status {};
    if (!file.is_open()) fail(path_, file.error());
    if (::fstat(file.number(), &status) != 0) fail(path_, errno);
    if (S_ISDIR(status.st_mode)) fail(path_, EISDIR);
    if (!S_ISREG(status.st_mode)) {
        input_error(path_, 0, "is no regular file, which alone can be mapped");
    }
    size_ = static_cast<std::size_t>(status.st_size);
    if (size() == 0) return;
    void* const memory = ::mmap(nullptr, size(), PROT_READ, MAP_SHARED, file.number(), 0);
    if (memory == MAP_FAILED) fail(path_, errno);
    ::madvise(memory, size(), MADV_SEQUENTIAL);  // only advice
    bytes_ = static_cast<const unsigned char*>(memory);
}

MappedFile::~MappedFile() {
    if (bytes_ != nullptr) ::munmap(const_cast<unsigned char*>(bytes_), size());
}

void MappedFile::let_go(const unsigned char* from, std::size_t size) const {
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const auto offset = static_cast<std::size_t>(from - bytes_);
    const std::size_t first = (offset + page - 1) / page * page;
    const std::size_t last = (offset + size) / page * page;
    if (last <= first) return;
    ::madvise(const_cast<unsigned char*>(bytes_) + first, last - first, MADV_DONTNEED);
}

}  // namespace vort
