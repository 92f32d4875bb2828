// What the certificate selection and the signature confirmation share: the
// checks of the host's records, the list text, and reading the chosen index.
#pragma once

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <string>
#include <string_view>

namespace OrvelDialogs::Dialogs {

// 1 for a null array, a count of 0, a null `selected`, a preselected index
// not below the count, or a record without data, subject or end of validity;
// otherwise 0.
long checkCertificateArguments(const ORV_Certificate *certs, unsigned int count, const unsigned int *selected);

// The list text of the records for "-certs": 0, or 7 (logged where the list
// came out empty). Raises the platform exception for a record text that is
// null or not UTF-8.
long makeCertificateList(const ORV_Certificate *certs, unsigned int count, std::string &listText);

// Reads "-selectedCert" and the index from tokens `at` and `at` + 1 of the
// reply into `chosen`: 0, or 7 after logging `formatEntry` or the index entry.
long readChosenIndex(std::string_view reply, size_t at, unsigned int count, const std::string &formatEntry,
                     unsigned int &chosen);

} // namespace OrvelDialogs::Dialogs
