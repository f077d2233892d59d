#include "cli/checksums.h"

#include <openssl/evp.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>

namespace vort {

namespace {

std::string hexadecimal(std::span<const unsigned char> bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

}  // namespace

std::string sha256_of(const std::string& path, const std::atomic<bool>& wanted) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure)) return "(not a regular file)";
    std::ifstream file(path, std::ios::binary);
    struct Free {
        void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
    };
    const std::unique_ptr<EVP_MD_CTX, Free> context(EVP_MD_CTX_new());
    bool sound = file.is_open() && context != nullptr &&
                 EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) == 1;
    std::vector<char> piece(std::size_t{1} << 18);
    while (sound && wanted && file) {
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        sound = !file.bad() && EVP_DigestUpdate(context.get(), piece.data(),
                                                static_cast<std::size_t>(file.gcount())) == 1;
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    sound = sound && EVP_DigestFinal_ex(context.get(), digest.data(), &size) == 1;
    return sound ? hexadecimal({digest.data(), size}) : "(could not be read again)";
}

Checksums::Checksums(std::vector<InputFile> files)
    : made_(std::async(std::launch::async, [this, files = std::move(files)] {
          std::vector<Checksum> made;
          for (const InputFile& file : files) made.push_back({file, sha256_of(file.path, wanted_)});
          return made;
      })) {}

}  // namespace vort
