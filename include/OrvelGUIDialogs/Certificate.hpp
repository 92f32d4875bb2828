// Certificate: one certificate inside the library, and the certificate-list
// encoding that carries a list of them to the GUI application (the Base64 of
// an XML property list of seven-entry dictionaries).
#ifndef ORVEL_CERTIFICATE_HPP
#define ORVEL_CERTIFICATE_HPP

#include <OrvelGUIDialogs/OrvelExport.h>
#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <plist/plist.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class ORV_EXPORT Certificate {
public:
    Certificate();

    // Copies the record (the host keeps it) and returns this object. Throws
    // the platform exception for a null text; a text that is not valid UTF-8
    // is kept as absent.
    Certificate &initWithCertificate(ORV_Certificate record);

    // A new dictionary (the caller frees it with plist_free). Throws the
    // platform exception when a text property is absent.
    plist_t encodeCertificateToDictionary() const;
    // Fills this object from a dictionary, which stays the caller's; missing
    // entries give defaults.
    void decodeCertificateFromDictionary(plist_t dictionary);

    // out `outText`: the list text (the Base64 of an XML property list) of
    // the certificates, in their order: 0; or 7 with the empty text.
    static int encodeCertificateArrayToPropertyList(const std::vector<Certificate> &certificates,
                                                    std::string &outText);
    // Appends the decoded certificates to outArray: 0, or 7 for text that is
    // not a non-empty list of dictionaries (outArray then unchanged).
    static int decodeCertificateArrayFromPropertyList(const std::string &text,
                                                      std::vector<Certificate> &outArray);

    // Standard Base64 with "=" padding.
    static std::string dataToBase64String(const std::string &bytes);
    // Skips bytes outside the alphabet, stops at the first "=", and drops a
    // last group that no "=" closes.
    static std::string b64StringToData(const std::string &text);

    const std::string &data() const { return data_; }
    const std::optional<std::string> &subjectStr() const { return subjectStr_; }
    const std::optional<std::string> &notAfterStr() const { return notAfterStr_; }
    const std::optional<std::string> &renewDeadlineStr() const { return renewDeadlineStr_; }
    std::int32_t validDaysRemaning() const { return validDaysRemaning_; }
    bool forceRenew() const { return forceRenew_; }
    bool warnRenew() const { return warnRenew_; }

private:
    std::string data_;
    std::optional<std::string> subjectStr_;
    std::optional<std::string> notAfterStr_;
    std::optional<std::string> renewDeadlineStr_;
    std::int32_t validDaysRemaning_ = 0;
    bool forceRenew_ = false;
    bool warnRenew_ = false;
};

#endif
