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

}  // namespace

// With a context of its own, since the shared one does not notice that it lacks memory.
struct Sha256::State {
    std::unique_ptr<OSSL_LIB_CTX, Freed<OSSL_LIB_CTX_free>> library{OSSL_LIB_CTX_new()};
    std::unique_ptr<EVP_MD, Freed<EVP_MD_free>> kind;
    std::unique_ptr<EVP_MD_CTX, Freed<EVP_MD_CTX_free>> digest;
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
    if (state_->library) {
        state_->kind.reset(EVP_MD_fetch(state_->library.get(), "SHA256", nullptr));
    }
    if (state_->kind) state_->digest.reset(EVP_MD_CTX_new());
    require(state_->digest &&
            EVP_DigestInit_ex(state_->digest.get(), state_->kind.get(), nullptr) == 1);
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
