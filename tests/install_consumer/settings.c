#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

long consumer_set_language(int language)
{
    return ORV_SetLanguage(language);
}
