/* A plain C host built from pkg-config's flags alone: it shows a message
 * through the installed GUI application named on its command line, which
 * finds no user interface here (6). */
#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <stdio.h>

int main(int argc, char **argv)
{
    const long result = argc == 2 ? (ORV_SetAppPath(argv[1]), ORV_MessageBox("m", NULL, 0)) : -1;
    puts(result == 6 ? "c host ok" : "c host FAILED");
    return result == 6 ? 0 : 1;
}
