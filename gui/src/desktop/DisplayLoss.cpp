#include "desktop/DisplayLoss.hpp"

#include "protocol/ImmediateExit.hpp"
#include "protocol/Protocol.hpp"

namespace OrvelGui {

void endIfDisplayLost(const QString &qtMessage)
{
    // The words of Qt's xcb and wayland platform plug-ins, unchanged from
    // Qt 5 to Qt 6: "The X11 connection broke (error 1). Did the X11 server
    // die?", "The Wayland connection broke. Did the Wayland compositor
    // die?", "The Wayland connection experienced a fatal error: ...".
    const bool lost = qtMessage.startsWith(QLatin1String("The X11 connection broke")) ||
                      qtMessage.startsWith(QLatin1String("The Wayland connection broke")) ||
                      qtMessage.startsWith(QLatin1String("The Wayland connection experienced a fatal error"));
    if (lost)
        exitImmediately(kNoUserInterface, "The display connection was lost (Qt: " + qtMessage.toStdString() +
                                              "); no user interface is left.");
}

} // namespace OrvelGui
