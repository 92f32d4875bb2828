#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include <unistd.h>

#include <cstdio>

extern "C" long consumer_set_language(int language);

int main()
{
    const unsigned char abc[] = {'A', 'B', 'C'};
    const bool ok = consumer_set_language(1) == 0 && consumer_set_language(5) == 1 &&
                    OrvelDialogs::Util::Base64Encode(abc, 3) == "QUJD" && Certificate::b64StringToData("QUI=") == "AB" &&
                    ORV_MessageBox("m", nullptr, 0) == 9 && access(GUI_APP "/Contents/Info.plist", R_OK) == 0;
    std::puts(ok ? "consumer ok" : "consumer FAILED");
    return ok ? 0 : 1;
}
