#include "common/Texts.hpp"

namespace OrvelGui {
namespace {

const Texts kEnglish = {
    "Message",
    "Question",
    "Open file",
    "Save file",
    "Smart card",
    "Certificate",
    "Select a certificate",
    "Confirm the signature",
    "PKCS#12 file",
    {"Information", "Warning", "Error"},
    "Yes",
    "No",
    "OK",
    "Up/Down or a digit chooses, Enter confirms, Esc cancels.",
    "Up/Down or a digit chooses, D shows details, Enter confirms, Esc cancels.",
    "Enter confirms, Esc cancels.",
    "Enter closes.",
    "[Type a path]",
    "Folder: {}",
    "Filter: {}",
    "all files",
    "Path: ",
    "File name: ",
    "No such file: {}",
    "That is a folder: {}",
    "Cannot read the folder: {}",
    "{} exists. Replace it?",
    "Insert the card into the reader.",
    "Remove the card from the reader.",
    "Esc hides this notice.",
    "Notice hidden; waiting for the application.",
    "Subject",
    "Issuer",
    "Serial number",
    "Valid from",
    "Valid until",
    "SHA-256 fingerprint",
    "Key usage",
    "not restricted",
    "Extended key usage",
    "Not a certificate ({} bytes):",
    "{} | valid until {} | {} days left",
    "RENEWAL REQUIRED by {}",
    "renewal recommended by {}",
    "Application version",
    "Data to be signed",
    "Formatted text",
    "Hash algorithm",
    "Hash value",
    "Certificate",
    "Sign",
    "Decline",
    "Change the certificate",
    "Show the certificate",
    "PKCS#12 file: ",
    "Password: ",
    "... ({} more bytes)",
};

const Texts kCzech = {
    "Zpráva",
    "Otázka",
    "Otevřít soubor",
    "Uložit soubor",
    "Čipová karta",
    "Certifikát",
    "Výběr certifikátu",
    "Potvrzení podpisu",
    "Soubor PKCS#12",
    {"Informace", "Varování", "Chyba"},
    "Ano",
    "Ne",
    "OK",
    "Šipky nebo číslice vybírají, Enter potvrdí, Esc zruší.",
    "Šipky nebo číslice vybírají, D ukáže podrobnosti, Enter potvrdí, Esc zruší.",
    "Enter potvrdí, Esc zruší.",
    "Enter zavře.",
    "[Zadat cestu]",
    "Složka: {}",
    "Filtr: {}",
    "všechny soubory",
    "Cesta: ",
    "Název souboru: ",
    "Soubor neexistuje: {}",
    "Toto je složka: {}",
    "Složku nelze přečíst: {}",
    "{} existuje. Nahradit?",
    "Vložte kartu do čtečky.",
    "Vyjměte kartu ze čtečky.",
    "Esc skryje toto oznámení.",
    "Oznámení skryto; čeká se na aplikaci.",
    "Předmět",
    "Vydavatel",
    "Sériové číslo",
    "Platný od",
    "Platný do",
    "Otisk SHA-256",
    "Použití klíče",
    "neomezeno",
    "Rozšířené použití klíče",
    "Nejde o certifikát ({} bajtů):",
    "{} | platný do {} | zbývá dní: {}",
    "NUTNÁ OBNOVA do {}",
    "doporučena obnova do {}",
    "Verze aplikace",
    "Data k podpisu",
    "Formátovaný text",
    "Hashovací algoritmus",
    "Hodnota hashe",
    "Certifikát",
    "Podepsat",
    "Odmítnout",
    "Změnit certifikát",
    "Zobrazit certifikát",
    "Soubor PKCS#12: ",
    "Heslo: ",
    "... (dalších {} bajtů)",
};

const Texts kSlovak = {
    "Správa",
    "Otázka",
    "Otvoriť súbor",
    "Uložiť súbor",
    "Čipová karta",
    "Certifikát",
    "Výber certifikátu",
    "Potvrdenie podpisu",
    "Súbor PKCS#12",
    {"Informácia", "Upozornenie", "Chyba"},
    "Áno",
    "Nie",
    "OK",
    "Šípky alebo číslice vyberajú, Enter potvrdí, Esc zruší.",
    "Šípky alebo číslice vyberajú, D ukáže podrobnosti, Enter potvrdí, Esc zruší.",
    "Enter potvrdí, Esc zruší.",
    "Enter zatvorí.",
    "[Zadať cestu]",
    "Priečinok: {}",
    "Filter: {}",
    "všetky súbory",
    "Cesta: ",
    "Názov súboru: ",
    "Súbor neexistuje: {}",
    "Toto je priečinok: {}",
    "Priečinok nemožno prečítať: {}",
    "{} existuje. Nahradiť?",
    "Vložte kartu do čítačky.",
    "Vyberte kartu z čítačky.",
    "Esc skryje toto oznámenie.",
    "Oznámenie skryté; čaká sa na aplikáciu.",
    "Predmet",
    "Vydavateľ",
    "Sériové číslo",
    "Platný od",
    "Platný do",
    "Odtlačok SHA-256",
    "Použitie kľúča",
    "neobmedzené",
    "Rozšírené použitie kľúča",
    "Nejde o certifikát ({} bajtov):",
    "{} | platný do {} | zostáva dní: {}",
    "NUTNÁ OBNOVA do {}",
    "odporúčaná obnova do {}",
    "Verzia aplikácie",
    "Dáta na podpis",
    "Formátovaný text",
    "Hašovací algoritmus",
    "Hodnota hašu",
    "Certifikát",
    "Podpísať",
    "Odmietnuť",
    "Zmeniť certifikát",
    "Zobraziť certifikát",
    "Súbor PKCS#12: ",
    "Heslo: ",
    "... (ďalších {} bajtov)",
};

} // namespace

const Texts &texts(Language language)
{
    switch (language) {
    case Language::Czech:
        return kCzech;
    case Language::Slovak:
        return kSlovak;
    default:
        return kEnglish;
    }
}

std::string fill(const char *pattern, std::initializer_list<std::string> values)
{
    std::string out;
    auto next = values.begin();
    for (const char *p = pattern; *p; ++p) {
        if (p[0] == '{' && p[1] == '}' && next != values.end()) {
            out += *next++;
            ++p;
        } else {
            out.push_back(*p);
        }
    }
    return out;
}

} // namespace OrvelGui
