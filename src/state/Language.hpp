#pragma once

#include <string>

namespace OrvelDialogs::State {

// "cs_CZ" gives 0, "sk_SK" 1, anything else 2.
int languageFromLocale(const std::string &localeIdentifier);

// What every dialog that passes "-lang" does first: derive the language from
// the locale unless one is set.
void resolveLanguage();

} // namespace OrvelDialogs::State
