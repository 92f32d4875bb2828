// One host certificate record inside the library, its dictionary form and the
// list text: the Base64 of an XML property list holding one seven-entry
// dictionary per certificate, in the host's order (the GUI application
// answers with indices into that order).
#include <OrvelGUIDialogs/Certificate.hpp>

#include "certificate/CertificateBase64.hpp"
#include "platform/HostText.hpp"
#include "platform/PlatformException.hpp"
#include "platform/PropertyList.hpp"

#include <cmath>
#include <iterator>
#include <string_view>
#include <utility>

namespace {

using OrvelDialogs::Platform::PlatformException;
using OrvelDialogs::Platform::PropertyList;

constexpr int kSuccess = 0;
constexpr int kFailure = 7;

constexpr const char *kDataKey = "data";
constexpr const char *kSubjectKey = "subjectStr";
constexpr const char *kNotAfterKey = "notAfterStr";
constexpr const char *kRenewDeadlineKey = "renewDeadlineStr";
constexpr const char *kValidDaysKey = "validDaysRemaining";
constexpr const char *kForceRenewKey = "forceRenew";
constexpr const char *kWarnRenewKey = "warnRenew";

// A null text is a broken record; invalid UTF-8 only becomes an absent text,
// which is refused later, when the dictionary is built.
std::optional<std::string> textOfRecord(const char *text, const char *field)
{
    if (text == nullptr)
        throw PlatformException(std::string("Certificate record: ") + field + " is null");
    return OrvelDialogs::Platform::textFromHost(text);
}

plist_t stringValue(const std::optional<std::string> &text, const char *key)
{
    if (!text)
        throw PlatformException(std::string("Certificate: ") + key + " is absent");
    return OrvelDialogs::Platform::newXmlSafeString(*text);
}

// The entry under `key`; none in anything that is not a dictionary.
plist_t item(plist_t dictionary, const char *key)
{
    if (dictionary == nullptr || plist_get_node_type(dictionary) != PLIST_DICT)
        return nullptr;
    return plist_dict_get_item(dictionary, key);
}

// An entry of the wrong type counts as missing: decoding reports failure only
// for the list as a whole.
std::optional<std::string> textOf(plist_t value)
{
    const auto bytes = OrvelDialogs::Platform::stringValue(value);
    return bytes ? OrvelDialogs::Platform::textFromBytes(*bytes) : std::nullopt;
}

// Any number, as a signed 64-bit value. libplist keeps every integer in one
// 64-bit field (PLIST_UINT), a negative one as its two's complement.
std::optional<int64_t> numberOf(plist_t value)
{
    if (value == nullptr)
        return std::nullopt;
    switch (plist_get_node_type(value)) {
    case PLIST_UINT: {
        uint64_t bits = 0;
        plist_get_uint_val(value, &bits);
        return static_cast<int64_t>(bits);
    }
    case PLIST_REAL: {
        double real = 0;
        plist_get_real_val(value, &real);
        // Truncated toward zero; what no 64-bit integer holds (NaN included)
        // counts as missing instead of being undefined.
        if (!(std::fabs(real) < 0x1p63))
            return std::nullopt;
        return static_cast<int64_t>(real);
    }
    case PLIST_BOOLEAN: {
        uint8_t flag = 0;
        plist_get_bool_val(value, &flag);
        return flag != 0 ? 1 : 0;
    }
    default:
        return std::nullopt;
    }
}

// True for true and for any non-zero number.
bool flagOf(plist_t value)
{
    if (value != nullptr && plist_get_node_type(value) == PLIST_REAL) {
        // Not through numberOf: 0.5 is non-zero though it truncates to 0.
        double real = 0;
        plist_get_real_val(value, &real);
        return real != 0;
    }
    return numberOf(value).value_or(0) != 0;
}

} // namespace

Certificate::Certificate() = default;

Certificate &Certificate::initWithCertificate(ORV_Certificate record)
{
    // No bytes to copy from is as broken as a null text; a null pointer with
    // no length is just an empty certificate.
    if (record.data == nullptr && record.dataLength != 0)
        throw PlatformException("Certificate record: data is null");
    std::string data = record.data != nullptr ? std::string(record.data, record.dataLength) : std::string();
    auto subject = textOfRecord(record.subjectStr, "subjectStr");
    auto notAfter = textOfRecord(record.notAfterStr, "notAfterStr");
    auto renewDeadline = textOfRecord(record.renewDeadlineStr, "renewDeadlineStr");

    // Assigned only once nothing can throw, so a refused record leaves the
    // object as it was.
    data_ = std::move(data);
    subjectStr_ = std::move(subject);
    notAfterStr_ = std::move(notAfter);
    renewDeadlineStr_ = std::move(renewDeadline);
    validDaysRemaning_ = record.validDaysRemaining;
    forceRenew_ = record.forceRenew;
    warnRenew_ = record.warnRenew;
    return *this;
}

plist_t Certificate::encodeCertificateToDictionary() const
{
    PropertyList dictionary(plist_new_dict());
    // libplist copies the text: one buffer serves every certificate of a list.
    static thread_local std::string encoded;
    OrvelDialogs::CertificateCodec::encodeInto(data_, encoded);
    plist_dict_set_item(dictionary.get(), kDataKey, plist_new_string(encoded.c_str()));
    plist_dict_set_item(dictionary.get(), kSubjectKey, stringValue(subjectStr_, kSubjectKey));
    plist_dict_set_item(dictionary.get(), kNotAfterKey, stringValue(notAfterStr_, kNotAfterKey));
    plist_dict_set_item(dictionary.get(), kRenewDeadlineKey, stringValue(renewDeadlineStr_, kRenewDeadlineKey));
    // libplist has one integer node type, PLIST_UINT, holding 64 bits. Its
    // XML writer prints that value as signed (only an integer that was read
    // from a document as larger than INT64_MAX is printed unsigned), and its
    // XML and binary readers store a negative number's two's complement. So
    // the sign-extended bits of a negative count are written as
    // <integer>-5</integer> and read back as -5: no workaround is needed.
    plist_dict_set_item(dictionary.get(), kValidDaysKey,
                        plist_new_uint(static_cast<uint64_t>(static_cast<int64_t>(validDaysRemaning_))));
    plist_dict_set_item(dictionary.get(), kForceRenewKey, plist_new_bool(forceRenew_ ? 1 : 0));
    plist_dict_set_item(dictionary.get(), kWarnRenewKey, plist_new_bool(warnRenew_ ? 1 : 0));
    return dictionary.release();
}

void Certificate::decodeCertificateFromDictionary(plist_t dictionary)
{
    // Every property is assigned: a missing entry (or no dictionary at all)
    // gives the default.
    const auto encoded = OrvelDialogs::Platform::stringValue(item(dictionary, kDataKey));
    data_ = encoded ? b64StringToData(std::string(*encoded)) : std::string();
    subjectStr_ = textOf(item(dictionary, kSubjectKey));
    notAfterStr_ = textOf(item(dictionary, kNotAfterKey));
    renewDeadlineStr_ = textOf(item(dictionary, kRenewDeadlineKey));
    // Only the low 32 bits count, as for a C int taken from a wider number.
    const int64_t days = numberOf(item(dictionary, kValidDaysKey)).value_or(0);
    validDaysRemaning_ = static_cast<int32_t>(static_cast<uint32_t>(days));
    forceRenew_ = flagOf(item(dictionary, kForceRenewKey));
    warnRenew_ = flagOf(item(dictionary, kWarnRenewKey));
}

int Certificate::encodeCertificateArrayToPropertyList(const std::vector<Certificate> &certificates,
                                                      std::string &outText)
{
    PropertyList array(plist_new_array());
    for (const Certificate &certificate : certificates)
        plist_array_append_item(array.get(), certificate.encodeCertificateToDictionary());
    OrvelDialogs::Platform::XmlBuffer storage;
    const std::string_view xml = OrvelDialogs::Platform::propertyListToXml(array.get(), storage);
    // The nodes go before the text is made: less memory held at its peak.
    array.reset();
    OrvelDialogs::CertificateCodec::encodeInto(xml, outText);
    return xml.empty() ? kFailure : kSuccess;
}

int Certificate::decodeCertificateArrayFromPropertyList(const std::string &text, std::vector<Certificate> &outArray)
{
    return OrvelDialogs::CertificateCodec::decodeList(b64StringToData(text), outArray);
}

int OrvelDialogs::CertificateCodec::decodeList(std::string_view propertyList, std::vector<Certificate> &outArray)
{
    const PropertyList root = OrvelDialogs::Platform::propertyListFromBytes(propertyList);
    // Only a non-empty array of dictionaries is a list of certificates. Any
    // other root (a single dictionary, say) or element is refused as a whole,
    // before anything reaches outArray.
    if (root == nullptr || plist_get_node_type(root.get()) != PLIST_ARRAY)
        return kFailure;
    const uint32_t count = plist_array_get_size(root.get());
    if (count == 0)
        return kFailure;

    std::vector<Certificate> decoded(count);
    for (uint32_t i = 0; i < count; ++i) {
        plist_t element = plist_array_get_item(root.get(), i);
        if (element == nullptr || plist_get_node_type(element) != PLIST_DICT)
            return kFailure;
        decoded[i].decodeCertificateFromDictionary(element);
    }
    outArray.reserve(outArray.size() + decoded.size());
    outArray.insert(outArray.end(), std::make_move_iterator(decoded.begin()), std::make_move_iterator(decoded.end()));
    return kSuccess;
}
