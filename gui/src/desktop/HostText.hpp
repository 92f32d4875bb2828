// Outside text in the desktop's views (VisibleText.hpp): markers are drawn in
// a box of their own colour, apart from the text, and long words (a path) wrap
// inside rather than widen the window.
#pragma once

#include "common/Texts.hpp"
#include "common/VisibleText.hpp"

#include <QString>
#include <QTextEdit>

class QFont;
class QLabel;
class QTextCursor;
class QTextDocument;
class QWidget;

namespace OrvelGui {

// The text alone, markers as their text (for a title, a tooltip, a cell).
QString plainText(const VisibleText &text);
// An outside value so, on one line (line feeds as markers too).
QString shownOnOneLine(std::string_view outside);

// Fills a document with the text, its marks in the marker's format.
void setVisibleText(QTextDocument *document, const VisibleText &text);
// Inserts the text at the cursor, in `font` where one is given.
void insertVisibleText(QTextCursor &cursor, const VisibleText &text, const QFont *font = nullptr);

// A red warning in bold above the text it is about; nothing without cause.
QLabel *warningLabel(const QString &text, QWidget *parent);
QLabel *hiddenCharactersWarning(const Texts &t, std::size_t count, QWidget *parent);

// A read-only text that looks like a label: at least as wide as its longest
// line up to a sensible width, and as tall as its text is at that width, up to
// `maxLines` lines (then it scrolls); words wrap, and one longer than a line
// wraps inside. (Fixed room rather than a height for each width: a window
// does not follow one when it is laid out, and the text would be cut.)
class HostText : public QTextEdit {
    Q_OBJECT
public:
    HostText(const VisibleText &text, QWidget *parent, int maxLines = 12);
    void setText(const VisibleText &text);
    // Makes the first line bold (a name above its details).
    void setFirstLineBold();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    int maxHeight() const;
    int preferredWidth() const;
    int maxLines_;
};

} // namespace OrvelGui
