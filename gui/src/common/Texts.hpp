// The texts that the GUI application shows, in Czech, Slovak and English.
// "{}" marks where a value goes (see fill()).
#pragma once

#include "protocol/Protocol.hpp"

#include <initializer_list>
#include <string>

namespace OrvelGui {

struct Texts {
    const char *titleMessage;
    const char *titleQuestion;
    const char *titleOpen;
    const char *titleSave;
    const char *titleReinsert;
    const char *titleCertificate;
    const char *titleSelectCertificate;
    const char *titleSignature;
    const char *titlePkcs12;
    const char *iconNames[3];
    const char *yes;
    const char *no;
    const char *ok;
    const char *hintMenu;
    const char *hintMenuDetails;
    const char *hintInput;
    const char *hintClose;
    const char *typePath;
    const char *folder;
    const char *filter;
    const char *allFiles;
    const char *path;
    const char *fileName;
    const char *noSuchFile;
    const char *isFolder;
    const char *cannotReadFolder;
    const char *overwrite;
    const char *reinsertInsert;
    const char *reinsertRemove;
    const char *reinsertHint;
    const char *reinsertHidden;
    const char *subject;
    const char *issuer;
    const char *serial;
    const char *validFrom;
    const char *validUntil;
    const char *fingerprint;
    const char *keyUsage;
    const char *keyUsageAny;
    const char *extendedKeyUsage;
    const char *notCertificate;
    const char *certificateListItem;
    const char *renewForced;
    const char *renewWarned;
    const char *version;
    const char *data;
    const char *formattedText;
    const char *hashAlg;
    const char *hashVal;
    const char *certificate;
    const char *sign;
    const char *decline;
    const char *changeCertificate;
    const char *showCertificate;
    const char *pkcs12File;
    const char *password;
    const char *moreBytes;
    const char *hintScroll;     // answers below a text that does not fit
    const char *hintViewScroll; // a text alone that does not fit
    const char *scrollPosition;
    const char *signLocked;
    const char *notText;
    const char *noData;
    const char *filterNotUnderstood;
    const char *folderMissing;
    const char *nameEmpty;
    const char *pkcs12CannotRead;
    const char *pkcs12NotPkcs12;
    const char *pkcs12WrongPassword;
    const char *reinsertHiddenHint;
    // Desktop windows.
    const char *cancel;
    const char *details;
    const char *browse;
    const char *hide;
    const char *filterPlaceholder;
    const char *daysLeft;
    const char *daysRemaining;
    const char *publicKey;
    const char *signatureAlgorithm;
    const char *subjectAltNames;
    const char *fingerprintSha1;
    const char *readAllToSign;
    const char *pkcs12Filter;
    const char *reinsertWaiting;
    // What the user is warned of before they read or sign a text.
    const char *hiddenCharacters;
    const char *concealedText;
    const char *concealedStart;
    const char *concealedEnd;
    const char *rtfUnreadable;
    const char *nothingToSign;
};

const Texts &texts(Language language);

// Replaces each "{}" in turn with the next value.
std::string fill(const char *pattern, std::initializer_list<std::string> values);

} // namespace OrvelGui
