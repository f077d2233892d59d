#include "parts/sha256.h"

#include <openssl/evp.h>

#include <array>
#include <new>
#include <span>

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

template <auto Free>
struct Freed {
    template <typename T>
    void operator()(T* pointer) const {
        Free(pointer);
    }
};

void require(bool done) {
    if (!done) throw std::bad_alloc();
}

// With a context of its own, since OpenSSL's shared one does not notice that it lacks memory.
class Algorithm {
  public:
    Algorithm() : library_(OSSL_LIB_CTX_new()) {
        require(library_ != nullptr);
        kind_.reset(EVP_MD_fetch(library_.get(), "SHA256", nullptr));
        require(kind_ != nullptr);
    }
    const EVP_MD* kind() const { return kind_.get(); }

  private:
    std::unique_ptr<OSSL_LIB_CTX, Freed<OSSL_LIB_CTX_free>> library_;
    std::unique_ptr<EVP_MD, Freed<EVP_MD_free>> kind_;
};

// To make it takes as long as the checksum of a megabyte.
const Algorithm& algorithm() {
    static const Algorithm made;
    return made;
}

}  // namespace

struct Sha256::State {
    std::unique_ptr<EVP_MD_CTX, Freed<EVP_MD_CTX_free>> digest{EVP_MD_CTX_new()};
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
    require(state_->digest &&
            EVP_DigestInit_ex(state_->digest.get(), algorithm().kind(), nullptr) == 1);
}

Sha256::~Sha256() = default;

void Sha256::add(std::string_view bytes) {
    require(EVP_DigestUpdate(state_->digest.get(), bytes.data(), bytes.size()) == 1);
}

std::string Sha256::text() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    require(EVP_DigestFinal_ex(state_->digest.get(), digest.data(), &size) == 1);
    return hexadecimal({digest.data(), size});
}

std::string sha256(std::string_view bytes) {
    Sha256 digest;
    digest.add(bytes);
    return digest.text();
}

}  // namespace vort
