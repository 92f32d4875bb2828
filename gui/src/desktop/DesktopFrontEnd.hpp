// The front end for a desktop: each window is a Qt Widgets window of its own
// class, built from the parsed request; this class runs it and turns what the
// user did into the same outcome and answer the terminal front end gives.
#pragma once

#include "protocol/FrontEnd.hpp"

#include <memory>

class QTranslator;

namespace OrvelGui {

class DesktopFrontEnd final : public FrontEnd {
public:
    // Needs a QApplication; `log` gets the same entries as the terminal's.
    explicit DesktopFrontEnd(GuiLog &log);
    ~DesktopFrontEnd() override;

    Outcome showMessage(const Request &request) override;
    Outcome askYesNo(const Request &request, Answer &answer) override;
    Outcome chooseFile(const Request &request, Answer &answer) override;
    Outcome showCertificate(const Request &request) override;
    Outcome selectCertificate(const Request &request, Answer &answer) override;
    Outcome confirmSignature(const Request &request, Answer &answer) override;
    Outcome selectPkcs12(const Request &request, Answer &answer) override;
    Outcome reinsertCard(const Request &request, ReinsertCommandReader &commands) override;

private:
    // Qt's own words (file chooser, standard buttons) in the request's language.
    void translate(Language language);

    GuiLog &log_;
    std::unique_ptr<QTranslator> translator_;
};

// True when a window system can be reached: the X server of DISPLAY answers,
// or the Wayland socket exists, or QT_QPA_PLATFORM names a platform. Qt ends
// the process when it cannot open its display, so this is asked first.
bool displayReachable(std::string &why);

} // namespace OrvelGui
