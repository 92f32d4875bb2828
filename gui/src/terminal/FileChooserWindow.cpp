// "FileOpen": a browser of the working directory; "FileSave": a file name
// field. File names, from the host or the file system, are shown with their
// hidden characters as markers.
#include "terminal/Menu.hpp"
#include "terminal/Paths.hpp"
#include "terminal/TerminalWindows.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace OrvelGui {
namespace fs = std::filesystem;
namespace {

// The filter's line of a file window; a filter that cannot be read says so.
std::string filterLine(const Texts &t, const std::string &filterText)
{
    if (!filterUnderstood(filterText))
        return fill(t.filterNotUnderstood, {oneLine(filterText)});
    return fill(t.filter, {filterText.empty() ? t.allFiles : oneLine(filterText)});
}

// The text above the file windows: the message (with its warning), the
// filter and the folder.
void addHeading(Page &page, const Texts &t, const Request &request, const std::string &folder)
{
    page.keepLines = addMessage(page.text, t, request);
    page.text.push_back(filterLine(t, request.fileFilter));
    page.text.push_back(fill(t.folder, {oneLine(folder)}));
}

} // namespace

Outcome openFileWindow(Console &console, const Request &request, Answer &answer)
{
    if (!console.begin(request))
        return Outcome::NoUserInterface;
    const Texts &t = console.texts();
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
            problem = fill(t.cannotReadFolder, {oneLine(folder)});
        std::sort(folders.begin(), folders.end());
        std::sort(files.begin(), files.end());

        Page page;
        page.title = t.titleOpen;
        addHeading(page, t, request, folder);
        if (!problem.empty())
            page.text.push_back(problem);
        problem.clear();
        page.list = true;
        page.items = {t.typePath, "../"};
        for (const auto &name : folders)
            page.items.push_back(oneLine(name) + "/");
        for (const auto &name : files)
            page.items.push_back(oneLine(name));
        page.selected = selected;

        Scroll scroll;
        const MenuResult result = runMenu(console, page, scroll);
        if (result.action == MenuAction::Cancelled)
            return Outcome::Cancelled;
        selected = 0;
        std::string chosen;
        if (result.index == 0) {
            page.items.clear();
            const auto typed = readLine(console, page, t.path, folder == "/" ? "/" : folder + "/");
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
            console.log().add("File chosen.");
            return Outcome::Answered;
        } else {
            problem = fill(t.noSuchFile, {oneLine(chosen)});
        }
    }
}

Outcome saveFileWindow(Console &console, const Request &request, Answer &answer)
{
    if (!console.begin(request))
        return Outcome::NoUserInterface;
    const Texts &t = console.texts();
    std::string name = offeredAsShown(request.fileName);
    std::string problem;
    for (;;) {
        Page page;
        page.title = t.titleSave;
        addHeading(page, t, request, currentFolder());
        if (!problem.empty())
            page.text.push_back(bold(problem));
        problem.clear();
        const auto typed = readLine(console, page, t.fileName, name);
        if (!typed)
            return Outcome::Cancelled;
        name = *typed;
        if (name.empty()) {
            problem = t.nameEmpty;
            continue;
        }
        const std::string path = absolutePath(name);
        const std::string parent = fs::path(path).parent_path().string();
        if (isFolder(path)) {
            problem = fill(t.isFolder, {oneLine(path)});
            continue;
        }
        if (!isFolder(parent.empty() ? "/" : parent)) {
            problem = fill(t.folderMissing, {oneLine(parent)});
            continue;
        }
        std::error_code error;
        if (fs::exists(path, error)) {
            Page question;
            question.title = t.titleSave;
            question.text = {fill(t.overwrite, {oneLine(path)})};
            question.items = {t.yes, t.no};
            question.selected = 1;
            Scroll scroll;
            const MenuResult result = runMenu(console, question, scroll);
            if (result.action == MenuAction::Cancelled)
                return Outcome::Cancelled;
            if (result.index != 0)
                continue;
        }
        answer.path = path;
        console.log().add("File name chosen.");
        return Outcome::Answered;
    }
}

} // namespace OrvelGui
