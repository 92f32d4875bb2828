#include "terminal/TerminalFrontEnd.hpp"

#include "common/CertificateText.hpp"
#include "common/PasswordMemory.hpp"
#include "common/Pkcs12Check.hpp"
#include "common/SignedData.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <system_error>

namespace OrvelGui {
namespace fs = std::filesystem;

namespace {

constexpr const char *kHighlight = "\x1b[7m";
constexpr const char *kBold = "\x1b[1m";
constexpr const char *kDim = "\x1b[2m";
constexpr const char *kNormal = "\x1b[0m";
constexpr std::size_t kMaxInput = 4096;
// Below this many rows the blank rows around the text are left out.
constexpr int kRoomyRows = 16;

// Adds text that may hold line feeds as separate printable lines.
void addText(std::vector<std::string> &lines, const std::string &text)
{
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(printable(line));
        start = end + 1;
    }
}

std::string bold(const std::string &text)
{
    return kBold + text + kNormal;
}

std::string label(const char *text)
{
    return bold(std::string(text) + ":");
}

std::string absolutePath(const std::string &typed)
{
    std::error_code error;
    fs::path path(typed);
    if (path.is_relative())
        path = fs::current_path(error) / path;
    std::string result = path.lexically_normal().string();
    while (result.size() > 1 && result.back() == '/')
        result.pop_back();
    return result;
}

std::string currentFolder()
{
    std::error_code error;
    const fs::path path = fs::current_path(error);
    return error ? std::string("/") : path.string();
}

bool isRegularFile(const std::string &path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool isFolder(const std::string &path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

std::string joinPath(const std::string &folder, const std::string &name)
{
    return folder == "/" ? "/" + name : folder + "/" + name;
}

std::vector<std::string> wrapAll(const std::vector<std::string> &lines, std::size_t width)
{
    std::vector<std::string> rows;
    for (const auto &line : lines) {
        auto wrapped = wrapLine(line, width);
        rows.insert(rows.end(), std::make_move_iterator(wrapped.begin()), std::make_move_iterator(wrapped.end()));
    }
    return rows;
}

// Each item wrapped under its number: "> " marks (and reverse video shows)
// the selected one, a locked one is dim and says why.
std::vector<std::vector<std::string>> wrapItems(const std::vector<std::string> &items, std::size_t selected,
                                                std::size_t locked, const char *lockedNote, std::size_t width)
{
    std::vector<std::vector<std::string>> itemRows;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string number = i < 9 ? std::to_string(i + 1) + ". " : "   ";
        const std::string item = i == locked ? items[i] + " " + lockedNote : items[i];
        auto rows = wrapLine(number + item, width - 2);
        const char *style = i == selected ? kHighlight : i == locked ? kDim : "";
        for (std::size_t r = 0; r < rows.size(); ++r)
            rows[r] = style + std::string(r == 0 && i == selected ? "> " : "  ") + rows[r] + (*style ? kNormal : "");
        itemRows.push_back(std::move(rows));
    }
    return itemRows;
}

} // namespace

TerminalFrontEnd::TerminalFrontEnd(GuiLog &log) : log_(log), host_(STDIN_FILENO, log) {}

bool TerminalFrontEnd::begin(const Request &request)
{
    texts_ = &OrvelGui::texts(request.language);
    if (!terminal_)
        terminal_ = Terminal::open(log_);
    return terminal_ != nullptr;
}

Key TerminalFrontEnd::nextKey()
{
    // Once the host is gone every window that is still open closes too.
    if (host_.ended())
        return {KeyType::Closed, {}};
    for (;;) {
        const Key key = terminal_->readKey(-1, host_.fd());
        if (key.type != KeyType::Watched)
            return key;
        if (host_.readAvailable())
            return {KeyType::Closed, {}};
    }
}

void TerminalFrontEnd::draw(const Page &page, Scroll &scroll)
{
    const int height = std::max(terminal_->rows(), 3);
    const std::size_t width = static_cast<std::size_t>(std::max(terminal_->columns(), 10));
    const bool roomy = height >= kRoomyRows;

    const std::vector<std::vector<std::string>> itemRows =
        wrapItems(page.items, page.selected, page.locked, texts_->signLocked, width);
    std::size_t itemsNeeded = 0;
    for (const auto &rows : itemRows)
        itemsNeeded += rows.size();

    const std::vector<std::string> textRows = wrapAll(page.text, width);
    scroll.rows = textRows.size();
    const auto layOut = [&](const std::string &hint, std::vector<std::string> &bottom, std::size_t &textRoom,
                            std::size_t &itemRoom) {
        bottom = wrapLine(hint, width);
        if (page.input) {
            const std::size_t promptCells = std::min(displayWidth(page.prompt), width - 4);
            bottom.insert(bottom.begin(), bold(fitWidth(page.prompt, promptCells)) +
                                              fitWidthFromEnd(page.typed, width - promptCells - 1));
        }
        const int spacing = roomy ? (page.items.empty() ? 2 : 3) : 0; // the blank rows below
        const int room = std::max(height - 1 - static_cast<int>(bottom.size()) - spacing, 1);
        const auto total = static_cast<std::size_t>(room);
        if (page.items.empty()) {
            textRoom = total;
            itemRoom = 0;
        } else if (page.list) {
            textRoom = std::min(textRows.size(), std::max<std::size_t>(total / 2, 1));
            itemRoom = std::max<std::size_t>(total - std::min(textRoom, total), 1);
        } else {
            itemRoom = std::min(itemsNeeded, total > 1 ? total - 1 : 1);
            textRoom = std::max<std::size_t>(total - std::min(itemRoom, total), 1);
        }
    };
    std::vector<std::string> bottom;
    std::size_t textRoom = 0;
    std::size_t itemRoom = 0;
    layOut(page.hint, bottom, textRoom, itemRoom);
    const bool fits = textRows.size() <= textRoom;
    if (!fits && !page.list && !page.scrollHint.empty())
        layOut(page.scrollHint, bottom, textRoom, itemRoom);

    // The text: a window onto its rows, with the position on its last row
    // when it does not fit. A list's text is cut instead (it holds the
    // window's prompt, not content to read through).
    std::vector<std::string> screen = {fitWidth(bold(page.title), width) + kNormal};
    if (roomy)
        screen.emplace_back();
    if (textRows.size() <= textRoom) {
        scroll.shown = textRows.size();
        scroll.top = 0;
        screen.insert(screen.end(), textRows.begin(), textRows.end());
    } else if (page.list) {
        scroll.shown = textRoom;
        scroll.top = 0;
        screen.insert(screen.end(), textRows.begin(), textRows.begin() + static_cast<long>(textRoom - 1));
        screen.emplace_back("…");
    } else {
        scroll.shown = std::max<std::size_t>(textRoom - 1, 1);
        scroll.top = std::min(scroll.top, textRows.size() - scroll.shown);
        for (std::size_t r = scroll.top; r < scroll.top + scroll.shown; ++r)
            screen.push_back(textRows[r]);
        if (textRoom > 1)
            screen.push_back(kDim + fitWidth(fill(texts_->scrollPosition,
                                                  {std::to_string(scroll.top + 1), std::to_string(scroll.top + scroll.shown),
                                                   std::to_string(textRows.size())}),
                                             width) +
                             kNormal);
    }
    if (scroll.top + scroll.shown >= textRows.size())
        scroll.seenEnd = true;

    // The items from listTop on, as many as fit, the selected one among them.
    if (!page.items.empty()) {
        if (roomy)
            screen.emplace_back();
        const std::size_t selected = std::min(page.selected, itemRows.size() - 1);
        scroll.listTop = std::min(scroll.listTop, selected);
        const auto rowsFrom = [&](std::size_t first, std::size_t last) {
            std::size_t rows = 0;
            for (std::size_t i = first; i <= last; ++i)
                rows += itemRows[i].size();
            return rows;
        };
        while (scroll.listTop < selected && rowsFrom(scroll.listTop, selected) > itemRoom)
            ++scroll.listTop;
        std::size_t used = 0;
        std::size_t shownItems = 0;
        for (std::size_t i = scroll.listTop; i < itemRows.size(); ++i) {
            for (const auto &row : itemRows[i]) {
                if (used == itemRoom)
                    break;
                screen.push_back(row);
                ++used;
            }
            if (used == itemRoom && i != itemRows.size() - 1) {
                // Show that more follow on the last row of the list.
                if (i > selected)
                    screen.back() = "  …";
                ++shownItems;
                break;
            }
            ++shownItems;
        }
        scroll.listShown = std::max<std::size_t>(shownItems, 2) - 1;
    }
    if (roomy)
        screen.emplace_back();
    screen.insert(screen.end(), bottom.begin(), bottom.end());
    if (screen.size() > static_cast<std::size_t>(height))
        screen.resize(static_cast<std::size_t>(height));

    std::string out = "\x1b[H\x1b[2J";
    for (std::size_t i = 0; i < screen.size(); ++i) {
        if (i)
            out += "\r\n";
        out += screen[i];
    }
    out += page.input ? "\x1b[?25h" : "\x1b[?25l";
    terminal_->write(out);
}

bool TerminalFrontEnd::scrollText(const Key &key, Scroll &scroll, bool arrows)
{
    if (scroll.fits())
        return false;
    const std::size_t last = scroll.rows - scroll.shown;
    const std::size_t page = std::max<std::size_t>(scroll.shown - 1, 1);
    switch (key.type) {
    case KeyType::Up:
        if (!arrows)
            return false;
        scroll.top = scroll.top > 0 ? scroll.top - 1 : 0;
        return true;
    case KeyType::Down:
        if (!arrows)
            return false;
        scroll.top = std::min(scroll.top + 1, last);
        return true;
    case KeyType::PageUp:
        scroll.top = scroll.top > page ? scroll.top - page : 0;
        return true;
    case KeyType::PageDown:
        scroll.top = std::min(scroll.top + page, last);
        return true;
    case KeyType::Home:
        scroll.top = 0;
        return true;
    case KeyType::End:
        scroll.top = last;
        return true;
    default:
        return false;
    }
}

TerminalFrontEnd::MenuResult TerminalFrontEnd::menu(Page page, Scroll &scroll, bool details)
{
    const std::size_t count = page.items.size();
    page.hint = details ? texts_->hintMenuDetails : texts_->hintMenu;
    page.scrollHint = page.list ? std::string() : texts_->hintScroll;
    // Steps over the locked item; stays put when there is nowhere to go.
    const auto move = [&](std::size_t from, bool forward, bool wrap) {
        std::size_t at = from;
        for (std::size_t step = 0; step < count; ++step) {
            if (forward)
                at = at + 1 < count ? at + 1 : wrap ? 0 : at;
            else
                at = at > 0 ? at - 1 : at;
            if (at != page.locked)
                return at;
        }
        return from;
    };
    page.selected = std::min(page.selected, count - 1);
    if (page.selected == page.locked)
        page.selected = move(page.selected, true, true);
    for (;;) {
        draw(page, scroll);
        if (page.locked != kNone && scroll.seenEnd) {
            page.locked = kNone;
            continue; // draw it choosable
        }
        const Key key = nextKey();
        // A list takes every moving key; answers leave the arrows up and
        // down, and the page keys, to a text that does not fit.
        if (!page.list && scrollText(key, scroll, true))
            continue;
        const std::size_t pageStep = page.list ? std::max<std::size_t>(scroll.listShown, 1) : count;
        switch (key.type) {
        case KeyType::Up:
        case KeyType::Left:
            page.selected = move(page.selected, false, false);
            break;
        case KeyType::Down:
        case KeyType::Right:
            page.selected = move(page.selected, true, false);
            break;
        case KeyType::Tab:
            page.selected = move(page.selected, true, true);
            break;
        case KeyType::Home:
            page.selected = page.locked == 0 ? move(0, true, false) : 0;
            break;
        case KeyType::End:
            page.selected = page.locked == count - 1 ? move(count - 1, false, false) : count - 1;
            break;
        case KeyType::PageUp:
            page.selected = page.selected > pageStep ? page.selected - pageStep : 0;
            if (page.selected == page.locked)
                page.selected = move(page.selected, true, false);
            break;
        case KeyType::PageDown:
            page.selected = std::min(page.selected + pageStep, count - 1);
            if (page.selected == page.locked)
                page.selected = move(page.selected, false, false);
            break;
        case KeyType::Enter:
            return {MenuAction::Chosen, page.selected};
        case KeyType::Escape:
        case KeyType::Interrupt:
        case KeyType::Closed:
            return {MenuAction::Cancelled, page.selected};
        case KeyType::Text:
            if (key.text[0] >= '1' && key.text[0] <= '9' && static_cast<std::size_t>(key.text[0] - '1') < count &&
                static_cast<std::size_t>(key.text[0] - '1') != page.locked)
                page.selected = static_cast<std::size_t>(key.text[0] - '1');
            else if (details && (key.text == "d" || key.text == "D"))
                return {MenuAction::Details, page.selected};
            break;
        default:
            break;
        }
    }
}

std::optional<std::string> TerminalFrontEnd::input(Page page, const std::string &prompt, std::string text,
                                                   bool secret)
{
    Scroll scroll;
    page.input = true;
    page.prompt = prompt;
    page.hint = texts_->hintInput;
    for (;;) {
        page.typed.clear();
        if (secret) {
            for (std::size_t i = 0; i < text.size(); ++i)
                if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80)
                    page.typed.push_back('*');
        } else {
            page.typed = printable(text);
        }
        draw(page, scroll);

        const Key key = nextKey();
        if (scrollText(key, scroll, true))
            continue;
        switch (key.type) {
        case KeyType::Enter:
            return text;
        case KeyType::Escape:
        case KeyType::Interrupt:
        case KeyType::Closed:
            return std::nullopt;
        case KeyType::Backspace:
            while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80)
                text.pop_back();
            if (!text.empty())
                text.pop_back();
            break;
        case KeyType::ClearLine:
            text.clear();
            break;
        case KeyType::Text:
            if (text.size() + key.text.size() <= kMaxInput)
                text += key.text;
            break;
        default:
            break;
        }
    }
}

bool TerminalFrontEnd::view(const std::string &title, const Lines &text)
{
    Page page;
    page.title = title;
    page.text = text;
    page.hint = texts_->hintClose;
    page.scrollHint = texts_->hintViewScroll;
    Scroll scroll;
    for (;;) {
        draw(page, scroll);
        const Key key = nextKey();
        if (scrollText(key, scroll, true))
            continue;
        switch (key.type) {
        case KeyType::Enter:
        case KeyType::Escape:
        case KeyType::Interrupt:
            return true;
        case KeyType::Closed:
            return false;
        default:
            break;
        }
    }
}

TerminalFrontEnd::Lines TerminalFrontEnd::certificateLines(const std::string &bytes) const
{
    const Texts &t = *texts_;
    const CertificateDetails details = readCertificate(bytes);
    Lines lines;
    if (!details.isCertificate) {
        lines.push_back(fill(t.notCertificate, {std::to_string(bytes.size())}));
        lines.push_back(hexPreview(bytes, 64) + (bytes.size() > 64 ? " ..." : ""));
        return lines;
    }
    const auto field = [&](const char *label, const std::string &value) {
        lines.push_back(std::string(kBold) + label + ":" + kNormal + " " + printable(value));
    };
    const auto joined = [](const std::vector<std::string> &names) {
        std::string out;
        for (const auto &name : names)
            out += (out.empty() ? "" : ", ") + name;
        return out;
    };
    field(t.subject, details.subject);
    field(t.issuer, details.issuer);
    field(t.serial, details.serial);
    field(t.validFrom, details.notBefore);
    field(t.validUntil, details.notAfter);
    field(t.fingerprint, details.sha256);
    field(t.keyUsage, details.keyUsageRestricted ? joined(details.keyUsage) : t.keyUsageAny);
    if (!details.extendedKeyUsage.empty())
        field(t.extendedKeyUsage, joined(details.extendedKeyUsage));
    return lines;
}

std::string TerminalFrontEnd::certificateItem(const CertificateEntry &entry) const
{
    std::string item = fill(texts_->certificateListItem,
                            {printable(entry.subject), printable(entry.notAfter), std::to_string(entry.daysRemaining)});
    if (entry.forceRenew)
        item += " | " + fill(texts_->renewForced, {printable(entry.renewDeadline)});
    else if (entry.warnRenew)
        item += " | " + fill(texts_->renewWarned, {printable(entry.renewDeadline)});
    return item;
}

std::optional<std::size_t> TerminalFrontEnd::pickCertificate(const Request &request, std::size_t initial)
{
    Page page;
    page.title = texts_->titleSelectCertificate;
    page.list = true;
    for (const auto &entry : request.certificates)
        page.items.push_back(certificateItem(entry));
    page.selected = initial;
    Scroll scroll;
    for (;;) {
        const MenuResult result = menu(page, scroll, true);
        page.selected = result.index;
        if (result.action == MenuAction::Cancelled)
            return std::nullopt;
        if (result.action == MenuAction::Chosen)
            return result.index;
        if (!view(texts_->titleCertificate, certificateLines(request.certificates[result.index].data)))
            return std::nullopt;
    }
}

Outcome TerminalFrontEnd::showMessage(const Request &request)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    Lines lines;
    addText(lines, request.message);
    if (!request.info.empty()) {
        lines.emplace_back();
        addText(lines, request.info);
    }
    return view(texts_->iconNames[request.icon], lines) ? Outcome::Answered : Outcome::Cancelled;
}

Outcome TerminalFrontEnd::askYesNo(const Request &request, Answer &answer)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    Page page;
    page.title = texts_->titleQuestion;
    addText(page.text, request.message);
    if (!request.info.empty()) {
        page.text.emplace_back();
        addText(page.text, request.info);
    }
    page.items = {texts_->yes, texts_->no};
    page.selected = static_cast<std::size_t>(request.button);
    Scroll scroll;
    const MenuResult result = menu(page, scroll);
    if (result.action != MenuAction::Chosen)
        return Outcome::Cancelled;
    answer.yes = result.index == 0;
    log_.add(answer.yes ? "Answer: yes." : "Answer: no.");
    return Outcome::Answered;
}

Outcome TerminalFrontEnd::chooseFile(const Request &request, Answer &answer)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    return request.window == Window::FileSave ? saveFile(request, answer) : openFile(request, answer);
}

namespace {

// The filter's line of a file window; a filter that cannot be read says so.
std::string filterLine(const Texts &t, const std::string &filterText)
{
    if (!filterUnderstood(filterText))
        return fill(t.filterNotUnderstood, {printable(filterText)});
    return fill(t.filter, {filterText.empty() ? t.allFiles : printable(filterText)});
}

} // namespace

Outcome TerminalFrontEnd::openFile(const Request &request, Answer &answer)
{
    const std::vector<std::string> patterns = filterPatterns(request.fileFilter);
    std::string folder = currentFolder();
    std::string problem;
    std::size_t selected = 0;
    for (;;) {
        std::vector<std::string> folders;
        std::vector<std::string> files;
        std::error_code error;
        for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
            const std::string name = it->path().filename().string();
            if (name.empty() || name[0] == '.')
                continue;
            std::error_code typeError;
            if (it->is_directory(typeError))
                folders.push_back(name);
            else if (matchesFilter(name, patterns))
                files.push_back(name);
        }
        if (error)
            problem = fill(texts_->cannotReadFolder, {printable(folder)});
        std::sort(folders.begin(), folders.end());
        std::sort(files.begin(), files.end());

        Page page;
        page.title = texts_->titleOpen;
        addText(page.text, request.message);
        page.text.push_back(filterLine(*texts_, request.fileFilter));
        page.text.push_back(fill(texts_->folder, {printable(folder)}));
        if (!problem.empty())
            page.text.push_back(problem);
        problem.clear();
        page.list = true;
        page.items = {texts_->typePath, "../"};
        for (const auto &name : folders)
            page.items.push_back(printable(name) + "/");
        for (const auto &name : files)
            page.items.push_back(printable(name));
        page.selected = selected;

        Scroll scroll;
        const MenuResult result = menu(page, scroll);
        if (result.action == MenuAction::Cancelled)
            return Outcome::Cancelled;
        selected = 0;
        std::string chosen;
        if (result.index == 0) {
            page.items.clear();
            const auto typed = input(page, texts_->path, folder == "/" ? "/" : folder + "/");
            if (!typed)
                continue;
            chosen = absolutePath(*typed);
        } else if (result.index == 1) {
            chosen = fs::path(folder).parent_path().string();
            if (chosen.empty())
                chosen = "/";
        } else if (result.index < 2 + folders.size()) {
            chosen = joinPath(folder, folders[result.index - 2]);
        } else {
            chosen = joinPath(folder, files[result.index - 2 - folders.size()]);
        }
        if (isFolder(chosen)) {
            folder = chosen;
        } else if (isRegularFile(chosen)) {
            answer.path = chosen;
            log_.add("File chosen.");
            return Outcome::Answered;
        } else {
            problem = fill(texts_->noSuchFile, {printable(chosen)});
        }
    }
}

Outcome TerminalFrontEnd::saveFile(const Request &request, Answer &answer)
{
    std::string name = request.fileName;
    std::string problem;
    for (;;) {
        Page page;
        page.title = texts_->titleSave;
        addText(page.text, request.message);
        page.text.push_back(filterLine(*texts_, request.fileFilter));
        page.text.push_back(fill(texts_->folder, {printable(currentFolder())}));
        if (!problem.empty())
            page.text.push_back(bold(problem));
        problem.clear();
        const auto typed = input(page, texts_->fileName, name);
        if (!typed)
            return Outcome::Cancelled;
        name = *typed;
        if (name.empty()) {
            problem = texts_->nameEmpty;
            continue;
        }
        const std::string path = absolutePath(name);
        const std::string parent = fs::path(path).parent_path().string();
        if (isFolder(path)) {
            problem = fill(texts_->isFolder, {printable(path)});
            continue;
        }
        if (!isFolder(parent.empty() ? "/" : parent)) {
            problem = fill(texts_->folderMissing, {printable(parent)});
            continue;
        }
        std::error_code error;
        if (fs::exists(path, error)) {
            Page question;
            question.title = texts_->titleSave;
            question.text = {fill(texts_->overwrite, {printable(path)})};
            question.items = {texts_->yes, texts_->no};
            question.selected = 1;
            Scroll scroll;
            const MenuResult result = menu(question, scroll);
            if (result.action == MenuAction::Cancelled)
                return Outcome::Cancelled;
            if (result.index != 0)
                continue;
        }
        answer.path = path;
        log_.add("File name chosen.");
        return Outcome::Answered;
    }
}

Outcome TerminalFrontEnd::showCertificate(const Request &request)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    log_.add(readCertificate(request.certificate).isCertificate ? "Certificate shown."
                                                                : "The -cert bytes are no certificate.");
    return view(texts_->titleCertificate, certificateLines(request.certificate)) ? Outcome::Answered
                                                                                 : Outcome::Cancelled;
}

Outcome TerminalFrontEnd::selectCertificate(const Request &request, Answer &answer)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    const auto chosen = pickCertificate(request, request.selected);
    if (!chosen)
        return Outcome::Cancelled;
    answer.selected = static_cast<unsigned>(*chosen);
    log_.add("Certificate " + std::to_string(*chosen) + " chosen.");
    return Outcome::Answered;
}

void TerminalFrontEnd::addSignedData(Lines &lines, const char *name, const std::string &bytes)
{
    lines.push_back(label(name));
    if (bytes.empty()) {
        lines.emplace_back(texts_->noData);
        return;
    }
    const SignedDataView view = viewSignedData(bytes);
    if (!view.isText) {
        lines.push_back(bold(texts_->notText));
        log_.add(std::string(name) + ": not UTF-8 text, shown as a hex dump.");
    }
    addText(lines, view.text);
    if (!view.isText && !lines.empty() && lines.back().empty())
        lines.pop_back(); // the dump's closing line feed
}

Outcome TerminalFrontEnd::confirmSignature(const Request &request, Answer &answer)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    const Texts &t = *texts_;
    std::size_t certificate = request.selected;
    Lines data;
    data.push_back(label(t.version) + " " + printable(request.version));
    addSignedData(data, t.data, request.data);
    if (request.rtf)
        addSignedData(data, t.formattedText, *request.rtf);
    data.push_back(label(t.hashAlg) + " " + printable(request.hashAlg));
    data.push_back(label(t.hashVal) + " " + printable(request.hashVal));

    // Decline is preselected, and Sign can be chosen only once every row of
    // the text has been on screen; the scroll state lives across the
    // certificate windows so that this holds only once.
    Page page;
    page.title = t.titleSignature;
    page.items = {t.sign, t.decline, t.changeCertificate, t.showCertificate};
    page.selected = 1;
    page.locked = 0;
    Scroll scroll;
    for (;;) {
        page.text = data;
        page.text.push_back(label(t.certificate) + " " + certificateItem(request.certificates[certificate]));
        if (scroll.seenEnd)
            page.locked = kNone;
        const MenuResult result = menu(page, scroll);
        if (result.action == MenuAction::Cancelled)
            return Outcome::Cancelled;
        page.selected = result.index;
        if (result.index == 0 || result.index == 1) {
            answer.confirmed = result.index == 0;
            answer.selected = static_cast<unsigned>(certificate);
            log_.add(std::string(answer.confirmed ? "Signature confirmed" : "Signature declined") +
                     " with certificate " + std::to_string(certificate) + ".");
            return Outcome::Answered;
        }
        if (result.index == 2) {
            if (const auto chosen = pickCertificate(request, certificate))
                certificate = *chosen;
        } else if (!view(t.titleCertificate, certificateLines(request.certificates[certificate].data))) {
            return Outcome::Cancelled;
        }
    }
}

Outcome TerminalFrontEnd::selectPkcs12(const Request &request, Answer &answer)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    const Texts &t = *texts_;
    std::string typed = request.fileName;
    std::string problem;
    for (;;) {
        Page page;
        page.title = t.titlePkcs12;
        if (!problem.empty())
            page.text.push_back(bold(problem));
        const auto path = input(page, t.pkcs12File, typed);
        if (!path)
            return Outcome::Cancelled;
        typed = *path;
        const std::string file = absolutePath(typed);
        // The file is checked before the password is asked for, so that a
        // wrong file is not blamed on the password.
        const Pkcs12Check fileCheck = checkPkcs12(file, "");
        if (fileCheck == Pkcs12Check::CannotRead || fileCheck == Pkcs12Check::NotPkcs12) {
            problem = fill(fileCheck == Pkcs12Check::CannotRead ? t.pkcs12CannotRead : t.pkcs12NotPkcs12,
                           {printable(file)});
            log_.add(fileCheck == Pkcs12Check::CannotRead ? "PKCS#12 file cannot be read." : "Not a PKCS#12 file.");
            continue;
        }
        Page passwordPage;
        passwordPage.title = t.titlePkcs12;
        passwordPage.text = {printable(file)};
        for (;;) {
            auto password = input(passwordPage, t.password, "", true);
            if (!password)
                return Outcome::Cancelled;
            const WipedOnExit typed(*password);
            if (checkPkcs12(file, *password) == Pkcs12Check::WrongPassword) {
                passwordPage.text = {printable(file), bold(t.pkcs12WrongPassword)};
                log_.add("Wrong PKCS#12 password.");
                continue;
            }
            answer.path = file;
            answer.secondValue = *password;
            log_.add("PKCS#12 file chosen.");
            return Outcome::Answered;
        }
    }
}

Outcome TerminalFrontEnd::reinsertCard(const Request &request, ReinsertCommandReader &commands)
{
    if (!begin(request)) {
        // Nobody to show it to; still take the commands to their end so that
        // the host's writes do not fail.
        while (commands.waitForCommand() != ReinsertCommand::Close) {
        }
        return Outcome::NoUserInterface;
    }
    std::optional<ReinsertCommand> state;
    bool hidden = false;
    Scroll scroll;
    for (;;) {
        Page page;
        page.title = texts_->titleReinsert;
        if (hidden) {
            page.text = {texts_->reinsertHidden, texts_->reinsertHiddenHint};
        } else {
            addText(page.text, request.message);
            if (state) {
                page.text.emplace_back();
                page.text.push_back(std::string(kHighlight) + "> " +
                                    (*state == ReinsertCommand::Insert ? texts_->reinsertInsert
                                                                       : texts_->reinsertRemove) +
                                    kNormal);
            }
            page.hint = texts_->reinsertHint;
        }
        draw(page, scroll);

        const Key key = terminal_->readKey(-1, commands.fd(), !hidden);
        if (key.type == KeyType::Watched) {
            std::vector<ReinsertCommand> received;
            commands.readAvailable(received);
            for (ReinsertCommand command : received) {
                if (command == ReinsertCommand::Close) {
                    // The end of input without the close command: the host
                    // is gone.
                    if (commands.ended())
                        return Outcome::Cancelled;
                    log_.add("Notice closed.");
                    return hidden ? Outcome::Cancelled : Outcome::Answered;
                }
                state = command;
                log_.add(command == ReinsertCommand::Insert ? "Text: insert." : "Text: remove.");
            }
        } else if (scrollText(key, scroll, true)) {
        } else if (key.type == KeyType::Escape || key.type == KeyType::Interrupt || key.type == KeyType::Closed) {
            hidden = true;
            // Hidden, the notice takes no keys: Ctrl-C goes back to being
            // the terminal's interrupt, so that it ends the host and this
            // notice together as the user expects.
            terminal_->passSignalKeys(true);
            log_.add("The user hid the notice.");
        }
    }
}

} // namespace OrvelGui
