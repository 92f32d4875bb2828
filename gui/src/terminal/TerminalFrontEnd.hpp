// The front end for a text terminal: every window is drawn on /dev/tty for
// the terminal's current size and answered with the keyboard (arrows or
// digits choose, Enter confirms, Escape cancels). Text that does not fit
// scrolls. Every window also ends, cancelled, when the host is gone (see
// HostInput.hpp).
#pragma once

#include "common/Texts.hpp"
#include "protocol/FrontEnd.hpp"
#include "protocol/HostInput.hpp"
#include "terminal/Terminal.hpp"
#include "terminal/TextLayout.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvelGui {

class TerminalFrontEnd final : public FrontEnd {
public:
    explicit TerminalFrontEnd(GuiLog &log);

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
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    // What one window shows; laid out anew for the terminal's size at every
    // draw. The title stays on the first row, the hint and the input line at
    // the bottom; the text between scrolls when it does not fit.
    struct Page {
        std::string title;
        Lines text; // lines of printable text, wrapped at draw time
        Lines items;
        std::size_t selected = 0;
        std::size_t locked = kNone; // an item shown but not choosable yet
        // A list (files, certificates) scrolls itself and keeps the text to
        // at most half the rows; answers keep their rows and the text scrolls.
        bool list = false;
        std::string hint;       // when the text fits
        std::string scrollHint; // when it does not
        bool input = false;
        std::string prompt;
        std::string typed; // shown as it is (already printable or masked)
    };
    struct Scroll {
        std::size_t top = 0;   // first text row shown
        std::size_t rows = 0;  // text rows in all, as last laid out
        std::size_t shown = 0; // text rows on screen
        bool seenEnd = false;  // every text row has been on screen
        std::size_t listTop = 0;
        std::size_t listShown = 1;
        bool fits() const { return rows <= shown; }
    };
    enum class MenuAction { Chosen, Cancelled, Details };
    struct MenuResult {
        MenuAction action;
        std::size_t index;
    };

    // Opens the terminal on first use; false when there is none.
    bool begin(const Request &request);
    void draw(const Page &page, Scroll &scroll);
    // The next key; Closed also when the host is gone.
    Key nextKey();
    // Moves the text for a scrolling key; false when the key is not one.
    static bool scrollText(const Key &key, Scroll &scroll, bool arrows);
    MenuResult menu(Page page, Scroll &scroll, bool details = false);
    std::optional<std::string> input(Page page, const std::string &prompt, std::string text, bool secret = false);
    // Shows the text until Enter or Escape; false when the terminal is gone.
    bool view(const std::string &title, const Lines &text);

    Lines certificateLines(const std::string &bytes) const;
    std::string certificateItem(const CertificateEntry &entry) const;
    std::optional<std::size_t> pickCertificate(const Request &request, std::size_t initial);
    void addSignedData(Lines &lines, const char *label, const std::string &bytes);
    Outcome openFile(const Request &request, Answer &answer);
    Outcome saveFile(const Request &request, Answer &answer);

    GuiLog &log_;
    HostInput host_;
    std::unique_ptr<Terminal> terminal_;
    const Texts *texts_ = &OrvelGui::texts(Language::English);
};

} // namespace OrvelGui
