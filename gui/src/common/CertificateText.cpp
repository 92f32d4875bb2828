#include "common/CertificateText.hpp"

#include <openssl/asn1.h>
#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <arpa/inet.h>
#include <sys/socket.h>

#include <climits>
#include <ctime>
#include <memory>

namespace OrvelGui {
namespace {

struct X509Free {
    void operator()(X509 *x) const { X509_free(x); }
};
struct BioFree {
    void operator()(BIO *b) const { BIO_free(b); }
};
struct BnFree {
    void operator()(BIGNUM *b) const { BN_free(b); }
};
using X509Ptr = std::unique_ptr<X509, X509Free>;
using BioPtr = std::unique_ptr<BIO, BioFree>;
using BnPtr = std::unique_ptr<BIGNUM, BnFree>;

X509Ptr parse(std::string_view bytes)
{
    if (bytes.empty() || bytes.size() > INT_MAX)
        return nullptr;
    const auto *p = reinterpret_cast<const unsigned char *>(bytes.data());
    X509Ptr cert(d2i_X509(nullptr, &p, static_cast<long>(bytes.size())));
    if (!cert && bytes.find("-----BEGIN") != std::string_view::npos) {
        BioPtr bio(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
        if (bio)
            cert.reset(PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr));
    }
    ERR_clear_error();
    return cert;
}

std::string nameText(const X509_NAME *name)
{
    BioPtr bio(BIO_new(BIO_s_mem()));
    if (!bio || !name)
        return {};
    // One line, UTF-8 kept as it is; control characters are escaped.
    X509_NAME_print_ex(bio.get(), name, 0, XN_FLAG_ONELINE & ~ASN1_STRFLGS_ESC_MSB);
    char *data = nullptr;
    const long length = BIO_get_mem_data(bio.get(), &data);
    return length > 0 ? std::string(data, static_cast<std::size_t>(length)) : std::string();
}

// Each attribute of a name by its type, in the certificate's order.
DistinguishedName nameAttributes(const X509_NAME *name)
{
    DistinguishedName attributes;
    const int count = name ? X509_NAME_entry_count(name) : 0;
    for (int i = 0; i < count; ++i) {
        const X509_NAME_ENTRY *entry = X509_NAME_get_entry(name, i);
        const ASN1_OBJECT *object = X509_NAME_ENTRY_get_object(entry);
        const int nid = OBJ_obj2nid(object);
        NameAttribute attribute;
        const char *shortName = nid != NID_undef ? OBJ_nid2sn(nid) : nullptr;
        if (shortName) {
            attribute.type = shortName;
        } else {
            char oid[128] = {};
            OBJ_obj2txt(oid, sizeof oid, object, 1);
            attribute.type = oid;
        }
        attribute.commonName = nid == NID_commonName;
        attribute.sameSetAsPrevious = i > 0 && X509_NAME_ENTRY_set(entry) == X509_NAME_ENTRY_set(X509_NAME_get_entry(name, i - 1));
        const ASN1_STRING *data = X509_NAME_ENTRY_get_data(entry);
        unsigned char *utf8 = nullptr;
        const int length = ASN1_STRING_to_UTF8(&utf8, data);
        if (length >= 0) {
            attribute.value.assign(reinterpret_cast<const char *>(utf8), static_cast<std::size_t>(length));
        } else if (data) {
            // Not convertible (a broken BMPString, say): the bytes as they
            // are, which the windows show as markers where they are no text.
            attribute.value.assign(reinterpret_cast<const char *>(ASN1_STRING_get0_data(data)),
                                   static_cast<std::size_t>(ASN1_STRING_length(data)));
        }
        OPENSSL_free(utf8);
        attributes.push_back(std::move(attribute));
    }
    return attributes;
}

std::string publicKeyText(X509 *cert)
{
    EVP_PKEY *key = X509_get0_pubkey(cert);
    if (!key)
        return "?";
    const int id = EVP_PKEY_get_base_id(key);
    const char *name = OBJ_nid2sn(id);
    std::string text = name ? name : "?";
    if (id == EVP_PKEY_EC) {
        char curve[80] = {};
        std::size_t curveLength = 0;
        if (EVP_PKEY_get_utf8_string_param(key, "group", curve, sizeof curve, &curveLength) == 1)
            text += std::string(" ") + curve;
    }
    const int bits = EVP_PKEY_get_bits(key);
    if (bits > 0)
        text += ", " + std::to_string(bits) + " bits";
    return text;
}

std::vector<std::string> alternativeNames(X509 *cert)
{
    std::vector<std::string> names;
    auto *general = static_cast<GENERAL_NAMES *>(X509_get_ext_d2i(cert, NID_subject_alt_name, nullptr, nullptr));
    if (!general)
        return names;
    for (int i = 0; i < sk_GENERAL_NAME_num(general); ++i) {
        const GENERAL_NAME *name = sk_GENERAL_NAME_value(general, i);
        int type = 0;
        const auto *value = static_cast<const ASN1_STRING *>(GENERAL_NAME_get0_value(name, &type));
        const auto text = [&](const char *prefix) {
            names.push_back(prefix + std::string(reinterpret_cast<const char *>(ASN1_STRING_get0_data(value)),
                                                 static_cast<std::size_t>(ASN1_STRING_length(value))));
        };
        if (type == GEN_DNS)
            text("DNS:");
        else if (type == GEN_EMAIL)
            text("email:");
        else if (type == GEN_URI)
            text("URI:");
        else if (type == GEN_IPADD && (ASN1_STRING_length(value) == 4 || ASN1_STRING_length(value) == 16)) {
            char buffer[64] = {};
            const int family = ASN1_STRING_length(value) == 4 ? AF_INET : AF_INET6;
            if (inet_ntop(family, ASN1_STRING_get0_data(value), buffer, sizeof buffer))
                names.push_back(std::string("IP:") + buffer);
        } else
            names.push_back("other:?");
    }
    GENERAL_NAMES_free(general);
    return names;
}

std::optional<std::int64_t> epochOf(const ASN1_TIME *time)
{
    struct tm tm{};
    if (!time || ASN1_TIME_to_tm(time, &tm) != 1)
        return std::nullopt;
    return static_cast<std::int64_t>(timegm(&tm));
}

std::string timeText(const ASN1_TIME *time)
{
    struct tm tm{};
    if (!time || ASN1_TIME_to_tm(time, &tm) != 1)
        return "?";
    char buffer[64];
    std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M:%S UTC", &tm);
    return buffer;
}

std::string hexColons(const unsigned char *bytes, std::size_t length)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    for (std::size_t i = 0; i < length; ++i) {
        if (i)
            out.push_back(':');
        out.push_back(digits[bytes[i] >> 4]);
        out.push_back(digits[bytes[i] & 0x0F]);
    }
    return out;
}

std::string serialText(const ASN1_INTEGER *serial)
{
    BnPtr bn(serial ? ASN1_INTEGER_to_BN(serial, nullptr) : nullptr);
    if (!bn)
        return "?";
    std::string bytes(static_cast<std::size_t>(BN_num_bytes(bn.get())), '\0');
    BN_bn2bin(bn.get(), reinterpret_cast<unsigned char *>(bytes.data()));
    if (bytes.empty())
        return "00";
    std::string text = BN_is_negative(bn.get()) ? "-" : "";
    text += hexColons(reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
    return text;
}

} // namespace

CertificateDetails readCertificate(std::string_view bytes)
{
    CertificateDetails details;
    X509Ptr cert = parse(bytes);
    if (!cert)
        return details;
    details.isCertificate = true;

    unsigned char *der = nullptr;
    const int derLength = i2d_X509(cert.get(), &der);
    if (derLength > 0 && der)
        details.der.assign(reinterpret_cast<const char *>(der), static_cast<std::size_t>(derLength));
    OPENSSL_free(der);

    details.subject = nameText(X509_get_subject_name(cert.get()));
    details.issuer = nameText(X509_get_issuer_name(cert.get()));
    details.subjectName = nameAttributes(X509_get_subject_name(cert.get()));
    details.issuerName = nameAttributes(X509_get_issuer_name(cert.get()));
    details.publicKey = publicKeyText(cert.get());
    const int signatureNid = X509_get_signature_nid(cert.get());
    details.signatureAlgorithm = signatureNid != NID_undef ? OBJ_nid2ln(signatureNid) : "?";
    details.subjectAltNames = alternativeNames(cert.get());
    details.serial = serialText(X509_get0_serialNumber(cert.get()));
    details.notBefore = timeText(X509_get0_notBefore(cert.get()));
    details.notAfter = timeText(X509_get0_notAfter(cert.get()));
    details.notAfterEpoch = epochOf(X509_get0_notAfter(cert.get()));

    unsigned char md[EVP_MAX_MD_SIZE];
    unsigned int mdLength = 0;
    if (X509_digest(cert.get(), EVP_sha256(), md, &mdLength) == 1)
        details.sha256 = hexColons(md, mdLength);
    if (X509_digest(cert.get(), EVP_sha1(), md, &mdLength) == 1)
        details.sha1 = hexColons(md, mdLength);

    const std::uint32_t usage = X509_get_key_usage(cert.get());
    if (usage != UINT32_MAX) {
        details.keyUsageRestricted = true;
        static const std::pair<std::uint32_t, const char *> kUsages[] = {
            {KU_DIGITAL_SIGNATURE, "digitalSignature"}, {KU_NON_REPUDIATION, "nonRepudiation"},
            {KU_KEY_ENCIPHERMENT, "keyEncipherment"},   {KU_DATA_ENCIPHERMENT, "dataEncipherment"},
            {KU_KEY_AGREEMENT, "keyAgreement"},         {KU_KEY_CERT_SIGN, "keyCertSign"},
            {KU_CRL_SIGN, "cRLSign"},                   {KU_ENCIPHER_ONLY, "encipherOnly"},
            {KU_DECIPHER_ONLY, "decipherOnly"},
        };
        for (const auto &[bit, name] : kUsages)
            if (usage & bit)
                details.keyUsage.push_back(name);
    }
    const std::uint32_t extended = X509_get_extended_key_usage(cert.get());
    if (extended != UINT32_MAX) {
        static const std::pair<std::uint32_t, const char *> kExtended[] = {
            {XKU_SSL_SERVER, "serverAuth"}, {XKU_SSL_CLIENT, "clientAuth"}, {XKU_SMIME, "emailProtection"},
            {XKU_CODE_SIGN, "codeSigning"}, {XKU_OCSP_SIGN, "OCSPSigning"}, {XKU_TIMESTAMP, "timeStamping"},
            {XKU_ANYEKU, "anyExtendedKeyUsage"},
        };
        for (const auto &[bit, name] : kExtended)
            if (extended & bit)
                details.extendedKeyUsage.push_back(name);
    }
    ERR_clear_error();
    return details;
}

} // namespace OrvelGui
