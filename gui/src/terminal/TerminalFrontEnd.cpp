#include "terminal/TerminalFrontEnd.hpp"

#include "common/CertificateText.hpp"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <system_error>

namespace OrvelGui {
namespace fs = std::filesystem;

namespace {

constexpr const char *kHighlight = "\x1b[7m";
constexpr const char *kBold = "\x1b[1m";
constexpr const char *kNormal = "\x1b[0m";
constexpr std::size_t kMaxInput = 4096;
constexpr std::size_t kMaxShownBytes = 2000;
constexpr std::size_t kMaxShownLines = 15;

// Length of the valid UTF-8 sequence at text[i], 0 when it is not one.
std::size_t utf8Length(const std::string &text, std::size_t i)
{
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char lead = byte(i);
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        length = 2;
    else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else
        return 0;
    if (i + length > text.size())
        return 0;
    for (std::size_t k = 1; k < length; ++k) {
        const unsigned char b = byte(i + k);
        if (b < (k == 1 ? low : 0x80) || b > (k == 1 ? high : 0xBF))
            return 0;
    }
    return length;
}

// Adds text that may hold line feeds as separate printable lines.
void addText(std::vector<std::string> &lines, const std::string &text, std::size_t maxLines = SIZE_MAX)
{
    std::size_t start = 0;
    std::size_t added = 0;
    while (start <= text.size() && added < maxLines) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(printable(line));
        ++added;
        start = end + 1;
    }
}

// Text shown in a bounded space: at most kMaxShownBytes and kMaxShownLines.
void addShortened(std::vector<std::string> &lines, const std::string &text, const Texts &t)
{
    const std::string shown = text.substr(0, kMaxShownBytes);
    addText(lines, shown, kMaxShownLines);
    if (text.size() > shown.size() || std::count(shown.begin(), shown.end(), '\n') >= long(kMaxShownLines))
        lines.push_back(fill(t.moreBytes, {std::to_string(text.size() - std::min(text.size(), kMaxShownBytes))}));
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

} // namespace

std::string printable(const std::string &text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8Length(text, i);
        if (length == 0) {
            out.push_back('?');
            ++i;
            continue;
        }
        const auto lead = static_cast<unsigned char>(text[i]);
        const bool c1 = lead == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (lead == '\t')
            out.push_back(' ');
        else if (lead < 0x20 || lead == 0x7F || c1)
            out.push_back('?');
        else
            out.append(text, i, length);
        i += length;
    }
    return out;
}

bool TerminalFrontEnd::begin(const Request &request)
{
    texts_ = &OrvelGui::texts(request.language);
    if (!terminal_)
        terminal_ = Terminal::open(log_);
    return terminal_ != nullptr;
}

void TerminalFrontEnd::draw(const Lines &lines, bool cursorAtEnd)
{
    std::string screen = "\x1b[H\x1b[2J";
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i)
            screen += "\r\n";
        screen += lines[i];
    }
    screen += cursorAtEnd ? "\x1b[?25h" : "\x1b[?25l";
    terminal_->write(screen);
}

TerminalFrontEnd::MenuResult TerminalFrontEnd::menu(const Lines &header, const Lines &items, std::size_t initial,
                                                    bool details)
{
    std::size_t selected = std::min(initial, items.size() - 1);
    std::size_t top = 0;
    for (;;) {
        const int room = terminal_->rows() - static_cast<int>(header.size()) - 5;
        const std::size_t visible = static_cast<std::size_t>(std::max(room, 3));
        if (selected < top)
            top = selected;
        if (selected >= top + visible)
            top = selected + 1 - visible;
        Lines screen = header;
        screen.emplace_back();
        if (top > 0)
            screen.emplace_back("   ...");
        for (std::size_t i = top; i < items.size() && i < top + visible; ++i) {
            const std::string number = i < 9 ? std::to_string(i + 1) + ". " : "   ";
            if (i == selected)
                screen.push_back(std::string(kHighlight) + "> " + number + items[i] + kNormal);
            else
                screen.push_back("  " + number + items[i]);
        }
        if (top + visible < items.size())
            screen.emplace_back("   ...");
        screen.emplace_back();
        screen.emplace_back(details ? texts_->hintMenuDetails : texts_->hintMenu);
        draw(screen);

        const Key key = terminal_->readKey(-1);
        switch (key.type) {
        case KeyType::Up:
        case KeyType::Left:
            selected = selected > 0 ? selected - 1 : 0;
            break;
        case KeyType::Down:
        case KeyType::Right:
            selected = std::min(selected + 1, items.size() - 1);
            break;
        case KeyType::Tab:
            selected = (selected + 1) % items.size();
            break;
        case KeyType::Home:
            selected = 0;
            break;
        case KeyType::End:
            selected = items.size() - 1;
            break;
        case KeyType::PageUp:
            selected = selected > visible ? selected - visible : 0;
            break;
        case KeyType::PageDown:
            selected = std::min(selected + visible, items.size() - 1);
            break;
        case KeyType::Enter:
            return {MenuAction::Chosen, selected};
        case KeyType::Escape:
        case KeyType::Interrupt:
        case KeyType::Closed:
            return {MenuAction::Cancelled, selected};
        case KeyType::Text:
            if (key.text[0] >= '1' && key.text[0] <= '9' &&
                static_cast<std::size_t>(key.text[0] - '1') < items.size())
                selected = static_cast<std::size_t>(key.text[0] - '1');
            else if (details && (key.text == "d" || key.text == "D"))
                return {MenuAction::Details, selected};
            break;
        default:
            break;
        }
    }
}

std::optional<std::string> TerminalFrontEnd::input(const Lines &header, const std::string &prompt, std::string text,
                                                   bool secret)
{
    for (;;) {
        Lines screen = header;
        screen.emplace_back();
        screen.emplace_back(texts_->hintInput);
        screen.emplace_back();
        std::string shown;
        if (secret) {
            for (std::size_t i = 0; i < text.size(); ++i)
                if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80)
                    shown.push_back('*');
        } else {
            shown = printable(text);
        }
        screen.push_back(std::string(kBold) + prompt + kNormal + shown);
        draw(screen, true);

        const Key key = terminal_->readKey(-1);
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

bool TerminalFrontEnd::view(const Lines &lines)
{
    Lines screen = lines;
    screen.emplace_back();
    screen.emplace_back(texts_->hintClose);
    draw(screen);
    for (;;) {
        switch (terminal_->readKey(-1).type) {
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
    Lines items;
    for (const auto &entry : request.certificates)
        items.push_back(certificateItem(entry));
    const Lines header = {std::string(kBold) + texts_->titleSelectCertificate + kNormal};
    std::size_t current = initial;
    for (;;) {
        const MenuResult result = menu(header, items, current, true);
        current = result.index;
        if (result.action == MenuAction::Cancelled)
            return std::nullopt;
        if (result.action == MenuAction::Chosen)
            return current;
        Lines lines = {std::string(kBold) + texts_->titleCertificate + kNormal, ""};
        const Lines details = certificateLines(request.certificates[current].data);
        lines.insert(lines.end(), details.begin(), details.end());
        if (!view(lines))
            return std::nullopt;
    }
}

Outcome TerminalFrontEnd::showMessage(const Request &request)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    Lines lines = {std::string(kBold) + texts_->iconNames[request.icon] + kNormal, ""};
    addText(lines, request.message);
    if (!request.info.empty()) {
        lines.emplace_back();
        addText(lines, request.info);
    }
    return view(lines) ? Outcome::Answered : Outcome::Cancelled;
}

Outcome TerminalFrontEnd::askYesNo(const Request &request, Answer &answer)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    Lines header = {std::string(kBold) + texts_->titleQuestion + kNormal, ""};
    addText(header, request.message);
    if (!request.info.empty()) {
        header.emplace_back();
        addText(header, request.info);
    }
    const MenuResult result = menu(header, {texts_->yes, texts_->no}, static_cast<std::size_t>(request.button));
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

        Lines header = {std::string(kBold) + texts_->titleOpen + kNormal, ""};
        addText(header, request.message);
        header.push_back(fill(texts_->filter, {request.fileFilter.empty() ? texts_->allFiles
                                                                          : printable(request.fileFilter)}));
        header.push_back(fill(texts_->folder, {printable(folder)}));
        if (!problem.empty())
            header.push_back(problem);
        problem.clear();
        Lines items = {texts_->typePath, "../"};
        for (const auto &name : folders)
            items.push_back(printable(name) + "/");
        for (const auto &name : files)
            items.push_back(printable(name));

        const MenuResult result = menu(header, items, selected);
        if (result.action == MenuAction::Cancelled)
            return Outcome::Cancelled;
        selected = 0;
        std::string chosen;
        if (result.index == 0) {
            const auto typed = input(header, texts_->path, folder == "/" ? "/" : folder + "/");
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
        Lines header = {std::string(kBold) + texts_->titleSave + kNormal, ""};
        addText(header, request.message);
        header.push_back(fill(texts_->filter, {request.fileFilter.empty() ? texts_->allFiles
                                                                          : printable(request.fileFilter)}));
        header.push_back(fill(texts_->folder, {printable(currentFolder())}));
        if (!problem.empty())
            header.push_back(problem);
        problem.clear();
        const auto typed = input(header, texts_->fileName, name);
        if (!typed)
            return Outcome::Cancelled;
        name = *typed;
        if (name.empty())
            continue;
        const std::string path = absolutePath(name);
        if (isFolder(path)) {
            problem = fill(texts_->isFolder, {printable(path)});
            continue;
        }
        std::error_code error;
        if (fs::exists(path, error)) {
            const Lines question = {std::string(kBold) + texts_->titleSave + kNormal, "",
                                    fill(texts_->overwrite, {printable(path)})};
            const MenuResult result = menu(question, {texts_->yes, texts_->no}, 1);
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
    Lines lines = {std::string(kBold) + texts_->titleCertificate + kNormal, ""};
    const Lines details = certificateLines(request.certificate);
    lines.insert(lines.end(), details.begin(), details.end());
    log_.add(readCertificate(request.certificate).isCertificate ? "Certificate shown."
                                                                : "The -cert bytes are no certificate.");
    return view(lines) ? Outcome::Answered : Outcome::Cancelled;
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

Outcome TerminalFrontEnd::confirmSignature(const Request &request, Answer &answer)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    const Texts &t = *texts_;
    std::size_t certificate = request.selected;
    std::size_t action = 0;
    const auto label = [](const char *text) { return std::string(kBold) + text + ":" + kNormal; };
    for (;;) {
        Lines header = {std::string(kBold) + t.titleSignature + kNormal, ""};
        header.push_back(label(t.version) + " " + printable(request.version));
        header.push_back(label(t.data));
        addShortened(header, request.data, t);
        if (request.rtf) {
            header.push_back(label(t.formattedText));
            addShortened(header, *request.rtf, t);
        }
        header.push_back(label(t.hashAlg) + " " + printable(request.hashAlg));
        header.push_back(label(t.hashVal) + " " + printable(request.hashVal));
        header.push_back(label(t.certificate) + " " + certificateItem(request.certificates[certificate]));

        const MenuResult result = menu(header, {t.sign, t.decline, t.changeCertificate, t.showCertificate}, action);
        if (result.action == MenuAction::Cancelled)
            return Outcome::Cancelled;
        action = result.index;
        if (action == 0 || action == 1) {
            answer.confirmed = action == 0;
            answer.selected = static_cast<unsigned>(certificate);
            log_.add(std::string(answer.confirmed ? "Signature confirmed" : "Signature declined") +
                     " with certificate " + std::to_string(certificate) + ".");
            return Outcome::Answered;
        }
        if (action == 2) {
            if (const auto chosen = pickCertificate(request, certificate))
                certificate = *chosen;
        } else {
            Lines lines = {std::string(kBold) + t.titleCertificate + kNormal, ""};
            const Lines details = certificateLines(request.certificates[certificate].data);
            lines.insert(lines.end(), details.begin(), details.end());
            if (!view(lines))
                return Outcome::Cancelled;
        }
    }
}

Outcome TerminalFrontEnd::selectPkcs12(const Request &request, Answer &answer)
{
    if (!begin(request))
        return Outcome::NoUserInterface;
    std::string typed = request.fileName;
    std::string problem;
    for (;;) {
        Lines header = {std::string(kBold) + texts_->titlePkcs12 + kNormal};
        if (!problem.empty())
            header.push_back(problem);
        const auto path = input(header, texts_->pkcs12File, typed);
        if (!path)
            return Outcome::Cancelled;
        typed = *path;
        const std::string file = absolutePath(typed);
        if (!isRegularFile(file)) {
            problem = fill(texts_->noSuchFile, {printable(file)});
            continue;
        }
        const Lines passwordHeader = {std::string(kBold) + texts_->titlePkcs12 + kNormal, printable(file)};
        const auto password = input(passwordHeader, texts_->password, "", true);
        if (!password)
            return Outcome::Cancelled;
        answer.path = file;
        answer.secondValue = *password;
        log_.add("PKCS#12 file chosen.");
        return Outcome::Answered;
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
    for (;;) {
        if (hidden) {
            draw({texts_->reinsertHidden});
        } else {
            Lines lines = {std::string(kBold) + texts_->titleReinsert + kNormal, ""};
            addText(lines, request.message);
            lines.emplace_back();
            if (state)
                lines.push_back(std::string(kHighlight) + "> " +
                                (*state == ReinsertCommand::Insert ? texts_->reinsertInsert : texts_->reinsertRemove) +
                                kNormal);
            lines.emplace_back();
            lines.emplace_back(texts_->reinsertHint);
            draw(lines);
        }

        pollfd fds[2] = {{commands.fd(), POLLIN, 0}, {hidden ? -1 : terminal_->fd(), POLLIN, 0}};
        if (pollRetrying(fds, 2, terminal_->hasPending() && !hidden ? 0 : -1) < 0) {
            log_.add("Waiting for input failed.");
            return Outcome::Cancelled;
        }
        if (fds[0].revents != 0) {
            std::vector<ReinsertCommand> received;
            commands.readAvailable(received);
            for (ReinsertCommand command : received) {
                if (command == ReinsertCommand::Close) {
                    log_.add("Notice closed.");
                    return hidden ? Outcome::Cancelled : Outcome::Answered;
                }
                state = command;
                log_.add(command == ReinsertCommand::Insert ? "Text: insert." : "Text: remove.");
            }
        }
        if (!hidden && (fds[1].revents != 0 || terminal_->hasPending())) {
            const Key key = terminal_->readKey(0);
            if (key.type == KeyType::Escape || key.type == KeyType::Interrupt || key.type == KeyType::Closed) {
                hidden = true;
                log_.add("The user hid the notice.");
            }
        }
    }
}

} // namespace OrvelGui
