#include "common/Pkcs12Check.hpp"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pkcs12.h>

#include <memory>

namespace OrvelGui {
namespace {

struct BioFree {
    void operator()(BIO *b) const { BIO_free(b); }
};
struct Pkcs12Free {
    void operator()(PKCS12 *p) const { PKCS12_free(p); }
};

// Larger than any real PKCS#12 file; keeps a huge file from being read whole.
constexpr long kMaxFileSize = 16L << 20;

} // namespace

Pkcs12Check checkPkcs12(const std::string &path, const std::string &password)
{
    std::unique_ptr<BIO, BioFree> file(BIO_new_file(path.c_str(), "rb"));
    if (!file) {
        ERR_clear_error();
        return Pkcs12Check::CannotRead;
    }
    std::unique_ptr<BIO, BioFree> limited(BIO_new(BIO_s_mem()));
    char buffer[8192];
    long total = 0;
    for (;;) {
        const int n = BIO_read(file.get(), buffer, sizeof buffer);
        if (n <= 0)
            break;
        total += n;
        if (total > kMaxFileSize || !limited || BIO_write(limited.get(), buffer, n) != n) {
            ERR_clear_error();
            return Pkcs12Check::NotPkcs12;
        }
    }
    std::unique_ptr<PKCS12, Pkcs12Free> p12(d2i_PKCS12_bio(limited.get(), nullptr));
    if (!p12) {
        ERR_clear_error();
        return Pkcs12Check::NotPkcs12;
    }
    if (PKCS12_mac_present(p12.get()) != 1)
        return Pkcs12Check::Ok; // nothing to check the password against
    // An empty password may stand for "no password" or for "", as OpenSSL's
    // own tools try both.
    const bool ok = PKCS12_verify_mac(p12.get(), password.c_str(), static_cast<int>(password.size())) == 1 ||
                    (password.empty() && PKCS12_verify_mac(p12.get(), nullptr, 0) == 1);
    ERR_clear_error();
    return ok ? Pkcs12Check::Ok : Pkcs12Check::WrongPassword;
}

} // namespace OrvelGui
