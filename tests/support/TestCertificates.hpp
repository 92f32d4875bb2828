// Certificates made here with OpenSSL, for names an attacker may write: a
// name is its attributes in order ("CN" and a value of any characters).
#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <string>
#include <utility>
#include <vector>

namespace OrvelTest {

using Name = std::vector<std::pair<std::string, std::string>>;

// A DER certificate with this subject and issuer (the subject when none),
// valid from now for `days`, signed with a new P-256 key.
inline std::string makeCertificate(const Name &subject, const Name &issuer = {}, long days = 365)
{
    EVP_PKEY *key = EVP_EC_gen("P-256");
    X509 *certificate = X509_new();
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), 0);
    X509_gmtime_adj(X509_getm_notAfter(certificate), days * 86400);
    const auto fill = [](X509_NAME *name, const Name &attributes) {
        for (const auto &[type, value] : attributes)
            X509_NAME_add_entry_by_txt(name, type.c_str(), MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char *>(value.data()),
                                       static_cast<int>(value.size()), -1, 0);
    };
    fill(X509_get_subject_name(certificate), subject);
    fill(X509_get_issuer_name(certificate), issuer.empty() ? subject : issuer);
    X509_set_pubkey(certificate, key);
    X509_sign(certificate, key, EVP_sha256());
    unsigned char *der = nullptr;
    const int length = i2d_X509(certificate, &der);
    std::string bytes(reinterpret_cast<const char *>(der), length > 0 ? static_cast<std::size_t>(length) : 0);
    OPENSSL_free(der);
    X509_free(certificate);
    EVP_PKEY_free(key);
    return bytes;
}

// The spoofing cases: an OU that holds "CN = ...", a line feed and a bidi
// control inside a CN, a forged issuer, and a subject of 230 characters.
struct SpoofedCertificates {
    std::string ouHoldsCommonName = makeCertificate({{"CN", "Mallory"}, {"OU", "x, CN = Jiří Novák, y"}});
    std::string lineFeedInCommonName = makeCertificate({{"C", "CZ"}, {"CN", "Mallory\nO = Česká národní banka"}});
    std::string bidiInCommonName = makeCertificate({{"CN", "Jan \u202EkáváN"}});
    std::string forgedIssuer =
        makeCertificate({{"CN", "Eve"}}, {{"O", "Evil"}, {"OU", "CN = Orvel Test Qualified CA"}, {"CN", "Evil CA"}});
    std::string longSubject = makeCertificate({{"C", "CZ"}, {"ST", "Jihomoravský kraj"}, {"L", "Brno-Královo Pole"},
                                               {"O", "Společnost pro testování velmi dlouhých jmen s.r.o."},
                                               {"OU", "Oddělení elektronického podepisování a archivace"},
                                               {"OU", "Pobočka Brno, Purkyňova 2961-91a"}, {"CN", "Jiří Novák"}});
};

} // namespace OrvelTest
