// The front end for a text terminal: every window is drawn on /dev/tty and
// answered with the keyboard (arrows or digits choose, Enter confirms, Escape
// cancels).
#pragma once

#include "protocol/FrontEnd.hpp"
#include "terminal/Terminal.hpp"
#include "common/Texts.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvelGui {

class TerminalFrontEnd final : public FrontEnd {
public:
    explicit TerminalFrontEnd(GuiLog &log) : log_(log) {}

    Outcome showMessage(const Request &request) override;
    Outcome askYesNo(const Request &request, Answer &answer) override;
    Outcome chooseFile(const Request &request, Answer &answer) override;
    Outcome showCertificate(const Request &request) override;
    Outcome selectCertificate(const Request &request, Answer &answer) override;
    Outcome confirmSignature(const Request &request, Answer &answer) override;
    Outcome selectPkcs12(const Request &request, Answer &answer) override;
    Outcome reinsertCard(const Request &request, ReinsertCommandReader &commands) override;

private:
    using Lines = std::vector<std::string>;
    enum class MenuAction { Chosen, Cancelled, Details };
    struct MenuResult {
        MenuAction action;
        std::size_t index;
    };

    // Opens the terminal on first use; false when there is none.
    bool begin(const Request &request);
    void draw(const Lines &lines, bool cursorAtEnd = false);
    MenuResult menu(const Lines &header, const Lines &items, std::size_t initial, bool details = false);
    std::optional<std::string> input(const Lines &header, const std::string &prompt, std::string text,
                                     bool secret = false);
    // Shows the lines until Enter or Escape; false when the terminal is gone.
    bool view(const Lines &lines);

    Lines certificateLines(const std::string &bytes) const;
    std::string certificateItem(const CertificateEntry &entry) const;
    std::optional<std::size_t> pickCertificate(const Request &request, std::size_t initial);
    Outcome openFile(const Request &request, Answer &answer);
    Outcome saveFile(const Request &request, Answer &answer);

    GuiLog &log_;
    std::unique_ptr<Terminal> terminal_;
    const Texts *texts_ = &OrvelGui::texts(Language::English);
};

// Text from outside made safe to print: invalid UTF-8 and control characters
// (which could steer the terminal) become "?", a tab a space.
std::string printable(const std::string &text);

} // namespace OrvelGui
