// What every terminal window talks through: the terminal, opened on first
// use, the host's standard input (its end closes every window), the texts of
// the request's language and the application's log.
#pragma once

#include "common/Texts.hpp"
#include "protocol/HostInput.hpp"
#include "terminal/Terminal.hpp"

#include <memory>

namespace OrvelGui {

struct Page;
struct Scroll;

class Console {
public:
    explicit Console(GuiLog &log);

    // Opens the terminal on first use; false when there is none.
    bool begin(const Request &request);
    // The next key; Closed also when the host is gone.
    Key nextKey();
    // Draws the page for the terminal's current size.
    void draw(const Page &page, Scroll &scroll);

    Terminal &terminal() { return *terminal_; }
    const Texts &texts() const { return *texts_; }
    GuiLog &log() { return log_; }

private:
    GuiLog &log_;
    HostInput host_;
    std::unique_ptr<Terminal> terminal_;
    const Texts *texts_;
};

} // namespace OrvelGui
