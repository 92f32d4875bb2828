#include "ToolTexts.hpp"

#include <cstdlib>
#include <cstring>

namespace OrvelTool {

ToolLanguage toolLanguage(const std::optional<std::string> &lang)
{
    std::string code = lang.value_or("");
    // Without --lang the user did not choose: the words follow the terminal's
    // locale, as the library's fallback does.
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (!code.empty())
            break;
        const char *value = std::getenv(name);
        code = value ? value : "";
    }
    if (code.rfind("cs", 0) == 0)
        return ToolLanguage::Czech;
    if (code.rfind("sk", 0) == 0)
        return ToolLanguage::Slovak;
    return ToolLanguage::English;
}

const ToolTexts &toolTexts(ToolLanguage language)
{
    static const ToolTexts czech = {
        "výsledek %ld: %s",
        "příčina: %s",
        "log z GUI aplikace: ",
        "(log je prázdný)",
        "heslo má %zu bajtů (--show-password ho vypíše)",
        "řádek %zu: neznámý příkaz %s (insert, remove, close, wait SEKUNDY)",
        "přepnutí textu vrátilo %ld",
    };
    static const ToolTexts slovak = {
        "výsledok %ld: %s",
        "príčina: %s",
        "log z GUI aplikácie: ",
        "(log je prázdny)",
        "heslo má %zu bajtov (--show-password ho vypíše)",
        "riadok %zu: neznámy príkaz %s (insert, remove, close, wait SEKUNDY)",
        "prepnutie textu vrátilo %ld",
    };
    static const ToolTexts english = {
        "result %ld: %s",
        "cause: %s",
        "GUI application log: ",
        "(the log is empty)",
        "password of %zu bytes (--show-password prints it)",
        "line %zu: unknown command %s (insert, remove, close, wait SECONDS)",
        "switching the text gave %ld",
    };
    switch (language) {
    case ToolLanguage::Czech:
        return czech;
    case ToolLanguage::Slovak:
        return slovak;
    default:
        return english;
    }
}

std::string resultMeaning(long result, ToolLanguage language)
{
    struct Meaning {
        long result;
        const char *czech;
        const char *slovak;
        const char *english;
    };
    static const Meaning meanings[] = {
        {0, "úspěch", "úspech", "success"},
        {1, "chybný argument", "chybný argument", "a bad argument"},
        {2, "zrušeno uživatelem", "zrušené používateľom", "cancelled by the user"},
        {3, "není dialog, který by šlo přepnout nebo zavřít", "nie je dialóg, ktorý by sa dal prepnúť alebo zatvoriť",
         "no dialog to switch or close"},
        {4, "chybí data certifikátu", "chýbajú údaje certifikátu", "no certificate data"},
        {5, "GUI aplikace odmítla svůj příkazový řádek", "GUI aplikácia odmietla svoj príkazový riadok",
         "the GUI application refused its command line"},
        {6, "GUI aplikace nenašla uživatelské rozhraní (žádný terminál ani displej, nebo se spojení s displejem "
            "přerušilo)",
         "GUI aplikácia nenašla používateľské rozhranie (žiadny terminál ani displej, alebo sa spojenie s displejom "
         "prerušilo)",
         "the GUI application found no user interface (no terminal or display, or the display was lost)"},
        {7, "výměna s GUI aplikací selhala", "výmena s GUI aplikáciou zlyhala",
         "the exchange with the GUI application failed"},
        {8, "GUI aplikace selhala", "GUI aplikácia zlyhala", "the GUI application failed"},
        {9, "cesta ke GUI aplikaci není nastavena", "cesta ku GUI aplikácii nie je nastavená",
         "the GUI application's path is not set"},
        {11, "hodnota se nevejde do vyrovnávací paměti", "hodnota sa nezmestí do vyrovnávacej pamäte",
         "the buffer is too small for the value"},
    };
    for (const Meaning &meaning : meanings)
        if (meaning.result == result)
            return language == ToolLanguage::Czech    ? meaning.czech
                   : language == ToolLanguage::Slovak ? meaning.slovak
                                                      : meaning.english;
    return language == ToolLanguage::Czech    ? "viz log (--log)"
           : language == ToolLanguage::Slovak ? "pozri log (--log)"
                                              : "see the log (--log)";
}

} // namespace OrvelTool
